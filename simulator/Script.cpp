#include "simulator/Script.h"

#include "common/Files.h"
#include "simulator/Json.h"

#include <set>
#include <string_view>
#include <utility>

namespace simulator {

namespace {

std::uint32_t readCount(const Json& json, std::uint32_t minimum) {
    return numberIn(json, minimum, 1'000'000'000U);
}

std::chrono::milliseconds readTime(const Json& json) {
    return std::chrono::milliseconds(numberIn(json, 0, 3'600'000));
}

void readInstruments(const Json& json, Script& script) {
    std::set<std::string> serials;
    for (const Json& element : elementsOf(json)) {
        const auto serial = element.get<std::string>();
        if (!serial.starts_with("SIM")) throw ValueError(element, "a simulated serial number must begin with SIM");
        if (!serials.insert(serial).second) throw ValueError(element, "duplicate serial number");
    }
    script.instruments = json.get<std::vector<std::string>>();
}

void readChart(const Json& json, Script& script) try {
    const std::filesystem::path file = script.folder / json.get<std::string>();
    script.chart = parseChart(common::readFile(file), "the chart " + file.string());
    script.subject = "with the chart " + file.filename().string();
} catch (const std::runtime_error& error) {
    throw ValueError(json, error.what());
}

void readPlace(const Json& json, Script& script) {
    const auto place = json.get<std::string>();
    script.isOnWhiteReference = place == "white reference";
    if (!script.isOnWhiteReference && place != "chart") {
        throw ValueError(json, R"(must be "chart" or "white reference")");
    }
}

constexpr auto lightFields = std::to_array<Field<Script>>({
    {"noise", [](const Json& json, Script& script) { script.noise = numberIn(json, 0.0, 0.1); }},
});

constexpr auto buttonFields = std::to_array<Field<Button>>({
    {"polls", [](const Json& json, Button& button) { button.polls = readCount(json, 0); }},
    {"milliseconds", [](const Json& json, Button& button) { button.time = readTime(json); }},
    {"never", [](const Json& json, Button& button) { button.never = json.get<bool>(); }},
    {"once per measurement", [](const Json& json, Button& button) { button.oncePerMeasurement = json.get<bool>(); }},
});

constexpr auto samplesFields = std::to_array<Field<Samples>>({
    {"count", [](const Json& json, Samples& samples) { samples.count = integerIn<std::int32_t>(json); }},
    {"more", [](const Json& json, Samples& samples) { samples.more = integerIn<std::int32_t>(json); }},
});

void readSamples(const Json& json, Script& script) {
    Samples samples;
    readMembers(json, samplesFields, samples);
    if (samples.count && samples.more != 0) throw ValueError(json, R"("count" and "more" exclude each other)");
    script.samples = samples;
}

void readLatency(const Json& json, Script& script) {
    script.latency.clear();
    for (const auto& [function, time] : membersOf(json)) {
        script.latency[functionNamed(function, time)] = readTime(time);
    }
}

void readTimes(const Json& json, Fault& fault) {
    fault.times.reset();
    if (json != "always") fault.times = readCount(json, 1);
}

constexpr auto faultFields = std::to_array<Field<Fault>>({
    {"function", [](const Json& json, Fault& fault) { fault.function = functionNamed(json); }},
    {"key", [](const Json& json, Fault& fault) { fault.key = json.get<std::string>(); }},
    {"call", [](const Json& json, Fault& fault) { fault.call = readCount(json, 1); }},
    {"times", readTimes},
    {"unplug", [](const Json& json, Fault& fault) { fault.unplug = json.get<bool>(); }},
    {"result", [](const Json& json, Fault& fault) { fault.answer.result = integerIn<std::int32_t>(json); }},
    {"text", [](const Json& json, Fault& fault) { fault.errorText = json.get<std::string>(); }},
    {"number", [](const Json& json, Fault& fault) { fault.errorNumber = json.get<std::string>(); }},
    {"output", [](const Json& json, Fault& fault) { fault.answer.text = json.get<std::string>(); }},
    {"size", [](const Json& json, Fault& fault) { fault.answer.size = integerIn<std::uint32_t>(json); }},
    {"exception", [](const Json& json, Fault& fault) { fault.answer.exception = json.get<std::string>(); }},
    {"foreign", [](const Json& json, Fault& fault) { fault.answer.isForeign = json.get<bool>(); }},
});

/// Rejects a fault with keys that would have no effect.
void requireEffect(const Json& json, const Fault& fault) {
    if (json.empty()) throw ValueError(json, "an empty fault would apply to every call");
    const std::size_t events = json.size() - json.count("function") - json.count("key") - json.count("call");
    if (fault.unplug && events > 1) throw ValueError(json, R"(only "function", "key" and "call" go with "unplug")");
    if (fault.answer.result == 0 && (fault.errorText || fault.errorNumber)) {
        throw ValueError(json, R"("text" and "number" need a "result" other than 0)");
    }
    if (fault.answer.isForeign && !fault.answer.exception) throw ValueError(json, R"("foreign" needs an "exception")");
    if (!fault.function || hasParameter(*fault.function, Parameter::buffer)) return;
    const char* const function = signatureOf(*fault.function).name;
    if (fault.answer.text) throw ValueError(json, fmt::format("{} has no \"output\"", function));
    if (fault.answer.size && !hasParameter(*fault.function, Parameter::count)) {
        throw ValueError(json, fmt::format("{} has no \"size\"", function));
    }
}

void readFaults(const Json& json, Script& script) {
    script.faults.emplace();
    for (const Json& element : elementsOf(json)) {
        Fault& fault = script.faults->emplace_back();
        readMembers(element, faultFields, fault);
        requireEffect(element, fault);
    }
}

void readTracePath(const Json& json, Script& script) {
    script.trace = json.is_null() ? std::filesystem::path() : script.folder / json.get<std::string>();
}

void readReplay(const Json& json, Script& script) try {
    script.replay = readTrace(script.folder / json.get<std::string>());
    script.subject = "that replays " + script.replay->fileName;
} catch (const std::runtime_error& error) {
    throw ValueError(json, error.what());
}

constexpr auto scriptFields = std::to_array<Field<Script>>({
    {"instruments", readInstruments},
    {"chart", readChart},
    {"place", readPlace},
    {"light", [](const Json& json, Script& script) { readMembers(json, lightFields, script); }},
    {"button", [](const Json& json, Script& script) { readMembers(json, buttonFields, script.button); }},
    {"samples", readSamples},
    {"latency", readLatency},
    {"faults", readFaults},
    {"trace", readTracePath},
    {"replay", readReplay},
});

void requireReplayAlone(const Json& script) {
    if (!script.contains("replay")) return;
    for (const auto& [key, member] : membersOf(script)) {
        if (key == "replay" || key == "trace" || key == "latency") continue;
        throw ValueError(member, R"(only "trace" and "latency" can be combined with "replay")");
    }
}

} // namespace

void applyScript(const std::string& fileName, const std::string& text, Script& script) {
    const Json json = parseJson(fileName, text);
    Script changed = script;
    changed.folder = std::filesystem::path(fileName).parent_path();
    try {
        readMembers(json, scriptFields, changed);
        requireReplayAlone(json);
    } catch (const Json::exception& error) {
        throw errorIn(fileName, error);
    }
    script = std::move(changed);
}

Script readScript(const std::filesystem::path& file) {
    Script script;
    applyScript(file.string(), common::readFile(file), script);
    return script;
}

std::string descriptionOf(const Script& script) {
    return "simulated i1Pro 3 " + script.subject;
}

} // namespace simulator
