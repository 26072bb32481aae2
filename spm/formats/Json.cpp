#include "spm/formats/Formats.h"
#include "spm/formats/Reference.h"

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

Json comparisonJson(const Reference& reference, const Comparison& comparison) {
    Json json{{"reference", reference.file.string()},
              {"formula", nameOf(reference.formula)},
              {"patches", comparison.patches}};
    for (const Statistic& statistic : comparison.statistics) {
        json[statistic.key] = statistic.value;
    }
    if (!reference.limits.empty()) json["limits"] = reference.limits;
    if (!reference.limits.empty()) json["passed"] = comparison.isWithinLimits;
    json["notInReference"] = comparison.notInReference;
    json["notMeasured"] = comparison.notMeasured;
    return json;
}

Json readingJson(const Run& run, std::size_t place) {
    const Reading& reading = run.readings[place - 1];
    Json json{{"place", place}, {"name", reading.name}};
    if (reading.lab) json["lab"] = labJson(*reading.lab);
    if (const auto xyz = xyzOf(run, reading)) {
        json["xyz"] = Json{{"X", xyz->at(0)}, {"Y", xyz->at(1)}, {"Z", xyz->at(2)}};
    }
    if (const std::optional<Difference> difference = differenceOf(run, reading)) {
        json["expected"] = labJson(difference->expected);
        json["difference"] = difference->deltaE;
    }
    for (const SPM_REFLECTION& point : reading.spectrum) {
        json["reflectancePercent"][std::to_string(point.wavelength)] = point.value;
    }
    if (!reading.isMeasured()) json["notMeasured"] = missingReasonOf(reading);
    if (reading.isMeasured() && !reading.missingReason.empty()) json["incomplete"] = reading.missingReason;
    return json;
}

} // namespace

std::string formatJson(const Run& run) {
    requireValues(run);
    Json json{
        {"started", run.started}, {"instrument", run.instrument}, {"module", run.module}, {"version", run.version}};
    json["simulated"] = run.simulation.empty() ? Json() : Json(run.simulation);
    const Conditions& conditions = run.conditions;
    json["illuminant"] = hasLab(run) ? Json(conditions.illuminant) : Json();
    json["observer"] = hasLab(run) ? Json(observerOf(conditions)) : Json();
    json["colorimetry"] = hasLab(run) ? Json(colorimetryOf(conditions)) : Json();
    json["measurementCondition"] = conditions.measurement.empty() ? Json() : Json(conditions.measurement);
    json["patchesInRow"] = run.patchesInRow;
    json["patchesInChart"] = run.readings.size();
    json["patchesMeasured"] = measuredCount(run);
    if (const auto comparison = compare(run)) json["comparison"] = comparisonJson(*run.reference, *comparison);
    for (std::size_t i = 0; i < run.readings.size(); ++i) {
        json["readings"].push_back(readingJson(run, i + 1));
    }
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace spm
