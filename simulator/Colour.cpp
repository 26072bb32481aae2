#include "simulator/Colour.h"

namespace simulator {

common::Triple cieLab(const Reflectance& reflectance, const Weights& weights) {
    common::Triple white{};
    common::Triple sample{};
    for (std::size_t i = 0; i < weights.size(); ++i) {
        for (std::size_t k = 0; k < sample.size(); ++k) {
            white[k] += weights[i][k];
            sample[k] += weights[i][k] * reflectance[i];
        }
    }
    return common::xyzToLab(sample, white);
}

} // namespace simulator
