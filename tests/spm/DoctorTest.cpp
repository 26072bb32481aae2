// Breaks an installation in one place after another, and checks what the doctor finds.

#include "spm/doctor/Doctor.h"

#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "platform/RegistryPlace.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

/// A temporary installation with the simulated SDK library and without settings.
class Installation {
public:
    Installation() {
        fs::copy_file(common::programFolder() / common::moduleFileName, module());
        replaceSdk("");
    }

    fs::path module() const { return place / common::moduleFileName; }
    fs::path sdk() const { return place / common::sdkFileName; }
    fs::path log() const { return module().replace_extension(".log"); }
    /// Replaces the SDK library by the one in this subfolder of the build.
    void replaceSdk(const std::string& subfolder) const {
        fs::remove(sdk());
        fs::copy_file(common::programFolder() / subfolder / common::sdkFileName, sdk());
    }
    /// Changes the processor in the library's header, two bytes, to an unknown one.
    static void makeForeign(const fs::path& library) {
        std::string bytes = readFile(library);
        const bool isElf = bytes.starts_with("\x7F");
        writeFile(library, bytes.replace(isElf ? 18 : bytes.find({"PE\0\0", 4}) + 4, 2, "??"));
    }
    void moveTo(const fs::path& name) {
        fs::create_directory(place / name);
        for (const fs::path& file : {module(), sdk()}) {
            fs::rename(file, place / name / file.filename());
        }
        place /= name;
    }
    void useScript(const std::string& text) const {
        writeFile(folder / "script.json", text);
        setVariable("I1PRO3_SIMULATOR", (folder / "script.json").string());
    }

    TempFolder folder;
    fs::path place = folder / "";
    Settings settings;

private:
    const EnvironmentVariable script{"I1PRO3_SIMULATOR", ""};
};

/// A change, and some of the expected findings with parts of their texts and advice.
using Case = std::pair<void (*)(Installation&), std::vector<spm::Finding>>;

const std::string key = R"(HKEY_LOCAL_MACHINE\SOFTWARE\Kestrova\SPM)";

} // namespace

