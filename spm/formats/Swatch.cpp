#include "spm/formats/Swatch.h"

#include "spm/colour/Colorimetry.h"
#include "spm/Console.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <string_view>

namespace spm {

namespace {

std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::uint8_t encode(double linear) {
    const double clipped = std::clamp(linear, 0.0, 1.0);
    const double value = clipped <= 0.0031308 ? 12.92 * clipped : 1.055 * std::pow(clipped, 1 / 2.4) - 0.055;
    return static_cast<std::uint8_t>(std::lround(value * 255));
}

/// The nearest colour of the 6 x 6 x 6 cube in the 256-colour palette of xterm.
int paletteIndex(const std::array<std::uint8_t, 3>& rgb) {
    // The cube's levels are 0, 95, 135, 175, 215 and 255; these are the limits between them.
    const auto level = [](std::uint8_t value) { return value < 48 ? 0 : value < 115 ? 1 : (value - 35) / 40; };
    return 16 + 36 * level(rgb[0]) + 6 * level(rgb[1]) + level(rgb[2]);
}

} // namespace

ColourDepth colourDepth(bool isTerminal) {
    if (!isTerminal || !environment("NO_COLOR").empty()) return ColourDepth::none;
    const std::string_view colours = environment("COLORTERM");
    if (colours == "truecolor" || colours == "24bit" || isTrueColourConsole()) return ColourDepth::trueColour;
    return environment("TERM").find("256color") != std::string_view::npos ? ColourDepth::palette256 : ColourDepth::none;
}

std::array<std::uint8_t, 3> toSrgb(const SPM_LAB& lab) {
    // XYZ relative to sRGB's white: D65 for the 2 degree observer.
    const auto [x, y, z] = toXyz(lab, {0.95047, 1, 1.08883});
    return {encode(3.2406 * x - 1.5372 * y - 0.4986 * z), encode(-0.9689 * x + 1.8758 * y + 0.0415 * z),
            encode(0.0557 * x - 0.2040 * y + 1.0570 * z)};
}

std::string swatch(const SPM_LAB& lab, ColourDepth depth) {
    const auto rgb = toSrgb(lab);
    switch (depth) {
    case ColourDepth::trueColour:
        return fmt::format("\x1b[48;2;{};{};{}m      \x1b[0m ", rgb[0], rgb[1], rgb[2]);
    case ColourDepth::palette256:
        return fmt::format("\x1b[48;5;{}m      \x1b[0m ", paletteIndex(rgb));
    default:
        return {};
    }
}

} // namespace spm
