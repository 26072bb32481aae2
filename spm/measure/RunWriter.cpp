// The output file is written as a whole after each strip, under a temporary name: a crash can't damage what was saved
// before.

#include "spm/measure/RunWriter.h"

#include "spm/measure/OutputFile.h"

namespace spm {

namespace {

/// Appends the error to the failures if the write throws.
/// @return whether it succeeded
template <class Write>
bool attempt(const Write& write, std::string& failures) try {
    write();
    return true;
} catch (const std::exception& error) {
    failures += (failures.empty() ? "" : "\n") + std::string(error.what());
    return false;
}

} // namespace

void RunWriter::save(const Strip& strip) {
    std::string failures;
    if (!plan.output.empty()) {
        isSaved = attempt([&] { replaceFile(plan.output, text()); }, failures);
    } else if (showsTables() && isSaved) {
        const bool withHeader = plan.run.patchesInRow > 0 || measuredCount(plan.run.patches) == 1; // one for all spots
        isSaved =
            attempt([&] { writeToStdout(formatTable(plan.run, patchesOf(plan.run, strip), withHeader)); }, failures);
    }
    if (!failures.empty()) prompter.say(failures + "\nThe measured values are kept and will be saved later.");
}

bool RunWriter::finish() {
    if (measuredCount(plan.run.patches) == 0) return true;
    std::string failures;
    const bool isInFile = !plan.output.empty() && attempt([&] { replaceFile(plan.output, text()); }, failures);
    if (!plan.report.empty()) attempt([&] { replaceFile(plan.report, htmlReport(plan.run)); }, failures);
    const bool isShown = showsTables() && isSaved;
    if (!isInFile && !isShown) attempt([&] { writeToStdout(text()); }, failures);
    if (!failures.empty()) prompter.say("spm: " + failures);
    return failures.empty();
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

std::string RunWriter::text() const {
    return showsTables() ? formatTable(plan.run, plan.run.patches, true) : plan.format(plan.run);
}

} // namespace spm
