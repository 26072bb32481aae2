#pragma once

#include "cap/ICAPLoggingListener.h"
#include "cap/ICAPLoggingMessage.h"

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

/// A folder of the test's own, with a blank in its name; removed with the object.
class TempFolder {
public:
    TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder();

    std::filesystem::path operator/(const std::string& name) const { return folder / name; }

private:
    std::filesystem::path folder;
};

void writeFile(const std::filesystem::path& path, const std::string& content);
/// Empty when there is no such file.
std::string readFile(const std::filesystem::path& path);
/// A text file with its lines ended by '\n'.
/// @throws std::runtime_error  when a line in the file ends in another way than the system's
std::string readText(const std::filesystem::path& path);
std::vector<std::string> linesOf(const std::string& text);

/// Sets an environment variable for the object's life.
class EnvironmentVariable {
public:
    EnvironmentVariable(std::string variable, const std::string& value);
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    ~EnvironmentVariable();

private:
    std::string name;
    std::optional<std::string> earlier;
};

/// A listener that throws what it is given.
template <class Exception>
class ThrowingListener : public ICAPLoggingListener {
public:
    explicit ThrowingListener(Exception thrown) : exception(std::move(thrown)) {}
    void HandleMessage(ICAPLoggingSource* /*source*/, const ICAPLoggingMessage& /*message*/) override {
        throw exception; // NOLINT(misc-throw-by-value-catch-by-reference,cert-err09-cpp,cert-err61-cpp)
    }

private:
    Exception exception;
};

/// Keeps the one-line forms of the messages that it receives, and where the last came from.
class RecordingListener : public ICAPLoggingListener {
public:
    void HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) override {
        lastSource = source;
        lines.push_back(message.ToString());
    }

    ICAPLoggingSource* lastSource = nullptr;
    std::vector<std::string> lines;
};
