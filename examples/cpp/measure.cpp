// Measures a row of six patches and the spectrum of one more.
// Use: measure MODULE, the path of the spectrophotometer module. Exit status 0 when all was measured.

#include "measuring.h"

#include <exception>

int main(int argc, char** argv) {
    try {
        if (argc != 2) throw std::runtime_error("use: measure MODULE");
        const Module module(argv[1]);
        measureAll(Spectrophotometer(module));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "measure: %s\n", error.what());
        return 1;
    }
}
