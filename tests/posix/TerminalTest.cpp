// spm on a terminal: what a person sees and answers there.

#include "host/System.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <array>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// spm, running on a terminal of its own.
class Spm {
public:
    explicit Spm(std::vector<std::string> arguments) {
        const std::string program = host::programFolder() / "spm";
        arguments.insert(arguments.begin(), program);
        std::vector<char*> pointers;
        pointers.reserve(arguments.size() + 1);
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        process = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (process == 0) {
            execv(program.c_str(), pointers.data());
            _exit(127);
        }
    }
    Spm(const Spm&) = delete;
    Spm& operator=(const Spm&) = delete;
    ~Spm() {
        if (process > 0) kill(process, SIGKILL);
        if (process > 0) waitpid(process, nullptr, 0);
        if (terminal >= 0) close(terminal);
    }

    /// Waits until a text is shown, behind what was waited for before.
    bool shows(const std::string& text) {
        for (;;) {
            const std::size_t at = shown.find(text, seen);
            if (at != std::string::npos) {
                seen = at + text.size();
                return true;
            }
            if (!readMore()) return false;
        }
    }

    void type(const std::string& text) const {
        EXPECT_EQ(write(terminal, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    /// The exit status.
    int end() {
        while (readMore()) {
        }
        int status = 0;
        waitpid(std::exchange(process, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// Takes the terminal away.
    void hangUp() { close(std::exchange(terminal, -1)); }

    void killAtOnce() const { kill(process, SIGKILL); }

    std::string shown;

private:
    /// @return false when nothing more comes
    bool readMore() {
        constexpr int patience = 20'000;
        std::array<char, 4096> part{};
        pollfd ready{terminal, POLLIN, 0};
        if (terminal < 0 || poll(&ready, 1, patience) != 1) return false;
        const ssize_t length = read(terminal, part.data(), part.size());
        if (length <= 0) return false;
        shown.append(part.data(), static_cast<std::size_t>(length));
        return true;
    }

    int terminal = -1;
    pid_t process = -1;
    std::size_t seen = 0;
};

class Terminal : public testing::Test {
protected:
    Terminal() { use("{}"); }

    void use(const std::string& text) const { writeFile(folder / "script.json", text); }
    std::vector<std::string> patches(const std::filesystem::path& csv) const {
        std::vector<std::string> names;
        for (const std::string& line : linesOf(readText(csv))) {
            names.push_back(line.substr(0, line.find(',')));
        }
        return names;
    }

    TempFolder folder;
    const Settings settings;
    const EnvironmentVariable script{"I1PRO3_SIMULATOR", (folder / "script.json").string()};
    const EnvironmentVariable colours{"COLORTERM", "truecolor"};
    const std::filesystem::path output = folder / "values.csv";
    const std::vector<std::string> measure{"measure", "--rows", "2", "--patches", "2", "--output", output.string()};
};

constexpr const char* question = "\r\nMeasure it again (r), skip it (s) or end (e)? ";
constexpr const char* firstWait = "[........................] 0 of 4 patches; waiting for the button, 0 s ";
constexpr const char* secondWait = "[############............] 2 of 4 patches; waiting for the button, 0 s ";

} // namespace

TEST_F(Terminal, ShowsWhatIsDoneAndTheColours) {
    Spm spm({"measure", "--rows", "2", "--patches", "2"});
    EXPECT_TRUE(spm.shows("place the instrument on its white reference and press the button.\r\n"));
    EXPECT_TRUE(spm.shows(std::string("\r\x1b[K") + firstWait)) << spm.shown;
    EXPECT_TRUE(spm.shows("\n\x1b[48;2;115;78;64m      \x1b[0m patch 1 ")) << spm.shown;
    EXPECT_TRUE(spm.shows(secondWait)) << spm.shown;
    EXPECT_EQ(spm.end(), 0);
}

TEST_F(Terminal, AsksWhatToDoAfterAFailure) {
    use(R"({"faults": [{"function": "I1PRO3_TriggerMeasurement", "times": 2, "result": 7, "text": "lamp"}]})");
    Spm spm(measure);
    EXPECT_TRUE(spm.shows("lamp\r\nErrorNumber: 7")) << spm.shown;
    EXPECT_TRUE(spm.shows(question)) << spm.shown;
    spm.type("x\n");
    EXPECT_TRUE(spm.shows("Measure it again (r)"));
    spm.type("r\n");
    EXPECT_TRUE(spm.shows("lamp\r\nErrorNumber: 7"));
    EXPECT_TRUE(spm.shows(question));
    spm.type("s\n");
    EXPECT_TRUE(spm.shows("Row 2 of 2, CIELab: "));
    EXPECT_EQ(spm.end(), 3) << "a row was skipped";
    EXPECT_EQ(patches(output), (std::vector<std::string>{"name", "patch 3", "patch 4"}));
}

TEST_F(Terminal, EndsWhenThePersonSaysSo) {
    use(R"({"faults": [{"function": "I1PRO3_TriggerMeasurement", "result": 7, "text": "lamp"}]})");
    Spm spm(measure);
    EXPECT_TRUE(spm.shows(question));
    spm.type("e\n");
    EXPECT_EQ(spm.end(), 1);
    EXPECT_TRUE(spm.shown.ends_with("spm: ended after a failure\r\n")) << spm.shown;
    EXPECT_FALSE(std::filesystem::exists(output)) << "nothing was read";
}

TEST_F(Terminal, ClosesTheInstrumentAndKeepsWhatWasReadAfterCtrlC) {
    use(R"({"button": {"once per measurement": true, "milliseconds": 500}, "trace": "trace.jsonl"})");
    Spm spm(measure);
    EXPECT_TRUE(spm.shows(secondWait));
    spm.type("\x03");
    EXPECT_TRUE(spm.shows("Ended; the instrument is closed, and what was read is kept.\r\n")) << spm.shown;
    EXPECT_EQ(spm.end(), 3);
    EXPECT_EQ(patches(output), (std::vector<std::string>{"name", "patch 1", "patch 2"}));
    EXPECT_NE(readText(folder / "trace.jsonl").find("I1PRO3_CloseDevice"), std::string::npos);
}

TEST_F(Terminal, TakesCtrlCAsAnAnswer) {
    use(R"({"faults": [{"function": "I1PRO3_TriggerMeasurement", "call": 2, "result": 7}], "trace": "trace.jsonl"})");
    Spm spm(measure);
    EXPECT_TRUE(spm.shows(question)) << spm.shown;
    spm.type("\x03");
    EXPECT_EQ(spm.end(), 3);
    EXPECT_EQ(patches(output), (std::vector<std::string>{"name", "patch 1", "patch 2"}));
    EXPECT_NE(readText(folder / "trace.jsonl").find("I1PRO3_CloseDevice"), std::string::npos);
}

TEST_F(Terminal, NoticesCtrlCWhenTheButtonIsPressedAtOnce) {
    use(R"({"button": {"polls": 0}, "latency": {"I1PRO3_TriggerMeasurement": 1000}})");
    Spm spm(measure);
    EXPECT_TRUE(spm.shows("Row 1 of 2, CIELab: "));
    spm.type("\x03");
    EXPECT_EQ(spm.end(), 3);
    EXPECT_EQ(patches(output), (std::vector<std::string>{"name", "patch 1", "patch 2"}));
}

TEST_F(Terminal, ClosesTheInstrumentWhenItGoesAway) {
    use(R"({"button": {"once per measurement": true, "milliseconds": 500}, "trace": "trace.jsonl"})");
    Spm spm(measure);
    EXPECT_TRUE(spm.shows(secondWait));
    spm.hangUp();
    EXPECT_EQ(spm.end(), 3);
    EXPECT_NE(readText(folder / "trace.jsonl").find("I1PRO3_CloseDevice"), std::string::npos);
}

TEST_F(Terminal, LosesNoReadingWhenItIsKilled) {
    use(R"({"button": {"once per measurement": true, "milliseconds": 500}})");
    Spm spm(measure);
    EXPECT_TRUE(spm.shows("Row 2 of 2, CIELab: "));
    spm.killAtOnce();
    EXPECT_EQ(spm.end(), -1);
    EXPECT_EQ(patches(output), (std::vector<std::string>{"name", "patch 1", "patch 2"}));
}
