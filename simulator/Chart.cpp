#include "simulator/Chart.h"

#include "common/CsvReader.h"
#include "common/Text.h"

#include <charconv>
#include <optional>
#include <system_error>

namespace simulator {

namespace {

using Fields = common::CsvReader::Fields;

/// The next record, a name and a field for each wavelength; none at the end.
std::optional<Fields> nextRecord(common::CsvReader& csv) {
    constexpr std::size_t width = 1 + I1PRO3_NUMBER_OF_REFLECTIONS;
    std::optional<Fields> fields = csv.next();
    if (fields && fields->size() != width)
        csv.fail(std::to_string(fields->size()) + " fields; expected " + std::to_string(width));
    return fields;
}

double parseFactor(const std::string& field, const common::CsvReader& csv) {
    double value = 0;
    const char* const end = field.data() + field.size();
    const auto [stop, error] = std::from_chars(field.data(), end, value);
    const bool isFactor = error == std::errc{} && stop == end && value >= 0 && value <= 2;
    if (!isFactor) csv.fail('"' + field + "\" is not a number from 0 to 2");
    return value;
}

} // namespace

std::vector<Patch> parseChart(std::string_view text, const std::string& what) {
    common::requireUtf8(text, what);
    common::CsvReader csv(text, what);
    const Fields header = nextRecord(csv).value_or(Fields());
    for (std::size_t i = 1; i < header.size(); ++i) {
        const auto wavelength = std::to_string(I1PRO3_FIRST_WAVELENGTH + I1PRO3_WAVELENGTH_STEP * (i - 1));
        if (header[i] != wavelength) csv.fail('"' + header[i] + "\" is not the wavelength " + wavelength);
    }
    std::vector<Patch> patches;
    while (const std::optional<Fields> fields = nextRecord(csv)) {
        Patch& patch = patches.emplace_back(Patch{fields->front(), {}});
        for (std::size_t i = 0; i < patch.reflectance.size(); ++i) {
            patch.reflectance[i] = parseFactor((*fields)[i + 1], csv);
        }
    }
    if (patches.empty()) csv.fail("there are no patches");
    return patches;
}

common::Triple cieLab(const Reflectance& reflectance) {
    common::Triple white{};
    common::Triple sample{};
    for (std::size_t i = 0; i < reflectance.size(); ++i) {
        for (std::size_t k = 0; k < sample.size(); ++k) {
            white[k] += d65TenDegree[i][k];
            sample[k] += d65TenDegree[i][k] * reflectance[i];
        }
    }
    return common::xyzToLab(sample, white);
}

} // namespace simulator
