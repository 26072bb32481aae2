// Every set-up that is broken in one place has a verdict of its own.

#include "host/Doctor.h"

#include "host/System.h"
#include "platform/win32.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <algorithm>
#include <fmt/format.h>
#include <gtest/gtest.h>

namespace {

const std::filesystem::path programs = host::programFolder();

/// An installation of its own, whole at first, with the simulated SDK library and without settings.
class Installation {
public:
    Installation() {
        replace(host::moduleFileName, programs / host::moduleFileName);
        replace(host::sdkFileName, programs / host::sdkFileName);
    }

    std::filesystem::path module() const { return folder / host::moduleFileName; }
    std::filesystem::path sdk() const { return folder / host::sdkFileName; }
    std::filesystem::path log() const { return module().replace_extension(".log"); }
    void replace(const std::string& name, const std::filesystem::path& other) const {
        std::filesystem::remove(folder / name);
        std::filesystem::copy_file(other, folder / name);
    }
    void useScript(const std::string& text) const {
        writeFile(folder / "script.json", text);
        setVariable("I1PRO3_SIMULATOR", (folder / "script.json").string());
    }
    void fail(const std::string& function, int call = 1) const {
        useScript(R"({"faults": [{"function": "I1PRO3_)" + function + R"(", "call": )" + std::to_string(call) +
                  R"(, "result": 7, "text": "lamp"}]})");
    }

    /// The findings of a verdict, each as "subject: text > advice", with {} for the folder.
    std::vector<std::string> findings(host::Verdict verdict) const {
        std::vector<std::string> texts;
        for (const host::Finding& finding : host::examine(module())) {
            if (finding.verdict != verdict) continue;
            texts.push_back(fmt::format("{}: {} > {}", finding.subject, finding.text, finding.advice));
            const std::string place = (folder / "").parent_path().string();
            for (std::size_t at = 0; (at = texts.back().find(place)) != std::string::npos;) {
                texts.back().replace(at, place.size(), "{}");
            }
        }
        return texts;
    }

    TempFolder folder;
    Settings settings;

private:
    const EnvironmentVariable script{"I1PRO3_SIMULATOR", ""};
};

const std::string file = "{}" + std::string(1, std::filesystem::path::preferred_separator);
const std::string module = file + host::moduleFileName;
const std::string sdk = file + host::sdkFileName;

} // namespace

TEST(Doctor, FindsNothingWrongWithAWholeInstallation) {
    const Installation whole;
    EXPECT_EQ(whole.findings(host::Verdict::wrong), std::vector<std::string>());
    const std::vector<std::string> notes{
        "SDK library: " + sdk +
            "\nSIMULATED: simulated i1Pro 3 with the ColorChecker Classic chart"
            " > to measure with an instrument, put the vendor's library in its place",
        "Calibration: not done > have the white reference at hand: \"spm measure\" begins with it"};
    EXPECT_EQ(whole.findings(host::Verdict::note), notes);
    EXPECT_FALSE(std::filesystem::exists(whole.log())) << "it was looked whether it can be written";
}

TEST(Doctor, TellsOfARealLibraryAndOfSettings) {
    Installation real;
    real.replace(host::sdkFileName, programs / "null" / host::sdkFileName);
    real.settings.setNumber("Logging", 1);
    real.settings.setText("Device", "USB");
    writeFile(real.log(), "earlier");
    const std::vector<std::string> good = real.findings(host::Verdict::good);
    const std::string key = R"(HKEY_LOCAL_MACHINE\SOFTWARE\Kestrova\SPM)";
    const std::vector<std::string> expected{
        "Module: " + module + "\nversion 3, minor version 0 > ",
        "SDK library: " + sdk + " > ",
        "Settings: " + host::settingsPlace() + " > ",
        "Logging: 1, from " + key + " > ",
        "Details: 0 by default, not set in " + key + " > ",
        "Device: USB, from " + key + R"(\xrite i1 Pro3 > )",
        "Log file: " + file + "spm_i1pro3.log, written > ",
        "Instrument: found and opened > ",
        "Calibration: done > ",
    };
    EXPECT_EQ(good, expected);
    EXPECT_TRUE(readFile(real.log()).starts_with("earlier")) << "it was looked whether it can be written";
}

