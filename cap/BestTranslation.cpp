#include "cap/BestTranslation.h"

#include <algorithm>

namespace {

constexpr LANGID neutral = 0;
constexpr LANGID english = 9;

constexpr LANGID primaryLanguage(LANGID language) {
    return language & 0xFF;
}

} // namespace

const Translation* bestTranslation(const std::vector<Translation>& table, LANGID user) {
    if (table.empty()) return nullptr;
    for (const LANGID wanted : {user, neutral, english}) {
        const auto same = [&](Translation entry) { return entry.language == wanted; };
        const auto samePrimary = [&](Translation entry) {
            return primaryLanguage(entry.language) == primaryLanguage(wanted);
        };
        auto found = std::find_if(table.begin(), table.end(), same);
        if (found == table.end()) found = std::find_if(table.begin(), table.end(), samePrimary);
        if (found != table.end()) return &*found;
    }
    return &table.front();
}
