#include "spm/measure/Plan.h"

#include "common/Text.h"
#include "spm/Error.h"
#include "spm/formats/RunFile.h"
#include "spm/measure/OutputFile.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <string_view>

namespace spm {

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t defaultRows = 4;
constexpr std::int32_t defaultPatchesInRow = 6;

Format formatOf(const MeasureOptions& options) {
    if (options.output.empty()) return options.format.value_or(Format::table);
    const std::string extension = options.output.extension().string();
    if (extension == ".csv") return Format::csv;
    if (extension == ".json") return Format::json;
    if (extension == ".txt" || extension == ".cgats") return Format::cgats;
    throw UsageError(fmt::format("can't determine the format of {} from its extension; use .csv, .json, .cgats or .txt",
                                 options.output.string()));
}

/// Requires that the output files are writable, don't overwrite input files or each other, and don't exist unless they
/// may be replaced.
void checkOutputFiles(const MeasureOptions& options) {
    std::vector<fs::path> used{options.module, options.chart, options.reference};
    for (const fs::path& file : {options.output, options.report}) {
        if (file.empty()) continue;
        if (std::ranges::any_of(used, [&](const auto& other) { return !other.empty() && isSameFile(file, other); })) {
            throw UsageError(fmt::format("{} would be overwritten; use a different name for each file", file.string()));
        }
        requireWritable(file);
        if (fs::exists(file) && !options.overwrite && !options.resume) {
            throw UsageError(fmt::format("{} exists; choose another file, go on with it with --resume, or replace it "
                                         "with --overwrite",
                                         file.string()));
        }
        used.push_back(file);
    }
}

/// The patches that the options name.
std::vector<Patch> namedPatches(const std::vector<std::string>& names) {
    std::vector<Patch> patches;
    for (const std::string& name : names) {
        common::requireUtf8(name, "--names");
        patches.push_back({.name = name, .place = fmt::format("name {}", patches.size() + 1)});
    }
    return patches;
}

std::vector<Patch> numberedPatches(std::int32_t count) {
    std::vector<Patch> patches;
    for (std::int32_t i = 1; i <= count; ++i) {
        patches.push_back({.name = fmt::format("patch {}", i)});
    }
    return patches;
}

/// The chart's patches and columns, without the other contents of its file.
Run readChart(const fs::path& file) {
    Run chart = readRun(file, "the chart file");
    for (Patch& patch : chart.patches) {
        patch.reading.reset();
        patch.missingReason.clear();
    }
    return {.chart = file.filename().string(), .chartColumns = chart.chartColumns, .patches = chart.patches};
}

bool asksForSpectra(const MeasureOptions& options) {
    return options.spectra || options.illuminant || options.observer;
}

/// Requires names for the rows or spots that the options ask for.
void requireCount(const Run& run, const MeasureOptions& options) {
    const std::size_t strips = stripsOf(run).size();
    const auto asked = static_cast<std::size_t>(options.spots.value_or(options.rows.value_or(0)));
    if (asked == 0 || strips == asked) return;
    throw UsageError(fmt::format("{} patches make {} {}, but {} is {}", run.patches.size(), strips,
                                 options.spots ? "spots" : fmt::format("rows of {}", run.patchesInRow),
                                 options.spots ? "--spots" : "--rows", asked),
                     "correct it or the names");
}

Run newRun(const MeasureOptions& options) {
    Run run = options.chart.empty() ? Run{} : readChart(options.chart);
    run.patchesInRow = options.spots ? 0 : options.patchesInRow.value_or(defaultPatchesInRow);
    if (!options.names.empty()) run.patches = namedPatches(options.names);
    if (run.patches.empty()) {
        run.patches = numberedPatches(options.spots.value_or(options.rows.value_or(defaultRows) * run.patchesInRow));
    }
    requireCount(run, options);
    run.conditions.illuminant = options.illuminant.value_or(run.conditions.illuminant);
    run.conditions.observer = options.observer.value_or(run.conditions.observer);
    run.conditions.isCalculated = asksForSpectra(options);
    run.withXyz = options.withXyz;
    return run;
}

/// Compares what the options say with the run in the output file.
class ResumedRun {
public:
    explicit ResumedRun(const MeasureOptions& given) : options(given), file(given.output.string()) {
        if (!fs::exists(given.output)) {
            throw UsageError(file + " does not exist, so there is no run to go on with", "correct --output, or start "
                                                                                         "without --resume");
        }
        run = readRun(given.output, "the output file");
        if (run.patchesInRow == unknownRows || run.conditions.illuminant.empty()) {
            throw UsageError(file + " does not say how it was measured", "only files written by spm can be resumed");
        }
    }

