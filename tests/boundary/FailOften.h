#pragma once

// What many threads and processes do at once to see whether their lines in the log file stay whole.

#include "tests/support/SimulatorOf.h"

#include <string>

inline const std::string longErrorText(20'000, 'x');

/// Lets every opening fail, with the long text.
void letOpeningFail(simulator::Control& sdk);

/// Opens that often, with an object of its own, what can't be opened.
void failOften(const host::Module& module, int times);
