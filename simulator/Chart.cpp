#include "simulator/Chart.h"

#include "common/CsvReader.h"
#include "common/Text.h"

#include <charconv>
#include <optional>
#include <system_error>

namespace simulator {

namespace {

using Fields = common::CsvReader::Fields;

/// The next record, which must have this many fields; none at the end.
std::optional<Fields> nextRecord(common::CsvReader& csv, std::size_t width) {
    std::optional<Fields> fields = csv.next();
    if (fields && fields->size() != width)
        csv.fail(std::to_string(fields->size()) + " fields; expected " + std::to_string(width));
    return fields;
}

double parseNumber(const std::string& field, int maximum, const common::CsvReader& csv) {
    double value = 0;
    const char* const end = field.data() + field.size();
    const auto [stop, error] = std::from_chars(field.data(), end, value);
    if (error != std::errc{} || stop != end || !(value >= 0 && value <= maximum)) {
        csv.fail('"' + field + "\" is not a number from 0 to " + std::to_string(maximum));
    }
    return value;
}

void requireWavelength(std::size_t index, const std::string& field, const common::CsvReader& csv) {
    const auto wavelength = std::to_string(I1PRO3_FIRST_WAVELENGTH + I1PRO3_WAVELENGTH_STEP * index);
    if (field != wavelength) csv.fail('"' + field + "\" is not the wavelength " + wavelength);
}

} // namespace

std::vector<Patch> parseChart(std::string_view text, const std::string& what) {
    common::requireUtf8(text, what);
    common::CsvReader csv(text, what);
    constexpr std::size_t width = 1 + I1PRO3_NUMBER_OF_REFLECTIONS;
    const Fields header = nextRecord(csv, width).value_or(Fields());
    for (std::size_t i = 1; i < header.size(); ++i) {
        requireWavelength(i - 1, header[i], csv);
    }
    std::vector<Patch> patches;
    while (const std::optional<Fields> fields = nextRecord(csv, width)) {
        Patch& patch = patches.emplace_back(Patch{fields->front(), {}});
        for (std::size_t i = 1; i < width; ++i) {
            patch.reflectance[i - 1] = parseNumber((*fields)[i], 2, csv);
        }
    }
    if (patches.empty()) csv.fail("there are no patches");
    return patches;
}

Weights parseWeights(std::string_view text) {
    common::CsvReader csv(text, "the weights");
    constexpr std::size_t width = 4;
    nextRecord(csv, width); // the header
    Weights weights{};
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const Fields fields = nextRecord(csv, width).value_or(Fields(width));
        requireWavelength(i, fields[0], csv);
        weights[i] = {parseNumber(fields[1], 100, csv), parseNumber(fields[2], 100, csv),
                      parseNumber(fields[3], 100, csv)};
    }
    return weights;
}

} // namespace simulator
