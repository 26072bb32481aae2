#include "host/Record.h"

#include "host/Formats.h"
#include "host/HostError.h"
#include "host/OutputFile.h"
#include "host/Report.h"
#include "host/System.h"
#include "host/Table.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace host {

std::vector<Kind> passesOf(const MeasureOptions& options) {
    if (options.lab && options.spectra) return {Kind::lab, Kind::spectrum};
    return {options.spectra ? Kind::spectrum : Kind::lab};
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

Record::Record(const MeasureOptions& chosen, const Dialogue& shown, Run begun, const std::vector<std::string>& names)
    : options(chosen), dialogue(shown), format(formatOf(chosen)), run(std::move(begun)) {
    for (const std::string& name : names) {
        readings.push_back({name, {}, {}});
    }
}

std::span<Reading> Record::patches(const Stretch& stretch) {
    return std::span(readings).subspan(stretch.first, static_cast<std::size_t>(stretch.count));
}

Run Record::measured() const {
    Run part = run;
    std::copy_if(readings.begin(), readings.end(), std::back_inserter(part.readings),
                 [](const Reading& reading) { return reading.lab || !reading.spectrum.empty(); });
    return part;
}

void Record::save(Kind kind, const Stretch& stretch) {
    if (options.output.empty()) {
        if (format == Format::table) writeOut(table(kind, patches(stretch)));
        return;
    }
    try {
        replaceFile(options.output, text(measured()));
        isSaved = true;
    } catch (const HostError& error) {
        isSaved = false;
        dialogue.say(fmt::format("{}\nWhat was read is kept, and written with what comes next.", error.what()));
    }
}

void Record::finish() {
    const Run whole = measured();
    if (whole.readings.empty()) return;
    if (options.output.empty() && format != Format::table) writeOut(text(whole));
    if (!isSaved) saveOrShow(whole);
    if (!options.report.empty()) replaceFile(options.report, htmlReport(whole));
}

void Record::saveOrShow(const Run& whole) {
    try {
        replaceFile(options.output, text(whole));
    } catch (const HostError&) {
        writeOut(text(whole));
        throw;
    }
}

void Record::show(const std::string& text) const {
    if (format == Format::table) {
        writeOut('\n' + text);
    } else {
        dialogue.say(text);
    }
}

std::string Record::table(Kind kind, std::span<const Reading> part) const {
    const ColourDepth depth = options.output.empty() ? colourDepth(isTerminal(stdout)) : ColourDepth::none;
    const bool isSimulated = !run.simulation.empty();
    return kind == Kind::lab ? labTable(part, isSimulated, depth) : spectraTable(part, isSimulated, depth);
}

std::string Record::text(const Run& part) const {
    switch (format) {
    case Format::csv:
        return formatCsv(part);
    case Format::json:
        return formatJson(part);
    case Format::cgats:
        return formatCgats(part);
    default: {
        std::string tables;
        for (const Kind kind : passesOf(options)) {
            tables += table(kind, part.readings);
        }
        return tables;
    }
    }
}

} // namespace host
