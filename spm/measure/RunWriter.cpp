#include "spm/measure/RunWriter.h"

#include "spm/Console.h"
#include "spm/Error.h"
#include "spm/formats/Formats.h"
#include "spm/formats/Report.h"
#include "spm/formats/Table.h"
#include "spm/measure/OutputFile.h"

#include <algorithm>
#include <fmt/format.h>

namespace spm {

namespace {

constexpr const char* retryNote = "\nThe measured values are kept and will be saved later.";

} // namespace

std::vector<Quantity> passesOf(const MeasureOptions& options) {
    if (options.conditions.isCalculated) return {Quantity::spectrum};
    if (options.lab && options.spectra) return {Quantity::lab, Quantity::spectrum};
    return {options.spectra ? Quantity::spectrum : Quantity::lab};
}

bool producesLab(const MeasureOptions& options) {
    return options.conditions.isCalculated || passesOf(options).front() == Quantity::lab;
}

Format formatOf(const MeasureOptions& options) {
    if (options.format != Format::byExtension) return options.format;
    if (options.output.empty()) return Format::table;
    const std::string extension = options.output.extension().string();
    if (extension == ".csv") return Format::csv;
    if (extension == ".json") return Format::json;
    if (extension == ".txt" || extension == ".cgats") return Format::cgats;
    throw UsageError(fmt::format("can't determine the format of {} from its extension; use .csv, .json or .cgats, or "
                                 "--format",
                                 options.output.string()));
}

RunWriter::RunWriter(const MeasureOptions& measureOptions, const Prompter& userPrompter, Run initialRun)
    : options(measureOptions), prompter(userPrompter), format(formatOf(measureOptions)), run(std::move(initialRun)) {}

std::span<Reading> RunWriter::patches(const Strip& strip) {
    return std::span(run.readings).subspan(strip.first, static_cast<std::size_t>(strip.count));
}

void RunWriter::setInstrument(const std::string& name, const std::string& illumination) {
    run.instrument = name;
    run.conditions.measurement = illumination;
}

void RunWriter::save(Quantity quantity, const Strip& strip) {
    hasSaveFailed = false;
    if (!options.output.empty()) {
        isSaved = false;
        saveIfDue();
    } else if (format == Format::table && isSaved) {
        std::string failures;
        isSaved = attempt([&] { writeToStdout(table(quantity, patches(strip))); }, failures);
        if (!isSaved) prompter.say(failures + retryNote);
    }
}

void RunWriter::saveIfDue() {
    const Clock::time_point begin = Clock::now();
    if (options.output.empty() || isSaved || hasSaveFailed || begin < nextSave) return;
    std::string failures;
    isSaved = attempt([&] { replaceFile(options.output, text()); }, failures);
    hasSaveFailed = !isSaved;
    nextSave = begin + std::max<Clock::duration>(std::chrono::seconds(1), 20 * (Clock::now() - begin));
    if (hasSaveFailed) prompter.say(failures + retryNote);
}

void RunWriter::finish(const std::string& reason) {
    for (Reading& reading : run.readings) {
        if (!reading.isMeasured() && reading.missingReason.empty()) reading.missingReason = reason;
    }
    if (measuredCount(run) == 0) return;
    std::string failures;
    const bool isInFile = !options.output.empty() && attempt([&] { replaceFile(options.output, text()); }, failures);
    if (!options.report.empty()) attempt([&] { replaceFile(options.report, htmlReport(run)); }, failures);
    const bool isShown = options.output.empty() && format == Format::table && isSaved;
    if (!isInFile && !isShown) attempt([&] { writeToStdout(text()); }, failures);
    if (!failures.empty()) throw Error(failures);
}

/// Appends the error to the failures if the write throws.
/// @return whether it succeeded
bool RunWriter::attempt(const std::function<void()>& write, std::string& failures) const try {
    write();
    return true;
} catch (const std::exception& error) {
    failures += (failures.empty() ? "" : "\n") + std::string(error.what());
    return false;
}

void RunWriter::showComparison() const {
    const std::string text = formatComparison(run);
    if (text.empty()) return;
    if (format == Format::table && options.output.empty()) {
        writeToStdout(text);
    } else {
        prompter.say(text);
    }
}

std::string RunWriter::table(Quantity quantity, std::span<const Reading> part) const {
    const ColourDepth depth = options.output.empty() ? colourDepth(isTerminal(stdout)) : ColourDepth::none;
    if (quantity == Quantity::lab) return labTable(run, part, depth);
    return (options.conditions.isCalculated ? labTable(run, part, depth) : "") +
           (options.spectra ? spectraTable(run, part, depth) : "");
}

std::string RunWriter::text() const {
    switch (format) {
    case Format::csv:
        return formatCsv(run);
    case Format::json:
        return formatJson(run);
    case Format::cgats:
        return formatCgats(run);
    default: {
        std::string tables;
        for (const Quantity quantity : passesOf(options)) {
            tables += table(quantity, run.readings);
        }
        return options.output.empty() ? tables : tables + formatComparison(run);
    }
    }
}

} // namespace spm
