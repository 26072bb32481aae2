#include "tests/support/Support.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

namespace fs = std::filesystem;

namespace {

void setVariable(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
        setenv(name.c_str(), value->c_str(), 1);
    } else {
        unsetenv(name.c_str());
    }
}

std::optional<std::string> variable(const std::string& name) {
    const char* const value = std::getenv(name.c_str());
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

} // namespace

TempFolder::TempFolder() : folder(fs::temp_directory_path() / ("spm test " + std::to_string(std::random_device{}()))) {
    fs::create_directory(folder);
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

void writeFile(const fs::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::string readFile(const fs::path& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

EnvironmentVariable::EnvironmentVariable(std::string variableName, const std::string& value)
    : name(std::move(variableName)), earlier(variable(name)) {
    setVariable(name, value);
}

EnvironmentVariable::~EnvironmentVariable() {
    setVariable(name, earlier);
}
