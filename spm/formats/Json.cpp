#include "spm/formats/Formats.h"

#include <nlohmann/json.hpp>

namespace spm {

namespace {

/// In the order of insertion, and with the module's float: a double would show digits that were never measured.
using Json =
    nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t, std::uint64_t, float>;

Json readingJson(const Run& run, std::size_t place) {
    const Reading& reading = run.readings[place - 1];
    Json json{{"place", place}, {"name", reading.name}};
    if (reading.lab) json["lab"] = Json{{"L", reading.lab->L}, {"a", reading.lab->a}, {"b", reading.lab->b}};
    if (const auto xyz = xyzOf(run, reading))
        json["xyz"] = Json{{"X", xyz->at(0)}, {"Y", xyz->at(1)}, {"Z", xyz->at(2)}};
    for (const SPM_REFLECTION& point : reading.spectrum) {
        json["reflectancePercent"][std::to_string(point.wavelength)] = point.value;
    }
    if (!reading.isMeasured()) json["notMeasured"] = reasonOf(reading);
    if (reading.isMeasured() && !reading.gap.empty()) json["incomplete"] = reading.gap;
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
    for (std::size_t i = 0; i < run.readings.size(); ++i) {
        json["readings"].push_back(readingJson(run, i + 1));
    }
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace spm
