#pragma once

#include "module/SPM.h"

#include <array>
#include <cstdint>
#include <string>

namespace spm {

/// How many colours the terminal can show.
enum class ColourDepth { none, palette256, trueColour };

/// Reads it from the environment (NO_COLOR, COLORTERM, TERM) for a stream that is a terminal.
ColourDepth colourDepth(bool isTerminal);

/// The sRGB colour (IEC 61966-2-1) of CIELab values, red, green, blue from 0 to 255; clipped to the gamut.
std::array<std::uint8_t, 3> toSrgb(const SPM_LAB& lab);

/// A block of the colour for the terminal, ending in a blank; empty when it can't show colours.
std::string swatch(const SPM_LAB& lab, ColourDepth depth);

} // namespace spm
