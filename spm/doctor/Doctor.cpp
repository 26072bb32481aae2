// The examination of an installation. Each part is looked at by itself where that is possible, so that one fault does
// not hide another: settings and log file also when the module can't be loaded, the vendor's library then alone.

#include "spm/doctor/Doctor.h"

#include "spm/doctor/SdkFunctions.h"
#include "spm/doctor/Settings.h"
#include "spm/Error.h"
#include "spm/Instrument.h"

#include <algorithm>
#include <fmt/color.h>
#include <fstream>
#include <memory>
#include <optional>
#include <system_error>

namespace spm {

namespace {

namespace fs = std::filesystem;

using Findings = std::vector<Finding>;

constexpr const char* reinstall = "install the module's file again";

// The vendor's library

Finding wrongSdk(const fs::path& file, const std::string& text) {
    return {Verdict::wrong, "SDK library", text,
            fmt::format("put the vendor's {} into {}, or the simulated one to try things out", common::sdkFileName,
                        file.parent_path().string())};
}

/// Looks for the functions that the module needs. Not everywhere does a missing one keep the module from being loaded.
template <class Find>
std::optional<Finding> findMissingFunction(const fs::path& file, const Find& find) {
    const auto missing =
        std::find_if(sdkFunctions.begin(), sdkFunctions.end(), [&](const char* name) { return find(name) == nullptr; });
    if (missing == sdkFunctions.end()) return std::nullopt;
    return wrongSdk(file, fmt::format("{} has no {}", file.string(), *missing));
}

/// Looks at the vendor's library alone, for why the module could not be loaded with it.
Finding examineSdkFile(const fs::path& file) {
    if (!common::doesExist(file)) return wrongSdk(file, fmt::format("{} is missing", file.string()));
    try {
        common::requireLibrary(file);
        const common::SharedLibrary library(file);
        const auto missing = findMissingFunction(file, [&](const char* name) { return library.find(name); });
        return missing.value_or(Finding{Verdict::good, "SDK library", file.string(), ""});
    } catch (const common::LoadError& error) {
        Finding finding = wrongSdk(file, fmt::format("can't be loaded: {}", error.what()));
        if (!error.advice.empty()) finding.advice = error.advice;
        return finding;
    }
}

Finding examineSdk(const Module& module, const fs::path& moduleFile) {
    const fs::path file = common::fileOf(module.findInSdk(sdkFunctions.front()));
    if (auto missing = findMissingFunction(file, [&](const char* name) { return module.findInSdk(name); })) {
        return *missing;
    }
    const std::string simulation = module.simulation();
    const fs::path beside = fs::absolute(moduleFile).parent_path() / common::sdkFileName;
    std::error_code ignored;
    if (common::doesExist(beside) && !fs::equivalent(file, beside, ignored)) {
        return {Verdict::note, "SDK library",
                fmt::format("{}\nin place of {}, because LD_LIBRARY_PATH names its folder{}{}", file.string(),
                            beside.string(), simulation.empty() ? "" : "\nSIMULATED: ", simulation),
                "unset LD_LIBRARY_PATH to measure with the one beside the module"};
    }
    if (simulation.empty()) return {Verdict::good, "SDK library", file.string(), ""};
    return {Verdict::note, "SDK library", fmt::format("{}\nSIMULATED: {}", file.string(), simulation),
            "to measure with an instrument, put the vendor's library in its place"};
}

// The module

constexpr const char* shorterPath = "move the module to a folder with a short path of ASCII letters";

Finding describeModule(const Module& module) {
    const fs::path file = common::fileOf(reinterpret_cast<const void*>(module.create));
    if (!common::hasSingleByteForm(file)) {
        return {Verdict::note, "Module",
                fmt::format("{}\nhas no version and no log file: its path has 260 characters or more, or some that are "
                            "not in the code page",
                            file.string()),
                shorterPath};
    }
    if (module.getVersion(nullptr) == 0) {
        return {Verdict::note, "Module", fmt::format("{}\nits version can't be read", file.string()), reinstall};
    }
    return {Verdict::good, "Module", fmt::format("{}\nversion {}", file.string(), module.version()), ""};
}

/// Looks at the module's file without loading it.
std::optional<Finding> findDefect(const fs::path& file) try {
    if (!common::doesExist(file)) {
        return Finding{Verdict::wrong, "Module", fmt::format("{} is missing", file.string()),
                       "put it there, or name another one with --module"};
    }
    common::requireLibrary(file);
    return std::nullopt;
} catch (const common::LoadError& error) {
    return Finding{Verdict::wrong, "Module", fmt::format("can't be loaded: {}", error.what()), error.advice};
}

/// Loads the module. @return null when that is not possible, or no use
std::unique_ptr<Module> examineModule(const fs::path& file, Findings& findings) {
    const fs::path sdkFile = common::sdkOf(file);
    if (const std::optional<Finding> defect = findDefect(file)) {
        findings.push_back(*defect);
        findings.push_back(examineSdkFile(sdkFile));
        return nullptr;
    }
    try {
        auto module = std::make_unique<Module>(file);
        findings.push_back(describeModule(*module));
        findings.push_back(examineSdk(*module, file));
        if (findings.back().verdict == Verdict::wrong) return nullptr;
        return module;
    } catch (const Error& error) {
        const Finding sdk = examineSdkFile(sdkFile);
        findings.push_back({Verdict::wrong, "Module", error.failure(),
                            sdk.verdict == Verdict::good ? reinstall : "fix the SDK library first"});
        findings.push_back(sdk);
        return nullptr;
    }
}

// The log file

/// Whether a line could be appended to a regular file, or one be made. It is left as it was.
bool isWritable(const fs::path& file) {
    std::error_code ignored;
    const bool isNew = !common::doesExist(file);
    if (!isNew && !fs::is_regular_file(file, ignored)) return false;
    const bool isOpen = std::ofstream(file, std::ios::app).is_open();
    if (isOpen && isNew) fs::remove(file, ignored);
    return isOpen;
}

Finding examineLogFile(fs::path module) {
    const fs::path log = module.replace_extension(".log");
    const std::string file = log.string();
    const bool isWanted = isLoggingOn();
    const Verdict verdict = isWanted ? Verdict::wrong : Verdict::note;
    if (!common::hasSingleByteForm(fs::absolute(log))) {
        return {verdict, "Log file", fmt::format("{} can't be written by the module", file), shorterPath};
    }
    if (!isWritable(log)) {
        return {verdict, "Log file", fmt::format("{} can't be written", file),
                "give this user the right to write to it and to its folder"};
    }
    return {Verdict::good, "Log file", fmt::format("{}, {}", file, isWanted ? "written" : "not asked for"), ""};
}

// The instrument

std::string afterFailure(const Module& module) {
    return module.simulation().empty()
               ? "connect one by USB, end other programs that use it, and try again"
               : "it is simulated: look at the script that the environment variable I1PRO3_SIMULATOR names";
}

Finding examineCalibration(const Instrument& instrument, const Module& module) {
    const bool isCalibrated = instrument.isCalibrated();
    if (!instrument.isAnswering()) {
        return {Verdict::wrong, "Calibration", "the connection to the instrument was lost", afterFailure(module)};
    }
    if (isCalibrated) return {Verdict::good, "Calibration", "done", ""};
    return {Verdict::note, "Calibration", "not done",
            "have the white reference at hand: \"spm measure\" begins with it"};
}

void examineInstrument(const Module& module, Findings& findings) {
    try {
        const Instrument instrument(module);
        findings.push_back({Verdict::good, "Instrument", fmt::format("found and opened\n{}", Instrument::reach), ""});
        findings.push_back(examineCalibration(instrument, module));
    } catch (const Error& error) {
        findings.push_back({Verdict::wrong, "Instrument", error.failure(), afterFailure(module)});
    }
}

// Presentation

/// A text of several lines, the later ones indented like the first.
std::string indented(std::string text, std::size_t columns) {
    while (text.ends_with('\n')) {
        text.pop_back();
    }
    const std::string indent = '\n' + std::string(columns, ' ');
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + indent.size())) {
        text.replace(at, 1, indent);
    }
    return text;
}

