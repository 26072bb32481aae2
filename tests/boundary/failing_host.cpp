// A host whose openings fail. Use: failing_host MODULE TIMES

#include "tests/boundary/FailOften.h"
#include "tests/support/System.h"

#include <cstdio>

int main(int argc, char** argv) try {
    if (argc != 3) return 2;
    adoptSettings();
    const host::Module module(argv[1]);
    letOpeningFail(simulatorOf(module));
    failOften(module, std::stoi(argv[2]));
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "failing_host: %s\n", error.what());
    return 1;
}
