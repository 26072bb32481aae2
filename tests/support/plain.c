/* A library that is neither a module nor an SDK library. */

int plain(void);

int plain(void) {
    return 0;
}
