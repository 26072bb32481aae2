#include "spm/formats/RunFile.h"

#include "common/Files.h"
#include "common/Text.h"
#include "spm/Error.h"
#include "spm/formats/Formats.h"

#include <cmath>
#include <fmt/format.h>
#include <system_error>

namespace spm {

namespace {

std::string readText(const std::filesystem::path& file, std::string_view what) try {
    return common::readFile(file);
} catch (const std::system_error& error) {
    throw Error(fmt::format("can't read {} {}: {}", what, file.string(), error.code().message()),
                "choose a CSV, CGATS or JSON file");
}

Run readAnyFormat(const std::string& text, const std::string& description) {
    const std::size_t first = text.find_first_not_of("\xEF\xBB\xBF \t\r\n");
    if (first != std::string::npos && text[first] == '{') return readJson(text, description);
    return isCgats(text) ? readCgats(text, description) : readCsv(text, description);
}

/// @throws Error  if the patch can't be compared with
void requireExpectedValues(const Patch& patch, const std::string& place) {
    if (!patch.reading) {
        throw Error(place + fmt::format("\"{}\" has no L*, a* and b*", patch.name), "add them or remove the patch");
    }
    const SPM_LAB& lab = patch.reading->lab;
    for (const float value : {lab.L, lab.a, lab.b}) {
        // Far beyond any surface colour; keeps the arithmetic from overflowing.
        if (std::abs(value) <= 500) continue;
        throw Error(place + fmt::format("{} is out of range", value), "L*, a* and b* must be from -500 to 500");
    }
}

void requireSameConditions(const std::filesystem::path& file, const Conditions& stated, const Conditions& measured) {
    const bool hasIlluminant = stated.illuminant.empty() || stated.illuminant == measured.illuminant;
    const bool hasObserver = stated.observer == 0 || stated.observer == measured.observer;
    if (hasIlluminant && hasObserver) return;
    throw UsageError(fmt::format("the reference file {} is for {}/{}, but the run measures for {}/{}", file.string(),
                                 stated.illuminant.empty() ? "any illuminant" : stated.illuminant,
                                 stated.observer == 0 ? "any observer" : observerOf(stated), measured.illuminant,
                                 observerOf(measured)),
                     "choose a reference for the same conditions, or use --illuminant and --observer");
}

} // namespace

Run readRun(const std::filesystem::path& file, std::string_view what) {
    const std::string text = readText(file, what);
    const std::string description = fmt::format("{} {}", what, file.string());
    common::requireUtf8(text, description);
    Run run = readAnyFormat(text, description);
    if (run.patches.empty()) throw Error(description + " has no patches", "add a line for each below the header");
    return run;
}

Reference readReference(const std::filesystem::path& file, const Conditions& conditions) {
    constexpr std::string_view what = "the reference file";
    const Run run = readRun(file, what);
    requireSameConditions(file, run.conditions, conditions);
    Reference reference{.file = file, .patches = {}};
    reference.statesConditions = !run.conditions.illuminant.empty() && run.conditions.observer != 0;
    for (const Patch& patch : run.patches) {
        const std::string place = fmt::format("{} {}, {}: ", what, file.string(), patch.place);
        requireExpectedValues(patch, place);
        if (reference.patches.emplace(patch.name, patch.reading->lab).second) continue;
        throw Error(place + fmt::format("duplicate patch name \"{}\"", patch.name),
                    "make the names in a reference unique");
    }
    return reference;
}

} // namespace spm
