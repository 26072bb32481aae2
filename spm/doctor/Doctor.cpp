// Checks an installation part by part, so that one fault doesn't hide another: if the module can't be loaded, the SDK
// library is checked on its own, and so are the settings and the log file.

#include "spm/doctor/Doctor.h"

#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "common/SharedLibrary.h"
#include "spm/doctor/Settings.h"
#include "spm/Error.h"
#include "spm/Instrument.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fmt/color.h>
#include <fstream>
#include <memory>
#include <optional>
#include <system_error>

namespace spm {

namespace {

namespace fs = std::filesystem;

using Findings = std::vector<Finding>;

/// The functions that the module needs from the SDK library.
constexpr std::array sdkFunctions{
#include "SdkFunctionNames.inc"
};

constexpr const char* reinstallAdvice = "install the module's file again";

bool isPresent(const fs::path& file) {
    std::error_code ignored;
    return fs::status(file, ignored).type() != fs::file_type::not_found; // also true for a file this user may not see
}

std::string describeMissing(const fs::path& file) {
    std::error_code ignored;
    const fs::path target = fs::read_symlink(file, ignored);
    if (target.empty()) return fmt::format("{} is missing", file.string());
    return fmt::format("{} is a link to {}, which is missing", file.string(), target.string());
}

// The SDK library

Finding wrongSdk(const fs::path& file, const std::string& text) {
    return {Verdict::wrong, "SDK library", text,
            fmt::format("put the vendor's {} into {}, or the simulated one for a trial", common::sdkFileName,
                        file.parent_path().string())};
}

/// Checks whether a file is an SDK library with all functions that the module needs.
Finding examineSdkFile(const fs::path& file) {
    if (!isPresent(file)) return wrongSdk(file, describeMissing(file));
    try {
        const common::SharedLibrary library(file);
        for (const char* name : sdkFunctions) {
            if (library.find(name) == nullptr) return wrongSdk(file, fmt::format("{} has no {}", file.string(), name));
        }
        return {Verdict::good, "SDK library", file.string(), ""};
    } catch (const Error& error) {
        const bool isNamed = common::pathFromEnvironment("LD_LIBRARY_PATH").has_value();
        return {Verdict::wrong, "SDK library", fmt::format("can't load {}", error.failure()),
                error.advice() + (isNamed ? "; LD_LIBRARY_PATH is set, and names the folders that come first" : "")};
    }
}

/// Checks the SDK library of a loaded module.
/// @param expected  the file in the module's folder
Finding examineSdk(const Module& module, const fs::path& expected) {
    const fs::path file = common::fileOf(module.findInSdk(sdkFunctions.front()));
    Finding finding = examineSdkFile(file); // on some systems, the module can be loaded without functions that it needs
    if (finding.verdict == Verdict::wrong) return finding;
    const std::string simulation = module.simulation();
    if (!simulation.empty()) {
        finding = {Verdict::note, "SDK library", fmt::format("{}\nSIMULATED: {}", file.string(), simulation),
                   "to use a real instrument, replace it with the vendor's library"};
    }
    std::error_code ignored;
    if (isPresent(expected) && !fs::equivalent(file, expected, ignored)) {
        finding.verdict = Verdict::note;
        finding.text += fmt::format("\nloaded because of LD_LIBRARY_PATH, instead of {}", expected.string());
        finding.advice = "unset LD_LIBRARY_PATH to use the one in the module's folder";
    }
    return finding;
}

// The module

constexpr const char* moveAdvice = "move the module to a folder with a short path of ASCII letters";

/// Whether the module can't find its own file: it gets the path as a single-byte string of at most 259 characters.
bool hasUnusablePath(const Module& module, const fs::path& file) {
    const auto isAscii = [](auto c) { return c > 0 && c < 0x80; };
    return module.getVersion(nullptr) == 0 &&
           (file.native().size() >= 260 || !std::ranges::all_of(file.native(), isAscii));
}

Finding describeModule(const Module& module) {
    const fs::path file = common::fileOf(reinterpret_cast<const void*>(module.create));
    if (module.getVersion(nullptr) != 0)
        return {Verdict::good, "Module", fmt::format("{}\nversion {}", file.string(), module.version()), ""};
    if (!hasUnusablePath(module, file))
        return {Verdict::note, "Module", fmt::format("{}\nits version can't be read", file.string()), reinstallAdvice};
    return {Verdict::note, "Module",
            fmt::format("{}\nno version and no log file: the path is too long, or has characters outside the system's "
                        "code page",
                        file.string()),
            moveAdvice};
}

/// Loads the module.
/// @return null if it can't be loaded, or is unusable without the right SDK library
std::unique_ptr<Module> examineModule(const fs::path& file, Findings& findings) {
    if (!isPresent(file)) {
        findings.push_back(
            {Verdict::wrong, "Module", describeMissing(file), "put it there, or choose another one with --module"});
        return nullptr;
    }
    try {
        auto module = std::make_unique<Module>(file);
        findings.push_back(describeModule(*module));
        findings.push_back(examineSdk(*module, fs::absolute(file).parent_path() / common::sdkFileName));
        if (findings.back().verdict == Verdict::wrong) return nullptr;
        return module;
    } catch (const Error& error) {
        const Finding sdk = examineSdkFile(sdkOf(file));
        if (sdk.verdict == Verdict::good) {
            findings.push_back({Verdict::wrong, "Module", error.failure(), reinstallAdvice});
        } else {
            findings.push_back({Verdict::note, "Module", fmt::format("{} can't be checked", file.string()),
                                "fix the SDK library first"});
        }
        findings.push_back(sdk);
        return nullptr;
    }
}

// The log file

using Problem = std::pair<std::string, std::string>; // the text and the advice of a finding

/// Finds out why no line can be appended to a file, or the file can't be created. Leaves everything as it was.
std::optional<Problem> findWritingProblem(const fs::path& file) {
    std::error_code error;
    const bool isNew = !isPresent(file);
    if (!isNew && !fs::is_regular_file(file, error)) return Problem{"is not a regular file", "remove or rename it"};
    errno = 0;
    if (!std::ofstream(file, std::ios::app).is_open()) {
        return Problem{fmt::format("can't be written: {}", std::generic_category().message(errno)),
                       "give this user write permission for it and its folder"};
    }
    if (isNew) fs::remove(file, error);
    const fs::space_info space = fs::space(file.parent_path(), error);
    if (!error && space.available == 0) return Problem{"can't be written: the disk is full", "make room on the disk"};
    return std::nullopt;
}

Finding examineLogFile(fs::path module, bool isPathUnusable) {
    const fs::path file = fs::absolute(module.replace_extension(".log"));
    const bool isEnabled = isLoggingEnabled();
    const auto problem =
        isPathUnusable ? Problem{"can't be written: the path is unusable", moveAdvice} : findWritingProblem(file);
    if (problem) {
        return {isEnabled ? Verdict::wrong : Verdict::note, "Log file",
                fmt::format("{} {}", file.string(), problem->first), problem->second};
    }
    return {Verdict::good, "Log file", fmt::format("{}, logging is {}", file.string(), isEnabled ? "on" : "off"), ""};
}

// The instrument

Finding examineCalibration(Instrument& instrument, const Module& module) {
    const bool isCalibrated = instrument.isCalibrated();
    if (!instrument.isResponding()) {
        return {Verdict::wrong, "Calibration", instrument.takeError("the instrument doesn't respond"),
                module.instrumentAdvice()};
    }
    if (isCalibrated) return {Verdict::good, "Calibration", "done", ""};
    return {Verdict::note, "Calibration", "not done",
            "have the white reference ready: \"spm measure\" starts with the calibration"};
}

void examineInstrument(const Module& module, Findings& findings) {
    try {
        Instrument instrument(module);
        findings.push_back({Verdict::good, "Instrument", fmt::format("found and opened\n{}", Instrument::caveat), ""});
        findings.push_back(examineCalibration(instrument, module));
    } catch (const Error& error) {
        findings.push_back({Verdict::wrong, "Instrument", error.failure(), module.instrumentAdvice()});
    }
}

// Presentation

/// Indents all lines of a text but the first.
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

std::string formatFinding(const Finding& finding, bool inColour) {
    constexpr std::size_t column = 20;
    constexpr std::array<std::pair<const char*, fmt::terminal_color>, 3> marks{{{"ok", fmt::terminal_color::green},
                                                                                {"note", fmt::terminal_color::yellow},
                                                                                {"WRONG", fmt::terminal_color::red}}};
    const auto& [mark, colour] = marks.at(static_cast<std::size_t>(finding.verdict));
    std::string text = fmt::format(inColour ? fmt::fg(colour) : fmt::text_style(), "{:<6}", mark);
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
    findings.push_back(examineLogFile(module, loaded && hasUnusablePath(*loaded, fs::absolute(module))));
    if (loaded != nullptr) {
        examineInstrument(*loaded, findings);
    } else {
        findings.push_back({Verdict::note, "Instrument", "not checked", "fix the module and the SDK library first"});
    }
    return findings;
}

bool isReady(std::span<const Finding> findings) {
    return std::ranges::none_of(findings, [](const Finding& finding) { return finding.verdict == Verdict::wrong; });
}

std::string formatFindings(std::span<const Finding> findings, bool inColour) {
    std::string text;
    for (const Finding& finding : findings) {
        text += formatFinding(finding, inColour);
    }
    return text + (isReady(findings) ? "\nReady to measure.\n" : "\nNot ready: fix the parts marked WRONG.\n");
}

} // namespace spm
