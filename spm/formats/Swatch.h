#pragma once

#include "module/SPM.h"

#include <array>
#include <cstdint>
#include <string>

namespace spm {

/// The colours that a terminal supports.
enum class ColourDepth { none, palette256, trueColour };

/// Determines the colour depth from the environment variables NO_COLOR, COLORTERM and TERM, and from the console itself
/// (on Windows).
ColourDepth colourDepth(bool isTerminal);

/// Converts CIELab to sRGB (IEC 61966-2-1): red, green, blue from 0 to 255, clipped to the gamut. The white of the
/// measurement becomes the white of the screen.
std::array<std::uint8_t, 3> toSrgb(const SPM_LAB& lab);

/// Six cells in the colour and a blank, as escape sequences; empty for ColourDepth::none.
std::string swatch(const SPM_LAB& lab, ColourDepth depth);

} // namespace spm
