#include "simulator/Script.h"

#include "simulator/Json.h"

#include <algorithm>
#include <limits>

namespace simulator {

namespace {

constexpr std::int64_t mostCalls = 1'000'000'000;
constexpr std::int64_t longestTime = 3'600'000;
constexpr std::int64_t leastInt32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t mostInt32 = std::numeric_limits<std::int32_t>::max();

/// @param place  the function's name, or what stands under it
void expectFunction(const Value& place, const std::string& name) {
    if (findSignature(name) != nullptr) return;
    std::string names;
    for (const Signature& signature : signatures) {
        names.append(names.empty() ? "" : ", ").append(signature.name);
    }
    place.fail(Value::quoted(name) + " is no function of the SDK library; there are " + names);
}

std::string readFunction(const Value& value) {
    expectFunction(value, value.text());
    return value.text();
}

std::uint32_t readCount(const Value& value, std::int64_t least) {
    return static_cast<std::uint32_t>(value.integer(least, mostCalls));
}

std::int32_t readInt32(const Value& value) {
    return static_cast<std::int32_t>(value.integer(leastInt32, mostInt32));
}

std::chrono::milliseconds readTime(const Value& value) {
    return std::chrono::milliseconds(value.integer(0, longestTime));
}

/// A file that a script names, beside the script.
std::filesystem::path readPath(const Value& value) {
    return std::filesystem::path(value.fileName()).parent_path() / value.text();
}

void readInstruments(const Value& value, Script& script) {
    std::vector<std::string> serials;
    for (const Value& element : value.elements()) {
        const std::string serial = element.text();
        if (!serial.starts_with("SIM")) element.fail(element.shown() + " does not begin with SIM, for simulated");
        if (std::find(serials.begin(), serials.end(), serial) != serials.end()) {
            element.fail(element.shown() + " is the serial number of another instrument, too");
        }
        serials.push_back(serial);
    }
    script.instruments = std::move(serials);
}

void readChart(const Value& value, Script& script) {
    const std::filesystem::path path = readPath(value);
    try {
        script.chart = parseChart(readFile(path));
    } catch (const ScriptError& error) {
        value.fail(error.what());
    } catch (const std::runtime_error& error) {
        value.fail("the chart " + path.string() + " is wrong: " + error.what());
    }
    if (script.chart.empty()) value.fail("the chart " + path.string() + " has no patches");
    script.subject = "with the chart " + path.filename().string();
}

void readPlace(const Value& value, Script& script) {
    const std::string place = value.text();
    if (place != "chart" && place != "white reference") {
        value.fail(value.shown() + R"( is no place; there are "chart" and "white reference")");
    }
    script.isOnWhiteReference = place == "white reference";
}

void readLatency(const Value& value, Script& script) {
    script.latency.clear();
    for (const auto& [function, time] : value.members()) {
        expectFunction(time, function);
        script.latency[function] = readTime(time);
    }
}

const std::vector<Field<Light>> lightFields{
    {"noise", [](const Value& value, Light& light) { light.noise = value.number(0, 0.1); }},
    {"drift", [](const Value& value, Light& light) { light.drift = value.number(-0.1, 0.1); }},
    {"seed",
     [](const Value& value, Light& light) { light.seed = static_cast<std::uint64_t>(value.integer(0, mostInt32)); }},
};

const std::vector<Field<Button>> buttonFields{
    {"polls", [](const Value& value, Button& button) { button.polls = readCount(value, 0); }},
    {"milliseconds", [](const Value& value, Button& button) { button.time = readTime(value); }},
    {"never", [](const Value& value, Button& button) { button.never = value.truth(); }},
    {"once per measurement", [](const Value& value, Button& button) { button.oncePerMeasurement = value.truth(); }},
};

const std::vector<Field<Samples>> samplesFields{
    {"count", [](const Value& value, Samples& samples) { samples.count = readInt32(value); }},
    {"more", [](const Value& value, Samples& samples) { samples.more = readInt32(value); }},
};

const std::vector<Field<Unplug>> unplugFields{
    {"function", [](const Value& value, Unplug& unplug) { unplug.function = readFunction(value); }},
    {"call", [](const Value& value, Unplug& unplug) { unplug.call = readCount(value, 1); }},
};

void readTimes(const Value& value, Answer& fault) {
    if (value.json() == "always") {
        fault.times = 0;
    } else if (value.json().is_string()) {
        value.fail(value.shown() + " is neither a number nor \"always\"");
    } else {
        fault.times = readCount(value, 1);
    }
}

const std::vector<Field<Answer>> faultFields{
    {"function", [](const Value& value, Answer& fault) { fault.function = readFunction(value); }},
    {"key", [](const Value& value, Answer& fault) { fault.argument = value.text(); }},
    {"call", [](const Value& value, Answer& fault) { fault.position = readCount(value, 1); }},
    {"times", readTimes},
    {"result", [](const Value& value, Answer& fault) { fault.result = readInt32(value); }},
    {"text", [](const Value& value, Answer& fault) { fault.errorText = value.text(); }},
    {"number", [](const Value& value, Answer& fault) { fault.errorNumber = value.text(); }},
    {"output", [](const Value& value, Answer& fault) { fault.output = value.text(); }},
    {"size", [](const Value& value, Answer& fault) { fault.outputSize = readCount(value, 0); }},
};

void readSamples(const Value& value, Script& script) {
    Samples samples;
    readMembers(value, samplesFields, samples);
    if (samples.count && samples.more != 0) value.fail(R"(either "count" or "more" says how many samples there are)");
    script.samples = samples;
}

void readUnplug(const Value& value, Script& script) {
    Unplug unplug;
    readMembers(value, unplugFields, unplug);
    if (unplug.function.empty()) value.fail("\"function\" is missing: at which function's call to unplug");
    script.unplug = unplug;
}

/// What would have no effect is a mistake.
void expectEffect(const Value& place, const Answer& fault) {
    if (place.members().empty()) place.fail("a fault without a key would answer any call");
    if (fault.result == 0 && (fault.errorText || fault.errorNumber)) {
        place.fail("a \"text\" or \"number\" tells of a \"result\" other than 0");
    }
    const Signature* const signature = findSignature(fault.function);
    if (signature == nullptr || takes(*signature, Parameter::buffer)) return;
    if (fault.output) place.fail(fault.function + " hands out no text for \"output\" to replace");
    if (fault.outputSize && !takes(*signature, Parameter::list)) {
        place.fail(fault.function + " has no size or count for \"size\" to replace");
    }
}

void readFaults(const Value& value, Script& script) {
    std::vector<Answer> faults;
    for (const Value& element : value.elements()) {
        Answer fault;
        readMembers(element, faultFields, fault);
        expectEffect(element, fault);
        faults.push_back(std::move(fault));
    }
    script.faults = std::move(faults);
}

void readReplay(const Value& value, Script& script) {
    try {
        script.replay = readTrace(readPath(value));
        script.subject = "that replays " + script.replay->fileName;
    } catch (const ScriptError& error) {
        value.fail(error.what());
    }
}

const std::vector<Field<Script>> scriptFields{
    {"instruments", readInstruments},
    {"chart", readChart},
    {"place", readPlace},
    {"light", [](const Value& value, Script& script) { readMembers(value, lightFields, script.light); }},
    {"button", [](const Value& value, Script& script) { readMembers(value, buttonFields, script.button); }},
    {"samples", readSamples},
    {"latency", readLatency},
    {"unplug", readUnplug},
    {"faults", readFaults},
    {"trace", [](const Value& value, Script& script) { script.trace = readPath(value); }},
    {"replay", readReplay},
};

void expectReplayAlone(const Value& script) {
    if (!script.json().contains("replay")) return;
    for (const auto& [name, member] : script.members()) {
        if (name == "replay" || name == "trace" || name == "latency") continue;
        member.fail("a replay answers as was recorded: beside it may only stand \"trace\" and \"latency\"");
    }
}

template <class Target>
void addKeys(const std::string& prefix, const std::vector<Field<Target>>& fields, std::vector<std::string>& keys) {
    for (const Field<Target>& field : fields) {
        keys.push_back(prefix + field.name);
    }
}

} // namespace

void applyScript(const std::string& fileName, const std::string& text, Script& script) {
    Script changed = script;
    const Value whole = Value::parse(fileName, text);
    readMembers(whole, scriptFields, changed);
    expectReplayAlone(whole);
    script = std::move(changed);
}

Script readScript(const std::filesystem::path& file) {
    Script script;
    applyScript(file.string(), readFile(file), script);
    return script;
}

std::string descriptionOf(const Script& script) {
    return "simulated i1Pro 3 " + script.subject;
}

std::vector<std::string> scriptKeys() {
    std::vector<std::string> keys;
    addKeys("", scriptFields, keys);
    addKeys("light.", lightFields, keys);
    addKeys("button.", buttonFields, keys);
    addKeys("samples.", samplesFields, keys);
    addKeys("unplug.", unplugFields, keys);
    addKeys("faults.", faultFields, keys);
    return keys;
}

} // namespace simulator
