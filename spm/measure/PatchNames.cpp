#include "spm/measure/PatchNames.h"

#include "spm/Error.h"
#include "spm/formats/PatchFile.h"

#include <fmt/format.h>

namespace spm {

namespace {

using Names = std::vector<std::string>;

Names readChart(const std::filesystem::path& chart) {
    Names names;
    for (Reading& patch : readPatches(chart, "the chart file", PatchFileKind::chart)) {
        names.push_back(std::move(patch.name));
    }
    return names;
}

Names numberedNames(std::size_t count) {
    Names names;
    for (std::size_t i = 1; i <= count; ++i) {
        names.push_back(fmt::format("patch {}", i));
    }
    return names;
}

/// Requires a name for each patch or, if the number of rows is not given, names for whole rows.
void requireCount(const MeasureOptions& options, std::size_t names, const std::string& source) {
    const auto inRow = static_cast<std::size_t>(options.patches);
    const bool isSpots = options.spots > 0;
    const auto required = static_cast<std::size_t>(isSpots ? options.spots : options.rows * options.patches);
    if (required == 0 && names % inRow != 0) {
        throw UsageError(fmt::format("the number of patches in {} is {}, which is not a multiple of {}; set --patches "
                                     "to the number of patches in a row, or correct the names",
                                     source, names, inRow));
    }
    if (required != 0 && names != required) {
        throw UsageError(fmt::format("the number of patches in {} is {}, but should be {}; correct {} or the names",
                                     source, names, required, isSpots ? "--spots" : "--rows and --patches"));
    }
}

} // namespace

std::vector<std::string> patchNames(const MeasureOptions& options) {
    if (options.chart.empty() && options.names.empty()) {
        const std::int32_t rows = options.rows > 0 ? options.rows : 4;
        return numberedNames(static_cast<std::size_t>(options.spots > 0 ? options.spots : rows * options.patches));
    }
    Names names = options.chart.empty() ? options.names : readChart(options.chart);
    requireCount(options, names.size(), options.chart.empty() ? "--names" : "the chart file " + options.chart.string());
    return names;
}

} // namespace spm
