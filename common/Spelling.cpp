#include "common/Spelling.h"

#include <algorithm>
#include <numeric>

namespace common {

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return result;
}

std::size_t editDistance(std::string_view from, std::string_view to) {
    // The distances of the beginning of `from` that was looked at so far to each beginning of `to`.
    std::vector<std::size_t> distances(to.size() + 1);
    std::iota(distances.begin(), distances.end(), 0);
    for (const char character : from) {
        std::size_t diagonal = distances[0]++;
        for (std::size_t i = 0; i < to.size(); ++i) {
            const std::size_t replaced = diagonal + (character == to[i] ? 0 : 1);
            diagonal = distances[i + 1];
            distances[i + 1] = std::min({replaced, diagonal + 1, distances[i] + 1});
        }
    }
    return distances.back();
}

std::optional<std::string> nearestName(std::string_view given, const std::vector<std::string>& known) {
    constexpr std::size_t mostEdits = 2;
    const auto distance = [&](const std::string& name) { return editDistance(lowered(given), lowered(name)); };
    const auto nearest = std::min_element(known.begin(), known.end(), [&](const auto& left, const auto& right) {
        return distance(left) < distance(right);
    });
    if (nearest == known.end() || distance(*nearest) > mostEdits) return std::nullopt;
    return *nearest;
}

} // namespace common
