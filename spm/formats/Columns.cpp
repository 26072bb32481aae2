#include "spm/formats/Columns.h"

#include "spm/formats/Sheet.h"
#include "spm/run/Comparison.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace spm {

namespace {

constexpr const char* calculated = "calculated from spectra";

struct Coordinate {
    const char* title;
    const char* cgatsTitle;
    float SPM_LAB::*value;
};
constexpr std::array<Coordinate, 3> coordinates{
    {{"L*", "LAB_L", &SPM_LAB::L}, {"a*", "LAB_A", &SPM_LAB::a}, {"b*", "LAB_B", &SPM_LAB::b}}};

/// @param pick  the column's number of a difference
Column comparisonColumn(const Run& run, const std::string& title, std::function<double(const Difference&)> pick) {
    return {title, "", [&run, pick = std::move(pick)](const Patch& patch) -> std::optional<double> {
                const auto difference = differenceOf(run, patch);
                return difference ? std::optional(pick(*difference)) : std::nullopt;
            }};
}

} // namespace

Columns measuredColumns(const Run& run) {
    Columns columns;
    for (const auto& [title, cgatsTitle, value] : coordinates) {
        columns.push_back(
            {title, cgatsTitle, [coordinate = value](const Patch& patch) { return patch.reading->lab.*coordinate; }});
    }
    for (std::size_t i = 0; run.withXyz && i < 3; ++i) {
        const std::string title(1, "XYZ"[i]);
        columns.push_back(
            {title, "XYZ_" + title, [&run, i](const Patch& patch) { return xyzOf(run, *patch.reading)[i]; }});
    }
    return columns;
}

Columns spectralColumns(const Run& run) {
    const auto measured =
        std::ranges::find_if(run.patches, [](const Patch& patch) { return patch.reading.has_value(); });
    if (measured == run.patches.end()) return {};
    Columns columns;
    for (std::size_t i = 0; i < measured->reading->spectrum.size(); ++i) {
        const std::int32_t wavelength = measured->reading->spectrum[i].wavelength;
        columns.push_back({fmt::format("nm{}_percent", wavelength), fmt::format("{}{}", spectralPrefix, wavelength),
                           [i](const Patch& patch) { return patch.reading->spectrum.at(i).value; }});
    }
    return columns;
}

Columns comparisonColumns(const Run& run) {
    if (run.reference == nullptr) return {};
    Columns columns{comparisonColumn(run, "CIEDE2000", &Difference::deltaE)};
    for (const auto& [prefix, lab] : {std::pair("d", &Difference::delta), {"expected_", &Difference::expected}}) {
        for (const auto& [title, cgatsTitle, value] : coordinates) {
            const auto pick = [member = lab, coordinate = value](const Difference& difference) {
                return difference.*member.*coordinate;
            };
            columns.push_back(comparisonColumn(run, std::string(prefix) + title, pick));
        }
    }
    return columns;
}

Columns allColumns(const Run& run) {
    return joined({measuredColumns(run), spectralColumns(run), comparisonColumns(run)});
}

Columns joined(std::initializer_list<Columns> parts) {
    Columns all;
    for (const Columns& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

std::vector<std::optional<double>> numbersOf(const Patch& patch, const Columns& columns) {
    std::vector<std::optional<double>> numbers(columns.size());
    if (!patch.reading) return numbers;
    std::ranges::transform(columns, numbers.begin(), [&](const Column& column) { return column.valueOf(patch); });
    return numbers;
}

std::vector<std::string> fieldsOf(const Patch& patch, const Columns& columns) {
    std::vector<std::string> fields;
    std::ranges::transform(numbersOf(patch, columns), std::back_inserter(fields),
                           [](const auto& number) { return number ? fmt::format("{:.4f}", *number) : ""; });
    return fields;
}

std::vector<std::pair<std::string, std::string>> factsOf(const Run& run) {
    const Conditions& used = run.conditions;
    return {{"instrumentation", run.instrument},
            {"illuminant", used.illuminant},
            {"observer", observerOf(used)},
            {"colorimetry", used.isCalculated ? calculated : "from the module"},
            {"measurement_source", used.measurement},
            {"chart", run.chart},
            {"patches_in_row", std::to_string(run.patchesInRow)},
            {"simulated", run.simulation}};
}

void takeFacts(Run& run, const std::function<std::string(const char*)>& textOf) {
    run.instrument = textOf("instrumentation");
    run.conditions = {textOf("illuminant"), parseNumber(textOf("observer"), 0), textOf("colorimetry") == calculated,
                      textOf("measurement_source")};
    run.chart = textOf("chart");
    run.patchesInRow = parseNumber(textOf("patches_in_row"), unknownRows);
    run.simulation = textOf("simulated");
}

std::vector<std::string> withName(const Run& run, std::vector<std::string> fields, const std::string& name) {
    fields.insert(fields.begin() + (hasIds(run) ? 1 : 0), name);
    return fields;
}

bool hasIds(const Run& run) {
    return !run.chartColumns.empty() && run.chartColumns.front() == idTitle;
}

} // namespace spm
