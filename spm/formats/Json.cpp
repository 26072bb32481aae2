// The members of a reading have the titles of CSV's columns.

#include "spm/Error.h"
#include "spm/formats/Columns.h"
#include "spm/formats/Formats.h"
#include "spm/formats/Sheet.h"
#include "spm/run/Comparison.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace spm {

namespace {

/// Keeps the order of insertion, and stores numbers as the module's float: a double would be written with digits that
/// were never measured.
using Json =
    nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t, std::uint64_t, float>;

Json textOrNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

/// A member as text; empty if it is null or missing.
std::string textOf(const Json& json, const std::string& name) {
    const Json value = json.value(name, Json());
    return value.is_string() ? value.get<std::string>() : value.is_null() ? "" : value.dump();
}

Json comparisonJson(const Reference& reference, const Comparison& comparison) {
    Json json{{"reference", reference.file.string()},
              {"reference_states_conditions", reference.statesConditions},
              {"formula", "CIEDE2000"},
              {"patches_compared", comparison.compared},
              {"not_in_reference", comparison.notInReference},
              {"not_measured", comparison.notMeasured}};
    for (const Statistic& statistic : comparison.statistics) {
        json[statistic.key] = statistic.value;
    }
    if (!reference.limits.empty()) {
        json["limits"] = reference.limits;
        json["passed"] = comparison.isWithinLimits;
    }
    return json;
}

Json patchJson(const Run& run, const Patch& patch, const Columns& columns) {
    Json json;
    const std::vector<std::string> titles = withName(run, run.chartColumns, "name");
    const std::vector<std::string> fields = withName(run, patch.fields, patch.name);
    for (std::size_t i = 0; i < titles.size(); ++i) {
        json[titles[i]] = fields[i];
    }
    const auto numbers = numbersOf(patch, columns);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        json[columns[i].title] = numbers[i] ? Json(*numbers[i]) : Json();
    }
    json["not_measured"] = patch.reading ? Json() : Json(patch.missingReason);
    return json;
}

} // namespace

std::string formatJson(const Run& run) {
    Json json{{"started", run.started}, {"module", run.module}, {"version", run.version}};
    for (const auto& [name, text] : factsOf(run)) {
        json[name] = textOrNull(text);
    }
    json["patches_in_row"] = run.patchesInRow;
    json["patches_in_chart"] = run.patches.size();
    json["patches_measured"] = measuredCount(run.patches);
    if (const auto comparison = compare(run)) json["comparison"] = comparisonJson(*run.reference, *comparison);
    const Columns columns = allColumns(run);
    for (const Patch& patch : run.patches) {
        json["readings"].push_back(patchJson(run, patch, columns));
    }
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

Run readJson(const std::string& text, const std::string& description) try {
    const Json json = Json::parse(text);
    Sheet sheet{.description = description};
    for (const auto& [title, value] : json.at("readings").at(0).items()) {
        sheet.titles.fields.push_back(title);
    }
    for (const Json& reading : json["readings"]) {
        Sheet::Row row{fmt::format("reading {}", sheet.rows.size() + 1), {}};
        for (const std::string& title : sheet.titles.fields) {
            row.fields.push_back(textOf(reading, title));
        }
        sheet.rows.push_back(row);
    }
    Run run = readSheet(sheet);
    takeFacts(run, [&](const char* name) { return textOf(json, name); });
    return run;
} catch (const Json::exception& error) {
    throw Error(fmt::format("{} is not JSON written by spm: {}", description, error.what()));
}

} // namespace spm