TEST(Doctor, HasAVerdictOnEachBrokenInstallation) {
    struct Case {
        void (*damage)(Installation&);
        /// What is wrong; from "..." on the system's own words up to the advice.
        std::vector<std::string> verdicts;
    };
    const std::string putSdk =
        " > put the vendor's " + std::string(host::sdkFileName) + " into {}, or the simulated one to try things out";
    const std::string sdkFirst = "Module: can't load the module " + module + ": ... > mend the SDK library first";
    const std::string seeScript =
        " > it is simulated: look at the script that the environment variable I1PRO3_SIMULATOR names";
    const std::string lamp = "Instrument: the instrument could not be opened: lamp\nErrorNumber: 7" + seeScript;
    const auto ofAnotherType = [](const std::string& name, const std::string& byDefault, const std::string& key,
                                  const std::string& type) {
        return fmt::format("{0}: {1} by default, because what is set in HKEY_LOCAL_MACHINE\\SOFTWARE\\{2} is no {3}"
                           " > set it as a {3}, or remove it",
                           name, byDefault, key, type);
    };
    const std::vector<Case> cases{
        {[](Installation& its) { std::filesystem::remove(its.module()); },
         {"Module: " + module + " is missing > put it there, or name another one with --module"}},
        {[](Installation& its) { writeFile(its.module(), "text"); },
         {"Module: can't load the module " + module + ": ... > install the module's file anew"}},
        {[](Installation& its) { its.replace(host::moduleFileName, its.sdk()); },
         {"Module: " + module +
          " is not a spectrophotometer module: it has no SPM_create > install the module's file anew"}},
        {[](Installation& its) { std::filesystem::remove(its.sdk()); },
         {sdkFirst, "SDK library: " + sdk + " is missing" + putSdk}},
        {[](Installation& its) { writeFile(its.sdk(), "text"); },
         {sdkFirst, "SDK library: can't be loaded: " + sdk + ": ..." + putSdk}},
        {[](Installation& its) { its.settings.set(commonKey, "Logging", REG_SZ, std::string("1\0", 2)); },
         {ofAnotherType("Logging", "0", commonKey, "REG_DWORD")}},
        {[](Installation& its) { its.settings.set(commonKey, "Details", REG_SZ, std::string("1\0", 2)); },
         {ofAnotherType("Details", "0", commonKey, "REG_DWORD")}},
        {[](Installation& its) { its.settings.set(deviceKey, "Device", REG_DWORD, std::string(4, '\1')); },
         {ofAnotherType("Device", "the first", deviceKey, "REG_SZ")}},
        {[](Installation& its) {
             its.settings.setNumber("Logging", 1);
             std::filesystem::create_directory(its.log());
         },
         {"Log file: " + file +
          "spm_i1pro3.log can't be written > give this user the right to write to it and to its folder"}},
        {[](Installation& its) { its.useScript(R"({"instruments": []})"); },
         {"Instrument: no instrument was found" + seeScript}},
        {[](Installation& its) { its.useScript("{"); },
         {"Instrument: the instrument could not be opened: " + file + "script.json, line 1: ..." + seeScript}},
        {[](Installation& its) { its.fail("GetDevices"); }, {lamp}},
        {[](Installation& its) { its.fail("OpenDevice"); }, {lamp}},
        {[](Installation& its) { its.fail("SetOption", 3); }, {lamp}},
        {[](Installation& its) { its.fail("GetOption"); }, {lamp}},
        {[](Installation& its) { its.fail("GetOption", 2); },
         {"Calibration: the connection to the instrument was lost" + seeScript}},
        {[](Installation& its) { its.useScript(R"({"unplug": {"function": "I1PRO3_TriggerMeasurement"}})"); },
         {"Calibration: the connection to the instrument was lost" + seeScript}},
    };
    for (const Case& each : cases) {
        Installation broken;
        each.damage(broken);
        std::vector<std::string> verdicts = broken.findings(host::Verdict::wrong);
        for (std::size_t i = 0; i < std::min(verdicts.size(), each.verdicts.size()); ++i) {
            const std::size_t own = each.verdicts[i].find("...");
            const std::size_t advice = verdicts[i].find(" > ");
            if (own < advice) verdicts[i].replace(own, advice - own, "...");
        }
        EXPECT_EQ(verdicts, each.verdicts) << (&each - cases.data());
    }
}

TEST(Doctor, NamesTheFunctionThatTheLibraryLacks) {
    const Installation its;
    its.replace(host::sdkFileName, programs / "incomplete" / host::sdkFileName);
    const std::vector<std::string> verdicts = its.findings(host::Verdict::wrong);
    ASSERT_FALSE(verdicts.empty()); // of the module, too, unless it was loaded all the same: Wine does
    EXPECT_TRUE(verdicts.back().starts_with("SDK library: " + sdk + " has no I1PRO3_GetSpectrum > put "))
        << verdicts.back();
    EXPECT_EQ(its.findings(host::Verdict::note),
              (std::vector<std::string>{"Instrument: not looked for > mend the module and the SDK library first"}));
}

TEST(Doctor, NotesWhatDoesNotKeepFromMeasuring) {
    Installation its;
    its.settings.setNumber("Logging", 1);
    its.settings.forbid();
    std::filesystem::create_directory(its.log());
    EXPECT_EQ(its.findings(host::Verdict::wrong), std::vector<std::string>());
    const std::vector<std::string> notes = its.findings(host::Verdict::note);
    ASSERT_EQ(notes.size(), 4U);
    EXPECT_EQ(notes[1], "Settings: the defaults hold, because " + host::settingsPlace() +
                            " can't be opened for reading and writing > to have settings, make its folder, and give "
                            "this user the right to write");
    EXPECT_EQ(notes[2], "Log file: " + file +
                            "spm_i1pro3.log can't be written > give this user the right to write to it and to its "
                            "folder");
}

TEST(Doctor, ShowsAParagraphPerFinding) {
    const std::vector<host::Finding> findings{{host::Verdict::good, "Module", "file\nversion 3", ""},
                                              {host::Verdict::note, "Settings", "defaults", "mend"},
                                              {host::Verdict::wrong, "Instrument", "lamp\nErrorNumber: 7\n", "look"}};
    const std::span<const host::Finding> good(findings.data(), 2);
    const std::string paragraphs = "ok     Module       file\n"
                                   "                    version 3\n"
                                   "note   Settings     defaults\n"
                                   "                    > mend\n";
    EXPECT_EQ(host::formatFindings(good, host::ColourDepth::none), paragraphs + "\nReady to measure.\n");
    EXPECT_EQ(host::formatFindings(findings, host::ColourDepth::none), paragraphs +
                                                                           "WRONG  Instrument   lamp\n"
                                                                           "                    ErrorNumber: 7\n"
                                                                           "                    > look\n"
                                                                           "\nNot ready: mend what is marked WRONG.\n");
    EXPECT_TRUE(host::formatFindings(findings, host::ColourDepth::palette256).starts_with("\x1b[32mok    \x1b[0m Mod"));
}