    /// @throws UsageError  if an option contradicts the file
    Run take() {
        const auto strips = static_cast<std::int32_t>(stripsOf(run).size());
        const std::int32_t spots = run.patchesInRow == 0 ? strips : 0;
        requireSame("--rows", options.rows, spots > 0 ? 0 : strips);
        requireSame("--patches", options.patchesInRow, run.patchesInRow);
        requireSame("--spots", options.spots, spots);
        requireSame("--illuminant", options.illuminant, run.conditions.illuminant);
        requireSame("--observer", options.observer, run.conditions.observer);
        requireSame("--spectra, --illuminant or --observer", given(asksForSpectra(options)),
                    run.conditions.isCalculated);
        requireSame("--xyz", given(options.withXyz), run.withXyz);
        if (!options.names.empty()) requirePatches("--names", namedPatches(options.names));
        if (!options.chart.empty())
            requirePatches("--chart " + options.chart.string(), readChart(options.chart).patches);
        requireSpectra();
        for (Patch& patch : run.patches) {
            patch.missingReason.clear();
        }
        return std::move(run);
    }

private:
    /// A flag that was not given agrees with everything.
    static std::optional<bool> given(bool flag) { return flag ? std::optional(true) : std::nullopt; }

    [[noreturn]] void disagree(const std::string& option, const std::string& asked, const std::string& found) const {
        throw UsageError(fmt::format("{} asks for {}, but {} has {}", option, asked, file, found),
                         "leave the option out to go on with that run");
    }

    template <class Value>
    void requireSame(const std::string& option, const std::optional<Value>& asked, const Value& found) const {
        if (asked && *asked != found) disagree(option, fmt::format("{}", *asked), fmt::format("{}", found));
    }

    void requirePatches(const std::string& option, const std::vector<Patch>& asked) const {
        const auto [one, other] = std::ranges::mismatch(asked, run.patches, {}, &Patch::name, &Patch::name);
        const auto describe = [](const std::vector<Patch>& patches, auto place) {
            const auto number = place - patches.begin() + 1;
            if (place == patches.end()) return fmt::format("only {} patches", patches.size());
            return fmt::format("\"{}\" as patch {}", common::printable(place->name), number);
        };
        if (one == asked.end() && other == run.patches.end()) return;
        disagree(option, describe(asked, one), describe(run.patches, other));
    }

    /// All readings must have the same columns.
    void requireSpectra() const {
        const std::size_t points = wavelengths(run).size();
        for (const Patch& patch : run.patches) {
            if (!patch.reading) continue;
            const bool isComplete = patch.reading->spectrum.size() == points;
            if (isComplete && (points > 0) == run.conditions.isCalculated) continue;
            throw Error(fmt::format("{}, {}: the spectrum is incomplete", file, patch.place),
                        "measure into another file");
        }
    }

    const MeasureOptions& options;
    const std::string file;
    Run run;
};

std::string firstNames(const std::vector<std::string>& names) {
    constexpr std::size_t most = 3;
    const std::vector<std::string> first(names.begin(),
                                         names.begin() + static_cast<std::ptrdiff_t>(std::min(most, names.size())));
    return common::printable(fmt::format("\"{}\"{}", fmt::join(first, "\", \""), names.size() > most ? ", ..." : ""));
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
    reference.formula = options.difference;
    reference.limits = options.limits;
    requireExpected(reference, run.patches);
    return std::make_shared<const Reference>(std::move(reference));
}

void requireCgatsTexts(const Run& run, const fs::path& chart) {
    for (const Patch& patch : run.patches) {
        if (fitsCgats(patch.name) && std::ranges::all_of(patch.fields, [](const std::string& field) {
                return field.empty() || fitsCgats(field);
            })) {
            continue;
        }
        throw UsageError(fmt::format("{} {}, \"{}\": CGATS can't contain quotes, control characters or empty names",
                                     chart.string(), patch.place, common::printable(patch.name)),
                         "choose an output file in CSV or JSON, or change the name");
    }
}

/// The command line with --resume, to be pasted into a shell.
std::string resumeCommandOf(const MeasureOptions& options) {
    constexpr std::string_view special = " \"'`$&|;<>()*?#~!\\";
    std::string command = "spm";
    for (const std::string& word : options.words) {
        if (word == "--overwrite" || word == "--resume") continue;
        const bool isPlain = !word.empty() && word.find_first_of(special) == std::string::npos;
        command += isPlain ? ' ' + word : fmt::format(" \"{}\"", word);
    }
    return command + " --resume";
}

} // namespace

Plan planOf(const MeasureOptions& options) {
    Plan plan{.module = options.module,
              .output = options.output,
              .report = options.report,
              .format = formatOf(options),
              .showsSpectra = options.spectra,
              .waitLimit = options.waitLimit,
              .run = options.resume ? ResumedRun(options).take() : newRun(options),
              .isResumed = options.resume,
              .resumeCommand = resumeCommandOf(options)};
    checkOutputFiles(options);
    if (plan.format == Format::cgats) requireCgatsTexts(plan.run, options.chart);
    plan.run.reference = referenceOf(options, plan.run);
    return plan;
}

} // namespace spm
