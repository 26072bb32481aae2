#include "common/Files.h"
#include "common/Text.h"
#include "spm/Error.h"
#include "spm/formats/Formats.h"

#include <fmt/format.h>
#include <system_error>

namespace spm {

namespace {

Run readAnyFormat(const std::string& text, const std::string& description) {
    const std::size_t first = text.find_first_not_of("\xEF\xBB\xBF \t\r\n");
    if (first != std::string::npos && text[first] == '{') return readJson(text, description);
    const bool isCgats = text.starts_with("CGATS") || text.find("\nBEGIN_DATA_FORMAT") != std::string::npos;
    return isCgats ? readCgats(text, description) : readCsv(text, description);
}

/// @param stated  empty and 0 for what the file doesn't say
void requireSameConditions(const std::filesystem::path& file, Conditions stated, const Conditions& measured) {
    if (stated.illuminant.empty()) stated.illuminant = measured.illuminant;
    if (stated.observer == 0) stated.observer = measured.observer;
    if (describe(stated) == describe(measured)) return;
    throw UsageError(fmt::format("the reference file {} is for {}, but the run measures for {}", file.string(),
                                 describe(stated), describe(measured)),
                     "choose a reference for the same conditions, or use --illuminant and --observer");
}

} // namespace

Run readRun(const std::filesystem::path& file, std::string_view what) try {
    const std::string text = common::readFile(file);
    const std::string description = fmt::format("{} {}", what, file.string());
    common::requireUtf8(text, description);
    Run run = readAnyFormat(text, description);
    if (run.patches.empty()) throw Error(description + " has no patches", "add a line for each below the header");
    return run;
} catch (const std::system_error& error) {
    throw Error(fmt::format("can't read {} {}: {}", what, file.string(), error.code().message()),
                "choose a CSV, CGATS or JSON file");
}

Reference readReference(const std::filesystem::path& file, const Conditions& conditions) {
    const Run run = readRun(file, "the reference file");
    requireSameConditions(file, run.conditions, conditions);
    Reference reference{.file = file};
    reference.statesConditions = !run.conditions.illuminant.empty() && run.conditions.observer != 0;
    for (const Patch& patch : run.patches) {
        const auto require = [&](bool isMet, const char* failure, const char* advice) {
            if (isMet) return;
            throw Error(
                fmt::format("the reference file {}, {}: \"{}\" {}", file.string(), patch.place, patch.name, failure),
                advice);
        };
        require(patch.reading.has_value(), "has no L*, a* and b*", "add them or remove the patch");
        require(reference.patches.emplace(patch.name, patch.reading->lab).second, "has a duplicate name",
                "make the names in a reference unique");
    }
    return reference;
}

} // namespace spm
