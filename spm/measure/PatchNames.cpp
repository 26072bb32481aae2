#include "spm/measure/PatchNames.h"

#include "spm/Error.h"
#include "spm/formats/PatchFile.h"

#include <fmt/format.h>

namespace spm {

namespace {

std::vector<std::string> readChart(const std::filesystem::path& chart) {
    std::vector<std::string> names;
    for (Reading& patch : readPatches(chart, "the chart file", PatchFileKind::chart)) {
        names.push_back(std::move(patch.name));
    }
    return names;
}

std::vector<std::string> numberedNames(std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t i = 1; i <= count; ++i) {
        names.push_back(fmt::format("patch {}", i));
    }
    return names;
}

/// @return 0 if the options don't determine it
std::size_t patchCount(const MeasureOptions& options) {
    return static_cast<std::size_t>(options.spots > 0 ? options.spots : options.rows * options.patchesInRow);
}

/// Requires a name for each patch or, if the number of rows is not given, names for whole rows.
void requireCount(const MeasureOptions& options, std::size_t names, const std::string& source) {
    const auto inRow = static_cast<std::size_t>(options.patchesInRow);
    const std::size_t required = patchCount(options);
    if (required == 0 && names % inRow != 0) {
        throw UsageError(fmt::format("the number of patches in {} is {}, which is not a multiple of {}; set --patches "
                                     "to the number of patches in a row, or correct the names",
                                     source, names, inRow));
    }
    if (required != 0 && names != required) {
        throw UsageError(fmt::format("the number of patches in {} is {}, but should be {}; correct {} or the names",
                                     source, names, required, options.spots > 0 ? "--spots" : "--rows and --patches"));
    }
}

} // namespace

std::vector<std::string> patchNames(const MeasureOptions& options) {
    if (options.chart.empty() && options.names.empty()) {
        const std::size_t count = patchCount(options);
        return numberedNames(count > 0 ? count : 4 * static_cast<std::size_t>(options.patchesInRow));
    }
    std::vector<std::string> names = options.chart.empty() ? options.names : readChart(options.chart);
    requireCount(options, names.size(), options.chart.empty() ? "--names" : "the chart file " + options.chart.string());
    return names;
}

} // namespace spm
