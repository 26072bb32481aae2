#pragma once

#include "spm/measure/RunWriter.h"
#include "spm/Module.h"

namespace spm {

/// Opens and calibrates the instrument, and guides the user through the measurement of all strips with missing patches.
/// On a terminal, the user can repeat what failed. Does nothing if all patches are measured.
/// @param run  receives the readings
/// @throws Error        if something fails and isn't repeated
/// @throws Interrupted  if the user stops the run
void measureStrips(const Module& module, const Prompter& prompter, RunWriter& writer, Run& run);

} // namespace spm
