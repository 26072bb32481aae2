#include "spm/formats/Reference.h"

#include "common/CsvReader.h"
#include "spm/Error.h"
#include "spm/formats/DeltaE.h"
#include "spm/formats/Printable.h"
#include "spm/formats/Table.h"
#include "spm/InputFile.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <functional>
#include <iterator>
#include <numeric>
#include <optional>
#include <set>
#include <string_view>

namespace spm {

namespace {

using common::CsvReader;
using Fields = CsvReader::Fields;

/// An L*, a* or b*. The limits are far beyond all surfaces, and keep the arithmetic from overflowing.
std::optional<float> numberIn(std::string_view text) {
    float value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isNumber = error == std::errc{} && end == text.data() + text.size();
    return isNumber && std::abs(value) <= 500 ? std::optional(value) : std::nullopt;
}

/// A reference file. Columns behind the four that are read may tell more, as in the CSV that is written here.
class Reader {
public:
    explicit Reader(const std::filesystem::path& path)
        : content(readInput(path, "the reference file")),
          csv(content, fmt::format("the reference file {}", path.string())), reference{path, {}} {}

    Reference read() {
        if (const std::optional<Fields> header = csv.next()) requireHeader(*header);
        while (const std::optional<Fields> patch = csv.next()) {
            take(*patch);
        }
        if (reference.patches.empty()) {
            throw Error(fmt::format("{} has no patches; give each a line below the header, such as white,95.5,-0.5,1",
                                    csv.description()));
        }
        return std::move(reference);
    }

private:
    void requireFields(const Fields& fields) const {
        if (fields.size() >= 4) return;
        csv.fail(
            fmt::format("the number of fields is {}, but 4 belong there, separated by commas: name,L*,a*,b*; put a "
                        "name that has commas in double quotes",
                        fields.size()));
    }

    /// Without a header the first patch would be lost; with another, other values would be taken for L*, a* and b*.
    void requireHeader(const Fields& header) const {
        requireFields(header);
        const auto begins = [](const std::string& text, std::string_view letters) {
            return !text.empty() && letters.find(text.front()) != std::string_view::npos;
        };
        if (begins(header[1], "Ll") && begins(header[2], "Aa") && begins(header[3], "Bb")) return;
        csv.fail("the header name,L*,a*,b* is missing; put it above the patches");
    }

    void take(const Fields& patch) {
        requireFields(patch);
        const SPM_LAB lab{value(patch[1]), value(patch[2]), value(patch[3])};
        if (!reference.patches.emplace(patch[0], lab).second) {
            csv.fail(fmt::format("\"{}\" is the name of an earlier patch, too; give each a name of its own", patch[0]));
        }
    }

    float value(const std::string& text) const {
        const std::optional<float> found = numberIn(text);
        if (!found) csv.fail(fmt::format("\"{}\" is not a number from -500 to 500; write it as in -12.34", text));
        return *found;
    }

    std::string content;
    CsvReader csv;
    Reference reference;
};

/// Completes a comparison that has its patches.
void summarise(Comparison& comparison) {
    std::vector<PatchDifference>& patches = comparison.patches;
    std::ranges::stable_sort(patches, std::greater{}, &PatchDifference::deltaE);
    const std::size_t count = patches.size();
    const auto add = [](double sum, const PatchDifference& patch) { return sum + patch.deltaE; };
    comparison.mean = std::accumulate(patches.begin(), patches.end(), 0.0, add) / static_cast<double>(count);
    const std::size_t rank = (95 * count + 99) / 100; // from 1 for the best
    comparison.percentile95 = patches[count - rank].deltaE;
    comparison.maximum = patches.front().deltaE;
}

void append(std::string& text, std::string_view what, const std::vector<std::string>& names) {
    if (!names.empty())
        text += fmt::format("{}: \"{}\"\n", what, printable(fmt::format("{}", fmt::join(names, "\", \""))));
}

} // namespace

Reference readReference(const std::filesystem::path& file) {
    return Reader(file).read();
}

Comparison compare(const Run& run, const Reference& reference) {
    Comparison comparison{reference.file, !run.simulation.empty(), {}, 0, 0, 0, {}, {}};
    std::set<std::string_view> measured;
    for (const Reading& reading : run.readings) {
        if (!reading.lab) continue;
        measured.insert(reading.name);
        const auto expected = reference.patches.find(reading.name);
        if (expected == reference.patches.end()) {
            comparison.notInReference.push_back(reading.name);
        } else {
            const double deltaE = deltaE2000(*reading.lab, expected->second);
            comparison.patches.push_back({reading.name, *reading.lab, expected->second, deltaE});
        }
    }
    for (const auto& [name, lab] : reference.patches) {
        if (!measured.contains(name)) comparison.notMeasured.push_back(name);
    }
    if (measured.empty()) {
        throw Error(fmt::format("no CIELab values were measured to compare with the reference file {}; measure the "
                                "chart's rows",
                                reference.file.string()));
    }
    if (comparison.patches.empty()) {
        throw Error(fmt::format("no patch has the name of one in the reference file {}: measured was \"{}\", the "
                                "reference has \"{}\"; name the patches as the reference does",
                                reference.file.string(), comparison.notInReference.front(),
                                comparison.notMeasured.front()));
    }
    summarise(comparison);
    return comparison;
}

std::string formatComparison(const Comparison& comparison) {
    std::string text = fmt::format("Compared with {}\n{:<24} {:>9} {:>8} {:>8} {:>8}\n", comparison.file.string(),
                                   conditions(comparison.isSimulated), "CIEDE2000", "dL*", "da*", "db*");
    for (const PatchDifference& patch : comparison.patches) {
        text += fmt::format("{:<24.24} {:9.2f} {:+8.2f} {:+8.2f} {:+8.2f}\n", printable(patch.name), patch.deltaE,
                            patch.measured.L - patch.expected.L, patch.measured.a - patch.expected.a,
                            patch.measured.b - patch.expected.b);
    }
    text += fmt::format("\n{:<24} {:9.2f}\n{:<24} {:9.2f}   (nearest rank)\n{:<24} {:9.2f}\n", "mean", comparison.mean,
                        "95th percentile", comparison.percentile95, "maximum", comparison.maximum);
    append(text, "Not compared, because not in the reference", comparison.notInReference);
    append(text, "Not compared, because not measured", comparison.notMeasured);
    return text;
}

} // namespace spm
