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

std::string labFields(const std::optional<SPM_LAB>& lab) {
    return lab ? numberAfterComma(lab->L) + numberAfterComma(lab->a) + numberAfterComma(lab->b) : ",,,";
}

std::string differenceFields(const std::optional<Difference>& difference) {
    if (!difference) return ",,,,";
    return labFields(difference->expected) + numberAfterComma(difference->deltaE);
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
    if (run.reference) text += fmt::format(",expected_L*,expected_a*,expected_b*,{}", nameOf(run.reference->formula));
    text += withLab ? ",illuminant,observer,simulated,not_measured\n" : ",simulated,not_measured\n";

    const std::string conditions = (withLab ? fmt::format(",{},{},", illuminant, observer) : ",") +
                                   (run.simulation.empty() ? "no" : field(run.simulation)) + ',';
    const std::string measured = fmt::format(" ({} measured)", coverage(run));
    for (const Reading& reading : run.readings) {
        text += field(reading.name);
        if (withLab) text += labFields(reading.lab);
        for (const std::int32_t wavelength : columns) {
            const std::optional<float> value = reflectance(reading, wavelength);
            text += value ? numberAfterComma(*value) : ",";
        }
        if (run.reference) text += differenceFields(differenceOf(run, reading));
        text += conditions;
        text += field(reading.isMeasured() ? reading.gap : reasonOf(reading) + measured) + '\n';
    }
    return text;
}

} // namespace spm
