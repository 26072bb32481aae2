#include "host/PatchNames.h"

#include "host/HostError.h"

#include <fmt/format.h>
#include <fstream>

namespace host {

namespace {

using Names = std::vector<std::string>;

Names readNames(const std::filesystem::path& chart) {
    std::ifstream file(chart);
    if (!file) throw HostError(fmt::format("can't read the chart file {}", chart.string()));
    Names names;
    std::string line;
    std::getline(file, line);
    while (std::getline(file, line)) {
        names.push_back(line.substr(0, line.find_first_of(",\r")));
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
        throw HostError(fmt::format("{} {} patches, but {} are to be measured; give more names or measure fewer",
                                    isChart ? "the chart file " + options.chart.string() + " names" : "--names has",
                                    names.size(), wanted));
    }
    names.resize(wanted);
    return names;
}

} // namespace host
