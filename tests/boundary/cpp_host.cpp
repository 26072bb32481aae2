// A host in C++ that is linked to the module, but not to its object files. The script cpp_host.json makes closing fail.
// The exit status is 0 if the exception is caught as what it is.

#include "module/IScmSPM.h"

int main() {
    const SPM_HANDLE handle = SPM_create();
    if (!handle->open("USB")) return 1;
    try {
        handle->close();
    } catch (const CAPException& exception) {
        SPM_destroy(handle);
        return exception.GetErrorNumber() == 1539 && exception.GetModuleNumber() == 7 ? 0 : 2;
    }
    return 3;
}
