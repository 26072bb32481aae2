/* A library with nothing in it. */

int plain(void);

int plain(void) {
    return 0;
}