TEST(Doctor, DiagnosesEachFault) {
    using enum spm::Verdict;
    const std::string module = common::moduleFileName;
    const std::string sdk = common::sdkFileName;
    const std::string log = std::string(1, fs::path::preferred_separator) + "spm_i1pro3.log";
    // Windows gives the module its path only in the system's code page.
    const bool isWindows = fs::path::preferred_separator == '\\';
    const std::string moveAdvice = isWindows ? "move the module to a folder with " : "";
    const std::string simulated = "simulated i1Pro 3 with the ColorChecker Classic chart";
    const std::vector<Case> cases{
        {[](Installation&) {},
         {{good, "Module", module + "\nversion " FILE_VERSION, ""},
          {note, "SDK library", sdk + "\nSIMULATED: " + simulated, "to use a real instrument, replace it with "},
          {good, "Settings", std::string(registryPlace()).substr(0, 1), ""},
          {good, "Device", "the first by default, not set in " + key + "\\xrite i1 Pro3", ""},
          {good, "Log file", log + ", logging is off", ""},
          {good, "Instrument", "found and opened", ""},
          {note, "Calibration", "not done", "have the white reference ready: \"spm measure\" starts with "}}},
        {[](Installation& its) { fs::remove(its.module()); },
         {{wrong, "Module", " is missing", "put it there, or choose another one with --module"},
          {note, "Instrument", "not checked", "fix the module and the SDK library first"}}},
        {[](Installation& its) { writeFile(its.module(), "text"); },
         {{wrong, "Module", "can't load the module: ", "install the module's file again"},
          {good, "SDK library", sdk, ""}}},
        {[](Installation& its) { fs::resize_file(its.sdk(), fs::file_size(its.sdk()) / 2); },
         {{note, "Module", " can't be checked", "fix the SDK library first"},
          {wrong, "SDK library", "can't load ", isWindows ? "replace" : "copy or install it again"}}},
        {[](Installation& its) { Installation::makeForeign(its.sdk()); },
         {{wrong, "SDK library", "can't load ", "replace"}}},
        {[](Installation& its) { writeFile(its.module(), readFile(its.sdk())); },
         {{wrong, "Module", "it has no SPM_create", "install the module's file again"}}},
        {[](Installation& its) { fs::remove(its.sdk()); },
         {{note, "Module", module, "fix the SDK library first"},
          {wrong, "SDK library", sdk + " is missing", "put the vendor's " + sdk + " into "}}},
        {[](Installation& its) { its.replaceSdk("incomplete"); },
         {{wrong, "SDK library", sdk + " has no I1PRO3_GetSpectrum", "put the vendor's "}}},
        {[](Installation& its) { its.replaceSdk("null"); },
         {{good, "SDK library", sdk, ""}, {good, "Calibration", "done", ""}}},
        {[](Installation& its) {
             its.settings.setNumber("Logging", 1);
             its.settings.denyWriting();
         },
         {{note, "Settings", " can't be opened for reading and writing", registryAdvice}}},
        {[](Installation& its) { its.settings.setNumber("LOGFILE", 1); },
         {{good, "Logging", "0 by default, not set in " + key, ""},
          {note, "Unknown", "does not read LOGFILE in " + key, "correct its name"}}},
        {[](Installation& its) {
             its.settings.set(commonKey, "Logging", REG_SZ, {"1\0", 2});
         },
         {{wrong, "Logging", "0 by default: the value in " + key + " is not a REG_DWORD", "set it as a REG_D"}}},
        {[](Installation& its) {
             its.settings.setNumber("Logging", 1);
             fs::create_directory(its.log());
         },
         {{wrong, "Log file", ".log is not a regular file", "remove or rename it"}}},
        {[](Installation& its) {
             its.settings.setNumber("Logging", 1);
             its.moveTo(u8"\u00FC");
         },
         {{good, "Module", module, ""},
          {good, "Logging", "1, from " + key, ""},
          {good, "Log file", log + ", logging is on", ""}}},
        {[](Installation& its) { its.moveTo(u8"\u8272"); },
         {{isWindows ? note : good, "Module", module, moveAdvice},
          {isWindows ? note : good, "Log file", log, moveAdvice}}},
        {[](Installation& its) { its.useScript(R"({"instruments": []})"); },
         {{wrong, "Instrument", "no instrument was found",
           "it is simulated: check the files that I1PRO3_SIMULATOR and "}}},
        {[](Installation& its) {
             its.useScript(R"({"faults": [{"function": "I1PRO3_SetOption", "call": 3, "result": 7}]})");
         },
         {{wrong, "Instrument", "the instrument could not be opened: ", "it is simulated"}}},
        {[](Installation& its) {
             its.useScript(R"({"faults": [{"function": "I1PRO3_GetOption", "call": 2, "result": 7}]})");
         },
         {{wrong, "Calibration", "", "it is simulated"}}},
    };
    for (const auto& [change, expected] : cases) {
        Installation installation;
        change(installation);
        const std::vector<spm::Finding> findings = spm::examine(installation.module());
        for (const auto& [verdict, subject, text, advice] : expected) {
            const auto finding = std::ranges::find(findings, subject, &spm::Finding::subject);
            ASSERT_NE(finding, findings.end()) << subject;
            EXPECT_EQ(finding->verdict, verdict) << subject << ": " << text;
            EXPECT_NE(finding->text.find(text), std::string::npos) << finding->text;
            EXPECT_NE(finding->advice.find(advice), std::string::npos) << finding->advice;
            EXPECT_EQ(finding->advice.empty(), advice.empty()) << finding->advice;
        }
    }
}

TEST(Doctor, LeavesTheLogFileUnchanged) {
    Installation installation;
    EXPECT_TRUE(spm::isReady(spm::examine(installation.module())));
    EXPECT_FALSE(fs::exists(installation.log())) << "a test for write access created it";
    installation.settings.setNumber("Logging", 1);
    writeFile(installation.log(), "earlier");
    EXPECT_TRUE(spm::isReady(spm::examine(installation.module())));
    EXPECT_TRUE(readFile(installation.log()).starts_with("earlier"));
}

TEST(Doctor, FormatsFindings) {
    std::vector<spm::Finding> findings{{spm::Verdict::good, "Module", "file\nversion 3", ""},
                                       {spm::Verdict::note, "Settings", "defaults", "fix"},
                                       {spm::Verdict::wrong, "Instrument", "lamp\nErrorNumber: 7\n", "look"}};
    EXPECT_EQ(spm::formatFindings(findings, false), "ok     Module       file\n"
                                                    "                    version 3\n"
                                                    "note   Settings     defaults\n"
                                                    "                    > fix\n"
                                                    "WRONG  Instrument   lamp\n"
                                                    "                    ErrorNumber: 7\n"
                                                    "                    > look\n"
                                                    "\nNot ready: fix the parts marked WRONG.\n");
    findings.pop_back();
    EXPECT_TRUE(spm::formatFindings(findings, true).starts_with("\x1b[32mok    \x1b[0m Mod"));
}
