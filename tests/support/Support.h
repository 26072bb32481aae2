#pragma once

#include "cap/ICAPLoggingListener.h"
#include "cap/ICAPLoggingMessage.h"

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

/// A temporary folder with a space in its name; removed by the destructor.
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
/// Returns the content of a file; empty if it doesn't exist.
std::string readFile(const std::filesystem::path& path);
/// Returns the content of a text file, with the system's line endings converted to '\n'.
/// @throws std::runtime_error  if a line has another line ending
std::string readText(const std::filesystem::path& path);
/// Compares a text with a golden file; if the environment variable SPM_WRITE_GOLDEN is set, writes the file instead.
void expectGolden(const std::string& text, const std::filesystem::path& golden);
std::vector<std::string> linesOf(const std::string& text);

/// Sets an environment variable for the object's lifetime.
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

/// Throws a copy of an exception for each message.
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

/// Records the text of each message, and the source of the last.
class RecordingListener : public ICAPLoggingListener {
public:
    void HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) override {
        lastSource = source;
        lines.push_back(message.ToString());
    }

    ICAPLoggingSource* lastSource = nullptr;
    std::vector<std::string> lines;
};
