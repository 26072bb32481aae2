#include "tests/support/SimulatedSdk.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

using Json = nlohmann::ordered_json;

SimulatedSdk::SimulatedSdk(const spm::Module& module)
    : applyScript(reinterpret_cast<decltype(I1PRO3_SimulatorUse)*>(module.findInSdk("I1PRO3_SimulatorUse"))) {
    use(Json{{"trace", trace.string()}}.dump());
}

SimulatedSdk::~SimulatedSdk() {
    applyScript(R"({"trace": null})"); // closes the file, so that it can be removed
}

void SimulatedSdk::use(const std::string& script) {
    const char* const error = applyScript(script.c_str());
    if (error != nullptr) throw std::runtime_error(error);
}

std::vector<std::string> SimulatedSdk::takeCalls() {
    std::ifstream lines(trace, std::ios::binary);
    lines.seekg(taken);
    std::vector<std::string> calls;
    for (std::string line; std::getline(lines, line); taken += static_cast<std::streamoff>(line.size()) + 1) {
        const Json json = Json::parse(line);
        if (!json.contains("call")) continue;
        std::string& call =
            calls.emplace_back(json.at("function").get<std::string>().substr(std::string("I1PRO3_").size()));
        for (const Json& argument : json.at("arguments")) {
            call += ' ' + (argument.is_string() ? argument.get<std::string>() : argument.dump());
        }
    }
    return calls;
}
