#include "common/CsvReader.h"
#include "spm/formats/Formats.h"
#include "spm/formats/Sheet.h"
#include "spm/run/Comparison.h"

#include <fmt/format.h>
#include <utility>

namespace spm {

namespace {

using Fields = std::vector<std::string>;

constexpr const char* notSimulated = "no";

std::string csvField(const std::string& text) {
    if (text.find_first_of("\",\r\n") == std::string::npos) return text;
    std::string field = "\"";
    for (const char character : text) {
        field += character;
        if (character == '"') field += character;
    }
    return field + '"';
}

std::string csvLine(const Fields& fields) {
    std::string text;
    for (const std::string& field : fields) {
        text += (&field == &fields.front() ? "" : ",") + csvField(field);
    }
    return text + '\n';
}

void append(Fields& fields, const Fields& more) {
    fields.insert(fields.end(), more.begin(), more.end());
}

template <class... Numbers>
void appendNumbers(Fields& fields, Numbers... numbers) {
    (fields.push_back(fmt::format("{:.4f}", numbers)), ...);
}

Fields csvTitles(const Run& run) {
    Fields titles = withName(run, run.chartColumns, "name");
    append(titles, {"L*", "a*", "b*"});
    if (run.withXyz) append(titles, {"X", "Y", "Z"});
    for (const std::int32_t wavelength : wavelengths(run)) {
        titles.push_back(fmt::format("nm{}_percent", wavelength));
    }
    if (run.reference) append(titles, {"expected_L*", "expected_a*", "expected_b*", nameOf(run.reference->formula)});
    append(titles, {"illuminant", "observer", "colorimetry", "measurement_condition", "chart", "patches_in_row",
                    "simulated", "not_measured"});
    return titles;
}

/// What applies to all patches.
Fields runFields(const Run& run) {
    const Conditions& used = run.conditions;
    return {used.illuminant,
            observerOf(used),
            colorimetryOf(used),
            used.measurement,
            run.chart,
            std::to_string(run.patchesInRow),
            run.simulation.empty() ? notSimulated : run.simulation};
}

void appendReading(Fields& fields, const Run& run, const Patch& patch) {
    const auto& [lab, spectrum] = *patch.reading;
    appendNumbers(fields, lab.L, lab.a, lab.b);
    if (run.withXyz) {
        const auto [x, y, z] = xyzOf(run, *patch.reading);
        appendNumbers(fields, x, y, z);
    }
    for (const SPM_REFLECTION& point : spectrum) {
        appendNumbers(fields, point.value);
    }
    if (const auto difference = differenceOf(run, patch)) {
        const SPM_LAB& expected = difference->expected;
        appendNumbers(fields, expected.L, expected.a, expected.b, difference->deltaE);
    }
}

char separatorOf(const std::string& text) {
    const std::string header = text.substr(0, text.find('\n'));
    for (const char separator : {';', '\t'}) {
        if (header.find(separator) != std::string::npos) return separator;
    }
    return ',';
}

} // namespace

std::string formatCsv(const Run& run) {
    const Fields titles = csvTitles(run);
    const Fields same = runFields(run);
    std::string text = csvLine(titles);
    for (const Patch& patch : run.patches) {
        Fields fields = withName(run, patch.fields, patch.name);
        if (patch.reading) appendReading(fields, run, patch);
        fields.resize(titles.size() - same.size() - 1); // missing values are empty
        append(fields, same);
        fields.push_back(patch.reading ? "" : missingReasonOf(patch));
        text += csvLine(fields);
    }
    return text;
}

Run readCsv(const std::string& text, const std::string& description) {
    const char separator = separatorOf(text);
    common::CsvReader csv(text, description, separator);
    Sheet sheet{.description = description, .hasDecimalCommas = separator != ','};
    while (auto fields = csv.next()) {
        sheet.rows.push_back({fmt::format("line {}", csv.lineNumber()), std::move(*fields)});
    }
    if (sheet.rows.empty()) return {};
    sheet.titles = sheet.rows.front();
    sheet.rows.erase(sheet.rows.begin());
    Run run = readSheet(sheet);
    run.conditions = {firstField(sheet, "illuminant"), parseNumber(firstField(sheet, "observer"), 0),
                      isCalculated(firstField(sheet, "colorimetry")), firstField(sheet, "measurement_condition")};
    run.chart = firstField(sheet, "chart");
    run.patchesInRow = parseNumber(firstField(sheet, "patches_in_row"), unknownRows);
    run.simulation = firstField(sheet, "simulated");
    if (run.simulation == notSimulated) run.simulation.clear();
    return run;
}

} // namespace spm
