// spm on a terminal: what it shows, and how it reacts to the user.

#include "common/Environment.h"
#include "spm/Console.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <iterator>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <utmp.h>

namespace {

const std::string hangUp = "(hang up)";
const std::string kill9 = "(kill)";

/// "spm measure" with two rows of two patches, in a pseudoterminal.
class Spm {
public:
    explicit Spm(const std::vector<std::string>& more) {
        const std::string program = common::programFolder() / "spm";
        std::vector<std::string> words{"spm", "measure", "--rows", "2", "--patches", "2"};
        words.insert(words.end(), more.begin(), more.end());
        std::vector<char*> arguments;
        std::ranges::transform(words, std::back_inserter(arguments), [](std::string& word) { return word.data(); });
        arguments.push_back(nullptr);
        openpty(&terminal, &spmSide, nullptr, nullptr, nullptr);
        process = fork();
        if (process == 0) {
            close(terminal);
            login_tty(spmSide);
            alarm(30);               // ends an spm that hangs
            signal(SIGINT, SIG_DFL); // ignored if the tests are a shell's background job
            signal(SIGHUP, SIG_DFL);
            execv(program.c_str(), arguments.data());
            _exit(127);
        }
    }
    Spm(const Spm&) = delete;
    Spm& operator=(const Spm&) = delete;
    ~Spm() {
        close(terminal);
        close(spmSide);
    }