struct Mark {
    const char* text;
    fmt::terminal_color colour;
};

Mark markOf(Verdict verdict) {
    switch (verdict) {
    case Verdict::good:
        return {"ok", fmt::terminal_color::green};
    case Verdict::note:
        return {"note", fmt::terminal_color::yellow};
    default:
        return {"WRONG", fmt::terminal_color::red};
    }
}

std::string formatFinding(const Finding& finding, ColourDepth depth) {
    constexpr std::size_t column = 20;
    const Mark mark = markOf(finding.verdict);
    const auto style = depth == ColourDepth::none ? fmt::text_style() : fmt::fg(mark.colour);
    std::string text = fmt::format(style, "{:<6}", mark.text);
    text += fmt::format(" {:<12} {}\n", finding.subject, indented(finding.text, column));
    if (!finding.advice.empty()) text += fmt::format("{:{}}> {}\n", "", column, finding.advice);
    return text;
}

} // namespace

std::vector<Finding> examine(const fs::path& module) {
    Findings findings;
    const Findings settings = examineSettings();
    const std::unique_ptr<Module> loaded = examineModule(module, findings);
    findings.insert(findings.end(), settings.begin(), settings.end());
    findings.push_back(examineLogFile(module));
    if (loaded != nullptr) {
        examineInstrument(*loaded, findings);
    } else {
        findings.push_back({Verdict::note, "Instrument", "not looked for", "fix the module and the SDK library first"});
    }
    return findings;
}

bool isSound(std::span<const Finding> findings) {
    return std::none_of(findings.begin(), findings.end(),
                        [](const Finding& finding) { return finding.verdict == Verdict::wrong; });
}

std::string formatFindings(std::span<const Finding> findings, ColourDepth depth) {
    std::string text;
    for (const Finding& finding : findings) {
        text += formatFinding(finding, depth);
    }
    return text + (isSound(findings) ? "\nReady to measure.\n" : "\nNot ready: fix what is marked WRONG.\n");
}

} // namespace spm
