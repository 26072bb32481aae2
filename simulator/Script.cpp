#include "simulator/Script.h"

#include "common/Files.h"
#include "simulator/Json.h"

#include <algorithm>
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
    read(json, script.instruments);
    for (auto serial = script.instruments.begin(); serial != script.instruments.end(); ++serial) {
        const Json& element = json[static_cast<std::size_t>(serial - script.instruments.begin())];
        if (!serial->starts_with("SIM")) throw ValueError(element, "a simulated serial number must begin with SIM");
        const bool isDuplicate = std::find(script.instruments.begin(), serial, *serial) != serial;
        if (isDuplicate) throw ValueError(element, "duplicate serial number");
    }
}

void readChart(const Json& json, Script& script) {
    const std::filesystem::path file = script.folder / json.get<std::string>();
    script.chart = parseChart(common::readFile(file), "the chart " + file.string());
    script.description = "simulated i1Pro 3 with the chart " + file.filename().string();
}

void readPlace(const Json& json, Script& script) {
    script.isOnWhiteReference = json == "white reference";
    if (!script.isOnWhiteReference && json != "chart")
        throw ValueError(json, R"(must be "chart" or "white reference")");
}

constexpr auto lightFields = std::to_array<Field<Script>>({
    {"noise", [](const Json& json, Script& script) { script.noise = numberIn(json, 0.0, 0.1); }},
});

constexpr auto buttonFields = std::to_array<Field<Button>>({
    {"polls", [](const Json& json, Button& button) { button.polls = readCount(json, 0); }},
    {"milliseconds", [](const Json& json, Button& button) { button.time = readTime(json); }},
    {"never", readInto<&Button::never>},
    {"once per measurement", readInto<&Button::oncePerMeasurement>},
});

constexpr auto samplesFields = std::to_array<Field<Samples>>({
    {"count", readInto<&Samples::count>},
    {"more", readInto<&Samples::more>},
});

void readSamples(const Json& json, Script& script) {
    script.samples = {};
    readMembers(json, samplesFields, script.samples);
    if (script.samples.count && script.samples.more != 0)
        throw ValueError(json, R"("count" and "more" exclude each other)");
}

void readLatency(const Json& json, Script& script) {
    script.latency.clear();
    for (const auto& [function, time] : requireType(json, Json::value_t::object).items()) {
        script.latency[functionNamed(function, time)] = readTime(time);
    }
}

void readTimes(const Json& json, Fault& fault) {
    fault.times.reset();
    if (json != "always") fault.times = readCount(json, 1);
}

constexpr auto faultFields = std::to_array<Field<Fault>>({
    {"function", readInto<&Fault::function>},
    {"key", readInto<&Fault::key>},
    {"call", [](const Json& json, Fault& fault) { fault.call = readCount(json, 1); }},
    {"times", readTimes},
    {"unplug", readInto<&Fault::unplug>},
    {"result", readInto<&Fault::result>},
    {"text", readInto<&Fault::text>},
    {"number", readInto<&Fault::number>},
    {"output", readInto<&Fault::output>},
    {"size", readInto<&Fault::size>},
    {"exception", readInto<&Fault::exception>},
    {"foreign", readInto<&Fault::foreign>},
});

/// Rejects a fault with keys that would have no effect.
void requireEffect(const Json& json, const Fault& fault) {
    if (json.empty()) throw ValueError(json, "an empty fault would apply to every call");
    const std::size_t events = json.size() - json.count("function") - json.count("key") - json.count("call");
    if (fault.unplug && events > 1) throw ValueError(json, R"(only "function", "key" and "call" go with "unplug")");
    if (fault.result == 0 && (fault.text || fault.number)) {
        throw ValueError(json, R"("text" and "number" need a "result" other than 0)");
    }
    if (fault.foreign && !fault.exception) throw ValueError(json, R"("foreign" needs an "exception")");
}

void readFaults(const Json& json, Script& script) {
    script.faults.clear();
    for (const Json& element : requireType(json, Json::value_t::array)) {
        Fault& fault = script.faults.emplace_back();
        readMembers(element, faultFields, fault);
        requireEffect(element, fault);
    }
}

void readTracePath(const Json& json, Script& script) {
    script.trace = json.is_null() ? std::filesystem::path() : script.folder / json.get<std::string>();
}

void readReplay(const Json& json, Script& script) {
    const std::filesystem::path file = script.folder / json.get<std::string>();
    script.replay.emplace(file);
    script.description = "simulated i1Pro 3 that replays " + file.string();
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
    for (const auto& [key, member] : script.items()) {
        if (key == "replay" || key == "trace" || key == "latency") continue;
        throw ValueError(member, R"(only "trace" and "latency" can be combined with "replay")");
    }
}

} // namespace

void applyScript(const std::string& fileName, const std::string& text, Script& script) {
    Script changed = script;
    changed.folder = std::filesystem::path(fileName).parent_path();
    try {
        const Json json = Json::parse(text, nullptr, true, true);
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

} // namespace simulator
