#include "spm/measure/Plan.h"

#include "common/Text.h"
#include "spm/Console.h"
#include "spm/Error.h"
#include "spm/measure/OutputFile.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <map>

namespace spm {

namespace {

namespace fs = std::filesystem;

auto formatOf(const MeasureOptions& options) -> decltype(Plan::format) {
    static const std::map<std::string, decltype(Plan::format)> formats{
        {".csv", formatCsv}, {".json", formatJson}, {".cgats", formatCgats}, {".txt", formatCgats}};
    const bool isFile = !options.plan.output.empty();
    if (!isFile && options.format == "table") return nullptr;
    const auto found = formats.find(isFile ? options.plan.output.extension().string() : '.' + options.format);
    if (found != formats.end()) return found->second;
    throw UsageError(fmt::format("can't determine the format of {} from its extension; use .csv, .json, .cgats or .txt",
                                 options.plan.output.string()));
}

/// Requires that the output files are writable, don't overwrite input files or each other, and don't exist unless they
/// may be replaced.
void checkOutputFiles(const MeasureOptions& options) {
    std::vector<fs::path> used{options.plan.module, options.chart, options.reference};
    for (const fs::path& file : {options.plan.output, options.plan.report}) {
        if (file.empty()) continue;
        if (std::ranges::any_of(used, [&](const auto& other) { return !other.empty() && isSameFile(file, other); })) {
            throw UsageError(fmt::format("{} would be overwritten; use a different name for each file", file.string()));
        }
        requireWritable(file);
        if (fs::exists(file) && !options.overwrite && !options.plan.isResumed) {
            throw UsageError(fmt::format("{} exists; choose another file, go on with it with --resume, or replace it "
                                         "with --overwrite",
                                         file.string()));
        }
        used.push_back(file);
    }
}

/// A run with the chart that the options name; without patches if they don't name one.
Run chartOf(const MeasureOptions& options) {
    Run chart;
    if (!options.chart.empty()) {
        const Run file = readRun(options.chart, "the chart file");
        chart = {.chart = options.chart.filename().string(), .chartColumns = file.chartColumns};
        for (const Patch& patch : file.patches) {
            chart.patches.push_back({patch.name, patch.fields, patch.place});
        }
    }
    for (const std::string& name : options.names) {
        common::requireUtf8(name, "--names");
        chart.patches.push_back({.name = name, .place = fmt::format("name {}", chart.patches.size() + 1)});
    }
    return chart;
}

bool asksForSpectra(const MeasureOptions& options) {
    return options.spectra || !options.illuminant.empty() || options.observer != 0;
}

Run newRun(const MeasureOptions& options) {
    constexpr std::int32_t defaultRows = 4;
    constexpr std::int32_t defaultPatchesInRow = 6;
    Run run = chartOf(options);
    const std::int32_t asked = options.spots + options.rows;
    if (options.spots == 0) run.patchesInRow = options.patchesInRow > 0 ? options.patchesInRow : defaultPatchesInRow;
    if (run.patches.empty()) {
        const std::int32_t count = std::max(run.patchesInRow, 1) * (asked > 0 ? asked : defaultRows);
        for (std::int32_t i = 1; i <= count; ++i) {
            run.patches.push_back({.name = fmt::format("patch {}", i)});
        }
    }
    const std::size_t strips = stripsOf(run).size();
    if (asked > 0 && strips != static_cast<std::size_t>(asked)) {
        throw UsageError(fmt::format("{} patches make {} {}, but {} is {}", run.patches.size(), strips,
                                     options.spots > 0 ? "spots" : fmt::format("rows of {}", run.patchesInRow),
                                     options.spots > 0 ? "--spots" : "--rows", asked),
                         "correct it or the names");
    }
    if (!options.illuminant.empty()) run.conditions.illuminant = options.illuminant;
    if (options.observer != 0) run.conditions.observer = options.observer;
    run.conditions.isCalculated = asksForSpectra(options);
    run.withXyz = options.withXyz;
    return run;
}

std::string textOf(std::int32_t option) {
    return option == 0 ? "" : std::to_string(option);
}

/// The name of a patch, for comparison with another chart's.
std::string nameAt(const std::vector<Patch>& patches, std::size_t index) {
    if (index >= patches.size()) return fmt::format("only {} patches", patches.size());
    return fmt::format("\"{}\" as patch {}", common::printable(patches[index].name), index + 1);
}

/// Requires that the options agree with the run in the output file.
void requireAgreement(const MeasureOptions& options, const Run& run) {
    const auto require = [&](const char* option, const std::string& asked, const std::string& found) {
        if (asked.empty() || asked == found) return;
        throw UsageError(
            fmt::format("{} asks for {}, but {} has {}", option, asked, options.plan.output.string(), found),
            "leave the option out to go on with that run");
    };
    const bool isSpots = run.patchesInRow == 0;
    const std::string strips = std::to_string(stripsOf(run).size());
    require("--rows", textOf(options.rows), isSpots ? "spots" : strips);
    require("--patches", textOf(options.patchesInRow), isSpots ? "spots" : std::to_string(run.patchesInRow));
    require("--spots", textOf(options.spots), isSpots ? strips : "rows");
    require("--illuminant", options.illuminant, run.conditions.illuminant);
    require("--observer", textOf(options.observer), std::to_string(run.conditions.observer));
    require("--spectra, --illuminant or --observer", asksForSpectra(options) ? "spectra" : "",
            run.conditions.isCalculated ? "spectra" : "no spectra");
    require("--xyz", options.withXyz ? "XYZ" : "", run.withXyz ? "XYZ" : "no XYZ");
    const std::vector<Patch> asked = chartOf(options).patches;
    for (std::size_t i = 0; !asked.empty() && i < std::max(asked.size(), run.patches.size()); ++i) {
        require(options.chart.empty() ? "--names" : "--chart", nameAt(asked, i), nameAt(run.patches, i));
    }
}

Run resumedRun(const MeasureOptions& options) {
    const std::string file = options.plan.output.string();
    if (!fs::exists(options.plan.output)) {
        throw UsageError(file + " does not exist, so there is no run to go on with",
                         "correct --output, or start without --resume");
    }
    Run run = readRun(options.plan.output, "the output file");
    const auto isAsStated = [&](const Patch& patch) {
        return !patch.reading || patch.reading->spectrum.empty() != run.conditions.isCalculated;
    };
    if (run.patchesInRow == unknownRows || run.conditions.illuminant.empty() ||
        !std::ranges::all_of(run.patches, isAsStated)) {
        throw UsageError(file + " does not say how it was measured", "only files written by spm can be resumed");
    }
    requireAgreement(options, run);
    return run;
}

/// The first few of some names.
std::string firstNames(std::vector<std::string> names) {
    names.resize(std::min<std::size_t>(names.size(), 3));
    return common::printable(fmt::format("\"{}\"", fmt::join(names, "\", \"")));
}

/// Requires that the reference has patches of the chart: all of them if a tolerance depends on it, otherwise any.
void requireExpected(const Reference& reference, const std::vector<Patch>& patches) {
    std::vector<std::string> unexpected;
    std::vector<std::string> expected;
    for (const Patch& patch : patches) {
        if (!reference.patches.contains(patch.name)) unexpected.push_back(patch.name);
    }
    if (unexpected.empty() || (unexpected.size() < patches.size() && reference.limits.empty())) return;
    for (const auto& [name, lab] : reference.patches) {
        expected.push_back(name);
    }
    throw UsageError(fmt::format("the reference file {} lacks {} of {} patches: the chart has {}, the reference {}",
                                 reference.file.string(), unexpected.size(), patches.size(), firstNames(unexpected),
                                 firstNames(expected)),
                     "use the same names");
}

std::shared_ptr<const Reference> referenceOf(const MeasureOptions& options, const Run& run) {
    if (options.reference.empty()) return nullptr;
    Reference reference = readReference(options.reference, run.conditions);
    reference.limits = parseLimits(options.tolerance);
    requireExpected(reference, run.patches);
    return std::make_shared<const Reference>(std::move(reference));
}

void requireCgatsTexts(const Run& run, const fs::path& chart) {
    for (const Patch& patch : run.patches) {
        if (fitsCgats(patch.name) && std::ranges::all_of(patch.fields, fitsCgats)) continue;
        throw UsageError(fmt::format("{} {}, \"{}\": CGATS can't contain quotes, control characters or empty texts",
                                     chart.string(), patch.place, common::printable(patch.name)),
                         "choose an output file in CSV or JSON, or change the name");
    }
}

/// The command line with --resume, to be pasted into a shell.
std::string resumeCommandOf(const std::vector<std::string>& words) {
    std::string command = "spm";
    for (const std::string& word : words) {
        if (word != "--overwrite" && word != "--resume") command += ' ' + quoted(word);
    }
    return command + " --resume";
}

} // namespace

Plan planOf(const MeasureOptions& options) {
    Plan plan = options.plan;
    plan.format = formatOf(options);
    plan.run = plan.isResumed ? resumedRun(options) : newRun(options);
    plan.resumeCommand = resumeCommandOf(options.words);
    checkOutputFiles(options);
    if (plan.format == formatCgats) requireCgatsTexts(plan.run, options.chart);
    plan.run.reference = referenceOf(options, plan.run);
    return plan;
}

} // namespace spm
