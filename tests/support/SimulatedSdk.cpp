#include "tests/support/SimulatedSdk.h"

#include "simulator/Trace.h"

#include <iomanip>
#include <sstream>
#include <stdexcept>

SimulatedSdk::SimulatedSdk(const spm::Module& module)
    : applyScript(reinterpret_cast<decltype(I1PRO3_SimulatorUse)*>(module.findInSdk("I1PRO3_SimulatorUse"))) {
    beginTrace();
}

SimulatedSdk::~SimulatedSdk() {
    applyScript(endTrace); // closes the file, so that it can be removed
}

void SimulatedSdk::use(const std::string& script) {
    const char* const error = applyScript(script.c_str());
    if (error != nullptr) throw std::runtime_error(error);
}

void SimulatedSdk::beginTrace() {
    std::ostringstream script;
    script << "{\"trace\": " << std::quoted(trace.string()) << '}';
    use(script.str());
}

std::vector<std::string> SimulatedSdk::takeCalls() {
    use(endTrace);
    std::vector<std::string> calls;
    for (const simulator::TracedCall& line : simulator::readTrace(trace)) {
        calls.push_back(wordsOf(line.call));
    }
    std::filesystem::remove(trace);
    beginTrace();
    return calls;
}

std::string wordsOf(const simulator::Call& call) {
    std::string words = std::string(simulator::signatureOf(call.function).name).substr(std::string("I1PRO3_").size());
    for (const simulator::Parameter parameter : simulator::signatureOf(call.function).parameters) {
        if (const auto text = call.textOf(parameter)) words += ' ' + *text;
    }
    return words;
}
