// The output file is written as a whole after each strip, under a temporary name: a crash can't damage what was saved
// before.

#include "spm/measure/RunWriter.h"

#include "spm/formats/Report.h"
#include "spm/formats/Table.h"
#include "spm/measure/OutputFile.h"

namespace spm {

void RunWriter::save(const Strip& strip) {
    std::string failures;
    if (!plan.output.empty()) {
        isSaved = attempt([&] { replaceFile(plan.output, text()); }, failures);
    } else if (showsTables() && isSaved) {
        const bool withHeader = !hasHeader || plan.run.patchesInRow > 0; // one for all spots
        isSaved = attempt([&] { writeToStdout(tableOf(patchesOf(plan.run, strip), withHeader)); }, failures);
        hasHeader = true;
    }
    if (!failures.empty()) prompter.say(failures + "\nThe measured values are kept and will be saved later.");
}

std::string RunWriter::finish() {
    std::string failures;
    if (measuredCount(plan.run.patches) == 0) return failures;
    const bool isInFile = !plan.output.empty() && attempt([&] { replaceFile(plan.output, text()); }, failures);
    if (!plan.report.empty()) attempt([&] { replaceFile(plan.report, htmlReport(plan.run)); }, failures);
    const bool isShown = showsTables() && isSaved;
    if (!isInFile && !isShown) attempt([&] { writeToStdout(text()); }, failures);
    return failures;
}

void RunWriter::showComparison() const {
    const std::string comparison = formatComparison(plan.run);
    if (comparison.empty()) return;
    if (showsTables()) {
        writeToStdout(comparison);
    } else {
        prompter.say(comparison);
    }
}

/// Appends the error to the failures if the write throws.
/// @return whether it succeeded
bool RunWriter::attempt(const std::function<void()>& write, std::string& failures) try {
    write();
    return true;
} catch (const std::exception& error) {
    failures += (failures.empty() ? "" : "\n") + std::string(error.what());
    return false;
}

std::string RunWriter::tableOf(std::span<const Patch> part, bool withHeader) const {
    return (withHeader ? tableHeader(plan.run) : "") + labLines(plan.run, part) +
           (plan.showsSpectra ? spectraTable(plan.run, part) : "");
}

std::string RunWriter::text() const {
    switch (plan.format) {
    case Format::csv:
        return formatCsv(plan.run);
    case Format::json:
        return formatJson(plan.run);
    case Format::cgats:
        return formatCgats(plan.run);
    default:
        return tableOf(plan.run.patches, true);
    }
}

} // namespace spm
