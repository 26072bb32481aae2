#include "spm/formats/Formats.h"
#include "spm/formats/Reference.h"

#include <fmt/format.h>

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

std::string labFields(const Reading& reading) {
    if (!reading.lab) return ",,,";
    return numberAfterComma(reading.lab->L) + numberAfterComma(reading.lab->a) + numberAfterComma(reading.lab->b);
}

std::string differenceTitles(const Run& run) {
    if (run.reference == nullptr) return "";
    return fmt::format(",expected_L*,expected_a*,expected_b*,{}", nameOf(run.reference->formula));
}

std::string differenceFields(const Run& run, const Reading& reading) {
    const std::optional<Difference> difference = differenceOf(run, reading);
    if (!difference) return run.reference == nullptr ? "" : ",,,,";
    const auto& [lab, deltaE] = *difference;
    return numberAfterComma(lab.L) + numberAfterComma(lab.a) + numberAfterComma(lab.b) + numberAfterComma(deltaE);
}

} // namespace

std::string formatCsv(const Run& run) {
    requireValues(run);
    const bool withLab = hasLab(run);
    const std::set<std::int32_t> columns = wavelengths(run);
    std::string text = withLab ? "name,L*,a*,b*" : "name";
    for (const std::int32_t wavelength : columns) {
        text += fmt::format(",nm{}_percent", wavelength);
    }
    text += differenceTitles(run);
    text += withLab ? ",illuminant,observer,simulated,not_measured\n" : ",simulated,not_measured\n";

    const std::string conditions = (withLab ? fmt::format(",{},{},", illuminant, observer) : ",") +
                                   (run.simulation.empty() ? "no" : field(run.simulation)) + ',';
    const std::string measured = fmt::format(" ({} measured)", coverage(run));
    for (const Reading& reading : run.readings) {
        text += field(reading.name);
        if (withLab) text += labFields(reading);
        for (const std::int32_t wavelength : columns) {
            const std::optional<float> value = reflectance(reading, wavelength);
            text += value ? numberAfterComma(*value) : ",";
        }
        text += differenceFields(run, reading);
        text += conditions + field(reading.isMeasured() ? reading.gap : reasonOf(reading) + measured) + '\n';
    }
    return text;
}

} // namespace spm