    /// Waits until spm shows a text, after the one of the previous call.
    bool shows(const std::string& text) {
        const auto begin = std::chrono::steady_clock::now(); // the status line may show forever
        while (shown.find(text, seen) == std::string::npos) {
            const bool isLate = std::chrono::steady_clock::now() - begin > std::chrono::seconds(10);
            if (isLate || !readMore(10'000)) return false;
        }
        seen = shown.find(text, seen) + text.size();
        return true;
    }

    /// Types a text, closes the terminal or kills spm.
    void act(const std::string& action) {
        if (action == hangUp) {
            close(std::exchange(terminal, -1));
        } else if (action == kill9) {
            kill(process, SIGKILL);
        } else {
            EXPECT_EQ(write(terminal, action.data(), action.size()), static_cast<ssize_t>(action.size()));
        }
    }

    /// Waits for the end of spm.
    /// @return the exit status; -1 if it was killed
    int end() {
        int status = 0;
        while (waitpid(process, &status, WNOHANG) == 0) {
            readMore(20);
        }
        while (readMore(0)) {
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string shown;

private:
    /// @return false if no output arrives in time
    bool readMore(int milliseconds) {
        std::array<char, 4096> part{};
        pollfd output{terminal, POLLIN, 0};
        if (poll(&output, 1, milliseconds) <= 0) return false;
        const ssize_t length = read(terminal, part.data(), part.size());
        if (length > 0) shown.append(part.data(), static_cast<std::size_t>(length));
        return length > 0;
    }

    int terminal = -1;
    /// Kept open: closing the last descriptor of this side would discard output that wasn't read yet.
    int spmSide = -1;
    pid_t process = -1;
    std::size_t seen = 0;
};

/// The numbers of the patches that have values in a CSV file.
std::string patchesIn(const std::filesystem::path& csv) {
    std::string numbers;
    for (const std::string& line : linesOf(readText(csv))) {
        if (line.starts_with("patch ") && line[8] != ',') numbers += line[6];
    }
    return numbers;
}

} // namespace

TEST(Terminal, FollowsTheUsersAnswers) {
    using Step = std::pair<std::string, std::string>; // the text to wait for, and the reaction
    struct Case {
        std::string script;
        std::vector<Step> steps;
        int status;
        std::string patches;
        std::string reference{};
    };
    const std::string fault = R"({"function": "I1PRO3_TriggerMeasurement", "result": 7, "text": "lamp", )";
    const std::string firstFails = R"("faults": [)" + fault + R"("times": 1}])";
    // Fails the trial measurement between the two attempts, too.
    const std::string firstFailsTwice = R"("faults": [)" + fault + R"("times": 3}])";
    const std::string secondFails = R"("faults": [)" + fault + R"("call": 2}])";
    const std::string someFound = R"("samples": {"more": -1})";
    const std::string notCalibrated =
        R"("faults": [{"function": "I1PRO3_TriggerMeasurement", "result": 13, "times": 2}])";
    const std::string connectionLost =
        R"("faults": [{"function": "I1PRO3_GetConnectionStatus", "call": 15, "exception": "x"}])";
    const std::string calibrationFails = R"("faults": [{"function": "I1PRO3_Calibrate", "result": 7, "text": "lamp"}])";
    const std::string slow = R"("button": {"once per measurement": true, "milliseconds": 500})";
    const std::string atOnce = R"("button": {"polls": 0}, "latency": {"I1PRO3_TriggerMeasurement": 500, )"
                               R"("I1PRO3_Calibrate": 500})";
    const std::string question = "Measure it again (r), skip it (s) or end the run (e)? ";
    const std::string keep = "keep them as they are (k), skip it (s) or end the run (e)? ";
    const std::string take = "take these values as Row 2 of 2 in reverse (t), " + keep;
    const std::string swapped = "name,L*,a*,b*\npatch 1,42.1,-12.3,21.8\npatch 2,51.6,-3.8,-20.2\n"
                                "patch 3,65.8,13.4,17.7\npatch 4,36.8,13.9,14.7\n";
    const std::string ctrlC = "\x03";
    const std::vector<Case> cases{
        {firstFailsTwice,
         {{"lamp\r\nErrorNumber: 7\r\n" + question, "x\n"}, {question, "r\n"}, {question, "s\n"}},
         3,
         "34"},
        {firstFails, {{question, "r\n"}}, 0, "1234"},
        {firstFails, {{question, "e\n"}}, 1, ""},
        {secondFails, {{question, "\x04"}}, 1, "12"},
        {secondFails, {{question, ctrlC}}, 3, "12"},
        {slow, {{"\r\x1b[K2 of 4 patches; waiting for the button, 0 of 300 s", ctrlC}}, 3, "12"},
        {slow, {{"2 of 4 patches; waiting ", hangUp}}, 3, "12"},
        {slow, {{"Row 2 of 2: ", kill9}}, -1, "12"},
        {someFound, {{"1 of 2 patches", ""}, {question, "k\n"}, {question, "s\n"}, {question, "s\n"}}, 3, ""},
        {notCalibrated, {{question, "r\n"}, {"Calibrated.", ""}, {"Row 1 of 2", ""}}, 0, "1234"},
        {connectionLost, {{question, "r\n"}, {"Calibrated.", ""}, {"Row 1 of 2", ""}}, 0, "1234"},
        {calibrationFails, {{"Calibrate again (r) or end the run (e)? ", "r\n"}}, 0, "1234"},
        {"", {{take, "k\n"}, {keep, "s\n"}}, 3, "12", swapped},
        {"", {{take, "t\n"}, {" as Row 1 of 2 in reverse (t), ", "t\n"}, {"maximum      ", ""}}, 0, "1234", swapped},
        {atOnce, {{"Calibration: ", ctrlC}}, 3, ""},
        {atOnce, {{"Row 1 of 2: ", ctrlC}}, 3, "12"},
    };
    const Settings settings;
    for (const Case& each : cases) {
        const TempFolder folder;
        const EnvironmentVariable script("I1PRO3_SIMULATOR", (folder / "script.json").string());
        writeFile(folder / "script.json",
                  R"({"trace": "trace.jsonl")" + (each.script.empty() ? "" : ", " + each.script) + "}");
        std::vector<std::string> arguments{"--output", folder / "values.csv"};
        if (!each.reference.empty()) {
            writeFile(folder / "reference.csv", each.reference);
            arguments.insert(arguments.end(), {"--reference", folder / "reference.csv"});
        }
        Spm spm(arguments);
        for (const auto& [text, action] : each.steps) {
            const bool isShown = spm.shows(text);
            EXPECT_TRUE(isShown) << text << spm.shown;
            if (!isShown || !action.empty()) spm.act(isShown ? action : kill9);
            if (!isShown) break;
        }
        EXPECT_EQ(spm.end(), each.status) << spm.shown;
        EXPECT_EQ(patchesIn(folder / "values.csv"), each.patches) << spm.shown;
        const bool isClosed = readFile(folder / "trace.jsonl").find("I1PRO3_CloseDevice") != std::string::npos;
        EXPECT_EQ(isClosed, each.status >= 0) << spm.shown;
    }
}

TEST(Console, QuotesForTheShell) {
    const TempFolder folder;
    for (const std::string text : {"$HOME `id` \"\\", "it's", "", "a\nb", "#~*?;", "run_1-2.csv"}) {
        execute("printf %s " + spm::quoted(text) + " > '" + (folder / "out").string() + "'");
        EXPECT_EQ(readFile(folder / "out"), text);
    }
}

// Standard output is a device that is always full.
TEST(FullDisk, StillWritesTheReport) {
    const Settings settings;
    const TempFolder folder;
    const std::string report = folder / "page.html";
    EXPECT_EQ(run(common::programFolder() / "spm", {"measure", "--rows", "2", "--patches", "2", "--report", report},
                  {"/dev/full", folder / "err"}),
              1);
    const std::string errors = readText(folder / "err");
    EXPECT_NE(errors.find("standard output: No space left on device\n"), std::string::npos) << errors;
    EXPECT_NE(readFile(report).find("4 of 4 patches"), std::string::npos) << errors;
}
