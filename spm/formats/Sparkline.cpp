#include "spm/formats/Sparkline.h"

#include <algorithm>
#include <cmath>

namespace spm {

namespace {

std::string block(float percent) {
    constexpr float eighth = 12.5F;
    if (std::isnan(percent)) return " ";
    // 100 percent is in the highest of the eight levels.
    const int level = std::min(static_cast<int>(std::clamp(percent, 0.0F, 100.0F) / eighth), 7);
    return "\xe2\x96" + std::string(1, static_cast<char>(0x81 + level));
}

} // namespace

std::string sparkline(const std::vector<SPM_REFLECTION>& spectrum) {
    std::string curve;
    for (const SPM_REFLECTION& reflection : spectrum) {
        curve += block(reflection.value);
    }
    return curve;
}

} // namespace spm
