// A library that breaks each rule for the module's file, to see that the check finds it.

#include <iostream>

extern "C" int SPM_getVersion();

int SPM_getVersion() {
    std::cout << 3;
    return 3;
}

// Exported under its decorated name.
void decorated();
void decorated() {
    throw SPM_getVersion();
}
