#include "tests/unit/SdkHost.h"

#include "common/Environment.h"
#include "common/LibraryNames.h"
#include "simulator/I1PRO3_Simulator.h"

#include <iterator>
#include <sstream>
#include <stdexcept>

const std::filesystem::path simulatorFile = common::programFolder() / common::sdkFileName;

void beginScript(const std::string& script) {
    I1PRO3_SimulatorUse(nullptr);
    useScript(script);
}

void useScript(const std::string& script) {
    const char* const error = I1PRO3_SimulatorUse(script.c_str());
    if (error != nullptr) throw std::runtime_error(error);
}

template <class... Arguments>
std::int32_t SdkHost::invoke(const std::string& function, Arguments... arguments) const {
    void* const address = library.find(("I1PRO3_" + function).c_str());
    return reinterpret_cast<std::int32_t (*)(Arguments...)>(address)(arguments...);
}

std::int32_t SdkHost::call(const std::string& line) {
    std::istringstream stream(line);
    const std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
    const std::string& function = words[0];
    const auto textAt = [&](std::size_t i) { return words[i] == "null" ? nullptr : words[i].c_str(); };
    if (function == "GetDevices") return listDevices(words.size() == 1);
    if (function == "SetGlobalOption") return invoke(function, textAt(1), textAt(2));
    if (function == "SetOption") return invoke(function, deviceOf(words[1]), textAt(2), textAt(3));
    if (words.size() == 2) return invoke(function, deviceOf(words[1]));

    const std::int32_t number = std::stoi(words.back());
    const bool hasBuffer = words.size() == (function == "GetOption" ? 4 : 3); // otherwise it is null
    if (function == "GetTriStimulus" || function == "GetSpectrum") {
        values.assign(function == "GetSpectrum" ? I1PRO3_NUMBER_OF_REFLECTIONS : 3, 0);
        return invoke(function, deviceOf(words[1]), hasBuffer ? values.data() : nullptr, number);
    }
    auto size = static_cast<std::uint32_t>(number);
    text.assign(size + 1, '\0'); // AddressSanitizer detects writes beyond it
    char* const buffer = hasBuffer ? text.data() : nullptr;
    const std::int32_t result = function == "GetGlobalOption"
                                    ? invoke(function, textAt(1), buffer, &size)
                                    : invoke(function, deviceOf(words[1]), textAt(2), buffer, &size);
    text.resize(text.find('\0'));
    return result;
}

std::string SdkHost::lastError() {
    call("GetGlobalOption LastErrorText 500");
    return text;
}

std::int32_t SdkHost::listDevices(bool hasList) {
    I1PRO3_DeviceHandle* list = nullptr;
    std::uint32_t count = 0;
    const std::int32_t result = invoke("GetDevices", hasList ? &list : nullptr, &count);
    if (list != nullptr) devices.assign(list, list + count);
    return result;
}

I1PRO3_DeviceHandle SdkHost::deviceOf(const std::string& word) {
    if (word == "null") return nullptr;
    if (word == "unknown") return this;
    return devices.at(word.ends_with('2') ? 1 : 0);
}
