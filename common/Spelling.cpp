#include "common/Spelling.h"

#include <algorithm>
#include <numeric>

namespace common {

namespace {

bool isSame(char a, char b) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; };
    return lower(a) == lower(b);
}

/// Computes the Levenshtein distance.
std::size_t editDistance(std::string_view from, std::string_view to) {
    // distances[i] is the distance of the processed prefix of `from` to the first i characters of `to`.
    std::vector<std::size_t> distances(to.size() + 1);
    std::iota(distances.begin(), distances.end(), 0);
    for (const char character : from) {
        std::size_t diagonal = distances[0]++;
        for (std::size_t i = 0; i < to.size(); ++i) {
            const std::size_t replaced = diagonal + (isSame(character, to[i]) ? 0 : 1);
            diagonal = distances[i + 1];
            distances[i + 1] = std::min({replaced, diagonal + 1, distances[i] + 1});
        }
    }
    return distances.back();
}

} // namespace

std::optional<std::string> nearestName(std::string_view given, const std::vector<std::string>& known,
                                       std::size_t maxEdits) {
    std::optional<std::string> nearest;
    for (const std::string& name : known) {
        const std::size_t edits = editDistance(given, name);
        if (edits > maxEdits || (nearest && edits == maxEdits)) continue;
        maxEdits = edits;
        nearest = name;
    }
    return nearest;
}

} // namespace common
