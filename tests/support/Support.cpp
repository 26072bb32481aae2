#include "tests/support/Support.h"

#include "tests/support/System.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

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

std::string readText(const fs::path& path) {
    std::string text = readFile(path);
    for (std::size_t end = 0; (end = text.find('\n', end)) != std::string::npos; ++end) {
        const std::size_t begin = end + 1 - std::min(lineEnd.size(), end + 1);
        if (text.compare(begin, lineEnd.size(), lineEnd) != 0) throw std::runtime_error("a line end of another system");
        text.replace(begin, lineEnd.size(), "\n");
        end = begin;
    }
    return text;
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

void Settings::setNumber(const std::string& name, std::uint32_t number) {
    std::string data;
    for (int bit = 0; bit < 32; bit += 8) {
        data += static_cast<char>(number >> bit & 0xFF);
    }
    set(commonKey, name, REG_DWORD, data);
}

void Settings::setText(const std::string& name, const std::string& text) {
    set(deviceKey, name, REG_SZ, text + '\0');
}

EnvironmentVariable::~EnvironmentVariable() {
    setVariable(name, earlier);
}
