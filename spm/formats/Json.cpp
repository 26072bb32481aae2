#include "spm/Error.h"
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

Json labJson(const SPM_LAB& lab) {
    return {{"L", lab.L}, {"a", lab.a}, {"b", lab.b}};
}

SPM_LAB labOf(const Json& json) {
    return {json.at("L"), json.at("a"), json.at("b")};
}

Json textOrNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

/// The text of a member; empty if it is null or missing.
std::string textOf(const Json& json, const char* name) {
    return json.contains(name) && json[name].is_string() ? json[name].get<std::string>() : "";
}

Json comparisonJson(const Reference& reference, const Comparison& comparison) {
    Json json{{"reference", reference.file.string()},
              {"referenceStatesConditions", reference.statesConditions},
              {"formula", nameOf(reference.formula)},
              {"patches", comparison.compared},
              {"patchesMeasured", comparison.measured}};
    for (const Statistic& statistic : comparison.statistics) {
        json[statistic.key] = statistic.value;
    }
    if (!reference.limits.empty()) json["limits"] = reference.limits;
    if (!reference.limits.empty()) json["passed"] = comparison.isWithinLimits;
    json["notInReference"] = comparison.notInReference;
    json["notMeasured"] = comparison.notMeasured;
    return json;
}

void addValues(Json& json, const Run& run, const Patch& patch) {
    const Reading& reading = *patch.reading;
    json["lab"] = labJson(reading.lab);
    if (run.withXyz) {
        const auto [x, y, z] = xyzOf(run, reading);
        json["xyz"] = Json{{"X", x}, {"Y", y}, {"Z", z}};
    }
    if (const std::optional<Difference> difference = differenceOf(run, patch)) {
        json["expected"] = labJson(difference->expected);
        json["difference"] = difference->deltaE;
    }
    for (const SPM_REFLECTION& point : reading.spectrum) {
        json["reflectancePercent"][std::to_string(point.wavelength)] = point.value;
    }
}

Json patchJson(const Run& run, std::size_t place) {
    const Patch& patch = run.patches[place - 1];
    Json json{{"place", place}, {"name", patch.name}};
    for (std::size_t i = 0; i < patch.fields.size(); ++i) {
        json["chart"][run.chartColumns[i]] = patch.fields[i];
    }
    if (patch.reading) {
        addValues(json, run, patch);
    } else {
        json["notMeasured"] = missingReasonOf(patch);
    }
    return json;
}

/// @param columns  the titles of the chart's columns
Patch patchOf(const Json& json, const std::vector<std::string>& columns, std::size_t place) {
    Patch patch{.name = json.at("name"),
                .place = fmt::format("reading {}", place),
                .missingReason = textOf(json, "notMeasured")};
    for (const std::string& title : columns) {
        patch.fields.push_back(json.at("chart").at(title));
    }
    if (!json.contains("lab")) return patch;
    patch.reading = Reading{labOf(json["lab"])};
    const Json spectrum = json.value("reflectancePercent", Json::object());
    for (const auto& [wavelength, percent] : spectrum.items()) {
        patch.reading->spectrum.push_back({parseNumber(wavelength, 0), percent});
    }
    return patch;
}

Run runOf(const Json& json) {
    Run run;
    run.conditions = {textOf(json, "illuminant"), parseNumber(textOf(json, "observer"), 0),
                      isCalculated(textOf(json, "colorimetry")), textOf(json, "measurementCondition")};
    run.simulation = textOf(json, "simulated");
    run.chart = textOf(json, "chart");
    run.patchesInRow = json.value("patchesInRow", unknownRows);
    const Json& readings = json.at("readings");
    if (readings.empty()) return run;
    const Json fields = readings.front().value("chart", Json::object());
    for (const auto& [title, field] : fields.items()) {
        run.chartColumns.push_back(title);
    }
    for (const Json& reading : readings) {
        run.patches.push_back(patchOf(reading, run.chartColumns, run.patches.size() + 1));
        run.withXyz = run.withXyz || reading.contains("xyz");
    }
    return run;
}

} // namespace

std::string formatJson(const Run& run) {
    const Conditions& conditions = run.conditions;
    Json json{{"started", run.started},
              {"instrument", run.instrument},
              {"module", run.module},
              {"version", run.version},
              {"simulated", textOrNull(run.simulation)},
              {"illuminant", conditions.illuminant},
              {"observer", observerOf(conditions)},
              {"colorimetry", colorimetryOf(conditions)},
              {"measurementCondition", textOrNull(conditions.measurement)},
              {"chart", textOrNull(run.chart)},
              {"patchesInRow", run.patchesInRow},
              {"patchesInChart", run.patches.size()},
              {"patchesMeasured", measuredCount(run.patches)}};
    if (const auto comparison = compare(run)) json["comparison"] = comparisonJson(*run.reference, *comparison);
    for (std::size_t place = 1; place <= run.patches.size(); ++place) {
        json["readings"].push_back(patchJson(run, place));
    }
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

Run readJson(const std::string& text, const std::string& description) try {
    return runOf(Json::parse(text));
} catch (const Json::exception& error) {
    throw Error(fmt::format("{} is not JSON written by spm: {}", description, error.what()));
}

} // namespace spm
