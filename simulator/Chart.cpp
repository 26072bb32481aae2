#include "simulator/Chart.h"

#include "common/CsvReader.h"
#include "common/Text.h"

#include <charconv>
#include <fmt/format.h>

namespace simulator {

namespace {

using Fields = common::CsvReader::Fields;

/// The fields of the next line, as many as belong there; none at the end.
std::optional<Fields> nextLine(common::CsvReader& csv, std::size_t width) {
    std::optional<Fields> fields = csv.next();
    if (fields && fields->size() != width) csv.fail(fmt::format("{} fields; expected {}", fields->size(), width));
    return fields;
}

double numberUpTo(int most, const std::string& field, const common::CsvReader& csv) {
    double value = 0;
    const char* const end = field.data() + field.size();
    const auto [stop, error] = std::from_chars(field.data(), end, value);
    if (error != std::errc{} || stop != end || !(value >= 0 && value <= most)) {
        csv.fail(fmt::format("\"{}\" is not a number from 0 to {}", field, most));
    }
    return value;
}

void expectWavelength(std::size_t index, const std::string& field, const common::CsvReader& csv) {
    const auto wavelength = std::to_string(I1PRO3_FIRST_WAVELENGTH + I1PRO3_WAVELENGTH_STEP * index);
    if (field != wavelength) csv.fail(fmt::format("\"{}\" is not the wavelength {}", field, wavelength));
}

} // namespace

std::vector<Patch> parseChart(std::string_view text, const std::string& what) {
    common::requireUtf8(text, what);
    common::CsvReader csv(text, what);
    constexpr std::size_t width = 1 + I1PRO3_NUMBER_OF_REFLECTIONS;
    const Fields header = nextLine(csv, width).value_or(Fields());
    for (std::size_t i = 1; i < header.size(); ++i) {
        expectWavelength(i - 1, header[i], csv);
    }
    std::vector<Patch> patches;
    while (const std::optional<Fields> fields = nextLine(csv, width)) {
        Patch& patch = patches.emplace_back(Patch{fields->front(), {}});
        for (std::size_t i = 1; i < width; ++i) {
            patch.reflectance[i - 1] = numberUpTo(2, (*fields)[i], csv);
        }
    }
    if (patches.empty()) csv.fail("there are no patches");
    return patches;
}

Weights parseWeights(std::string_view text) {
    common::CsvReader csv(text, "the weights");
    constexpr std::size_t width = 4;
    nextLine(csv, width);
    Weights weights{};
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const Fields fields = nextLine(csv, width).value_or(Fields(width));
        expectWavelength(i, fields[0], csv);
        weights[i] = {numberUpTo(100, fields[1], csv), numberUpTo(100, fields[2], csv),
                      numberUpTo(100, fields[3], csv)};
    }
    return weights;
}

} // namespace simulator
