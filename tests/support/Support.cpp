#include "tests/support/Support.h"

#include "tests/support/System.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

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
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    if (std::erase(text, '\r') != lines * (lineEnd.size() - 1))
        throw std::runtime_error("a line ending of another system");
    return text;
}

void expectGolden(const std::string& text, const fs::path& golden) {
    if (std::getenv("SPM_WRITE_GOLDEN") != nullptr) writeFile(golden, text);
    EXPECT_EQ(text, readFile(golden)) << golden;
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
    : name(std::move(variableName)) {
    if (const char* const before = std::getenv(name.c_str())) earlier = before;
    setVariable(name, value);
}

EnvironmentVariable::~EnvironmentVariable() {
    setVariable(name, earlier);
}

void Settings::setNumber(const std::string& name, std::uint32_t number) {
    set(commonKey, name, REG_DWORD, std::string(reinterpret_cast<const char*>(&number), sizeof number));
}

int run(const fs::path& program, const std::vector<std::string>& arguments, const Output& output) {
    std::string command = quoted(program.string());
    for (const std::string& argument : arguments) {
        command += ' ' + quoted(argument);
    }
    return execute(command + " >" + quoted(output.out.string()) + " 2>" + quoted(output.err.string()));
}
