#include "spm/measure/PatchNames.h"

#include "common/CsvReader.h"
#include "spm/Error.h"
#include "spm/InputFile.h"

#include <fmt/format.h>

namespace spm {

namespace {

using Names = std::vector<std::string>;

/// Below the header, the first field of each line.
Names readNames(const std::filesystem::path& chart) {
    const std::string text = readInput(chart, "the chart file");
    common::CsvReader csv(text, fmt::format("the chart file {}", chart.string()));
    Names names;
    csv.next();
    while (const auto fields = csv.next()) {
        names.push_back(fields->front());
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

} // namespace

std::vector<std::string> patchNames(const MeasureOptions& options) {
    const std::int32_t count = options.spots > 0 ? options.spots : options.rows * options.patches;
    const auto wanted = static_cast<std::size_t>(count);
    const bool isChart = !options.chart.empty();
    if (!isChart && options.names.empty()) return numberedNames(wanted);
    Names names = isChart ? readNames(options.chart) : options.names;
    if (names.size() < wanted) {
        throw UsageError(fmt::format("{} {} patches, but {} are to be measured; give more names or measure fewer",
                                     isChart ? "the chart file " + options.chart.string() + " names" : "--names has",
                                     names.size(), wanted));
    }
    names.resize(wanted);
    return names;
}

} // namespace spm
