/* A host in C99 that is linked to the module: the import library works from C, and a program may exit without closing
   and destroying its objects.
   Usage: c_host [late]
     late  destroys the object in an exit handler, when the library's static objects may be gone
   The exit status is 0 on success. */

#include "module/SPM.h"

#include <stdlib.h>

static SPM_HANDLE handle;

static void destroy(void) {
    SPM_destroy(handle);
}

int main(int argc, char** argv) {
    (void)argv;
    if (argc > 1) atexit(destroy);
    handle = SPM_create();
    return SPM_open(handle, "USB") && SPM_getOptionMasks(handle).modeMask == 3 ? 0 : 1;
}
