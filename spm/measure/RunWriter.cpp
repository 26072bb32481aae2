#include "spm/measure/RunWriter.h"

#include "spm/Console.h"
#include "spm/Error.h"
#include "spm/formats/Formats.h"
#include "spm/formats/Report.h"
#include "spm/formats/Table.h"
#include "spm/measure/OutputFile.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace spm {

std::vector<Quantity> passesOf(const MeasureOptions& options) {
    if (options.lab && options.spectra) return {Quantity::lab, Quantity::spectrum};
    return {options.spectra ? Quantity::spectrum : Quantity::lab};
}

Format formatOf(const MeasureOptions& options) {
    if (options.format != Format::byName) return options.format;
    if (options.output.empty()) return Format::table;
    const std::string extension = options.output.extension().string();
    if (extension == ".csv") return Format::csv;
    if (extension == ".json") return Format::json;
    if (extension == ".txt" || extension == ".cgats") return Format::cgats;
    throw UsageError(
        fmt::format("the name {} does not tell the format; end it in .csv, .json or .cgats, or use --format",
                    options.output.string()));
}

RunWriter::RunWriter(const MeasureOptions& chosen, const Prompter& shown, Run begun,
                     const std::vector<std::string>& names)
    : options(chosen), prompter(shown), format(formatOf(chosen)), run(std::move(begun)) {
    for (const std::string& name : names) {
        readings.push_back({name, {}, {}});
    }
}

std::span<Reading> RunWriter::patches(const Strip& strip) {
    return std::span(readings).subspan(strip.first, static_cast<std::size_t>(strip.count));
}

Run RunWriter::measured() const {
    Run part = run;
    std::copy_if(readings.begin(), readings.end(), std::back_inserter(part.readings),
                 [](const Reading& reading) { return reading.lab || !reading.spectrum.empty(); });
    return part;
}

void RunWriter::save(Quantity quantity, const Strip& strip) {
    if (options.output.empty()) {
        if (format == Format::table) writeOut(table(quantity, patches(strip)));
        return;
    }
    try {
        replaceFile(options.output, text(measured()));
        isSaved = true;
    } catch (const Error& error) {
        isSaved = false;
        prompter.say(fmt::format("{}\nWhat was read is kept, and written with what comes next.", error.what()));
    }
}

void RunWriter::finish() {
    const Run whole = measured();
    if (whole.readings.empty()) return;
    if (options.output.empty() && format != Format::table) writeOut(text(whole));
    if (!isSaved) saveOrShow(whole);
    if (!options.report.empty()) replaceFile(options.report, htmlReport(whole));
}

void RunWriter::saveOrShow(const Run& whole) {
    try {
        replaceFile(options.output, text(whole));
    } catch (const Error&) {
        writeOut(text(whole));
        throw;
    }
}

void RunWriter::show(const std::string& text) const {
    if (format == Format::table) {
        writeOut('\n' + text);
    } else {
        prompter.say(text);
    }
}

std::string RunWriter::table(Quantity quantity, std::span<const Reading> part) const {
    const ColourDepth depth = options.output.empty() ? colourDepth(isTerminal(stdout)) : ColourDepth::none;
    const bool isSimulated = !run.simulation.empty();
    return quantity == Quantity::lab ? labTable(part, isSimulated, depth) : spectraTable(part, isSimulated, depth);
}

std::string RunWriter::text(const Run& part) const {
    switch (format) {
    case Format::csv:
        return formatCsv(part);
    case Format::json:
        return formatJson(part);
    case Format::cgats:
        return formatCgats(part);
    default: {
        std::string tables;
        for (const Quantity quantity : passesOf(options)) {
            tables += table(quantity, part.readings);
        }
        return tables;
    }
    }
}

} // namespace spm
