#include "spm/formats/Formats.h"
#include "spm/formats/Reference.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace spm {

namespace {

std::string field(const std::string& text) {
    if (text.find_first_of("\",\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char character : text) {
        quoted += character;
        if (character == '"') quoted += character;
    }
    return quoted + '"';
}

std::string numberAfterComma(double value) {
    return fmt::format(",{:.4f}", value);
}

std::string labFields(const SPM_LAB& lab) {
    return numberAfterComma(lab.L) + numberAfterComma(lab.a) + numberAfterComma(lab.b);
}

std::string colourFields(const Run& run, const Reading& reading) {
    if (!reading.lab) return run.withXyz ? ",,,,,," : ",,,";
    const auto xyz = xyzOf(run, reading);
    return labFields(*reading.lab) + (xyz ? fmt::format(",{:.4f}", fmt::join(*xyz, ",")) : "");
}

std::string differenceFields(const std::optional<Difference>& difference) {
    return difference ? labFields(difference->expected) + numberAfterComma(difference->deltaE) : ",,,,";
}

} // namespace

std::string formatCsv(const Run& run) {
    requireValues(run);
    const bool withLab = hasLab(run);
    const std::set<std::int32_t> columns = wavelengths(run);
    std::string text = withLab ? "name,L*,a*,b*" : "name";
    if (withLab && run.withXyz) text += ",X,Y,Z";
    for (const std::int32_t wavelength : columns) {
        text += fmt::format(",nm{}_percent", wavelength);
    }
    if (run.reference) text += fmt::format(",expected_L*,expected_a*,expected_b*,{}", nameOf(run.reference->formula));
    if (withLab) text += ",illuminant,observer,colorimetry";
    text += ",measurement_condition,simulated,not_measured\n";

    const Conditions& used = run.conditions;
    const std::string conditions =
        (withLab ? fmt::format(",{},{},{}", used.illuminant, observerOf(used), colorimetryOf(used)) : "") +
        fmt::format(",{},{},", field(used.measurement), run.simulation.empty() ? "no" : field(run.simulation));
    const std::string measured = fmt::format(" ({} measured)", coverage(run));
    for (const Reading& reading : run.readings) {
        text += field(reading.name);
        if (withLab) text += colourFields(run, reading);
        for (const std::int32_t wavelength : columns) {
            const std::optional<float> value = reflectance(reading, wavelength);
            text += value ? numberAfterComma(*value) : ",";
        }
        if (run.reference) text += differenceFields(differenceOf(run, reading));
        text += conditions;
        text += field(reading.isMeasured() ? reading.missingReason : missingReasonOf(reading) + measured) + '\n';
    }
    return text;
}

} // namespace spm
