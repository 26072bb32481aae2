#include "simulator/Trace.h"

#include "simulator/Json.h"
#include "simulator/System.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <fmt/chrono.h>
#include <limits>
#include <sstream>
#include <system_error>

namespace simulator {

namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;

constexpr int version = 1;
constexpr double mostFloat = std::numeric_limits<float>::max();

std::FILE* createNumbered(const std::filesystem::path& path) {
    std::filesystem::path next = path;
    for (int number = 2; true; ++number) {
        std::FILE* const file = createFile(next);
        if (file != nullptr) return file;
        if (errno != EEXIST) {
            const std::string reason = std::generic_category().message(errno);
            throw ScriptError("the trace " + path.string() + " can't be created: " + reason);
        }
        next.replace_filename(path.stem() += "." + std::to_string(number) + path.extension().string());
    }
}

/// In UTC, by ISO 8601.
std::string textOf(Trace::Time time) {
    const auto since = duration_cast<microseconds>(time.time_since_epoch());
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:06}Z", fmt::gmtime(Trace::Clock::to_time_t(time)),
                       since.count() % 1'000'000);
}

/// With the fewest digits that give the same float again; null for what is no finite number.
Json jsonOfValue(float value) {
    if (!std::isfinite(value)) return nullptr;
    const std::string digits = fmt::format("{}", value);
    double readable = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), readable);
    return readable;
}

Json jsonOfOutputs(const Outputs& outputs) {
    Json json;
    if (outputs.count) json["count"] = *outputs.count;
    if (outputs.devices) json["devices"] = *outputs.devices;
    if (outputs.size) json["size"] = *outputs.size;
    if (outputs.text) json["text"] = jsonOf(*outputs.text);
    if (!outputs.isTerminated) json["terminated"] = false;
    for (const float value : outputs.values) {
        json["values"].push_back(jsonOfValue(value));
    }
    return json;
}

std::uint32_t readCount(const Value& value) {
    return static_cast<std::uint32_t>(value.integer(0, std::numeric_limits<std::uint32_t>::max()));
}

void readText(const Value& value, Outputs& outputs) {
    if (!value.json().is_array()) {
        outputs.text = value.text();
        return;
    }
    outputs.text.emplace();
    for (const Value& byte : value.elements()) {
        outputs.text->push_back(static_cast<char>(byte.integer(0, 255)));
    }
}

void readValues(const Value& value, Outputs& outputs) {
    for (const Value& element : value.elements()) {
        const bool isNumber = !element.json().is_null();
        outputs.values.push_back(isNumber ? static_cast<float>(element.number(-mostFloat, mostFloat))
                                          : std::numeric_limits<float>::quiet_NaN());
    }
}

void readDevices(const Value& value, Outputs& outputs) {
    outputs.devices.emplace();
    for (const Value& element : value.elements()) {
        outputs.devices->push_back(element.text());
    }
}

const std::vector<Field<Outputs>> outputsFields{
    {"count", [](const Value& value, Outputs& outputs) { outputs.count = readCount(value); }},
    {"devices", readDevices},
    {"size", [](const Value& value, Outputs& outputs) { outputs.size = readCount(value); }},
    {"text", readText},
    {"terminated", [](const Value& value, Outputs& outputs) { outputs.isTerminated = value.truth(); }},
    {"values", readValues},
};

void readResult(const Value& value, TracedCall& call) {
    call.reply.result = static_cast<std::int32_t>(
        value.integer(std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

void ignore(const Value& /*value*/, TracedCall& /*call*/) {}

const std::vector<Field<TracedCall>> callFields{
    {"call", ignore},
    {"time", ignore},
    {"microseconds", ignore},
    {"function", [](const Value& value, TracedCall& call) { call.function = value.text(); }},
    {"arguments", [](const Value& value, TracedCall& call) { call.arguments = value.json(); }},
    {"result", readResult},
    {"exception", [](const Value& value, TracedCall& call) { call.reply.exception = value.text(); }},
    {"outputs", [](const Value& value, TracedCall& call) { readMembers(value, outputsFields, call.reply.outputs); }},
};

void expectHeading(const Value& line) {
    const Json& json = line.json();
    if (!json.is_object() || !json.contains("trace") || json["trace"] != version) {
        line.fail("this is no trace: the first line of one begins with {\"trace\":1");
    }
}

/// Values that the function of the call hands out, no more and no fewer.
void expectRightOutputs(const Value& line, const TracedCall& call) {
    const auto& all = signatures();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto& each) { return each.name == call.function; });
    if (found == all.end()) line.fail('"' + call.function + "\" is no function of the SDK library");
    const std::size_t expected = valuesOf(static_cast<Function>(found - all.begin()));
    const std::size_t given = call.reply.outputs.values.size();
    if (given != 0 && given != expected) {
        line.fail(fmt::format("there are {} values; {} has {}", given, call.function, expected));
    }
}

} // namespace

Trace::Trace(const std::filesystem::path& path, const std::string& library, bool isSimulated)
    : file(createNumbered(path)) {
    write(
        {{"trace", version}, {"simulated", isSimulated}, {"library", jsonOf(library)}, {"time", textOf(Clock::now())}});
}

Reply Trace::record(const Request& request, Time begin, const std::function<Reply()>& work) {
    try {
        Reply reply = work();
        writeCall(request, reply, begin);
        return reply;
    } catch (const std::exception& error) {
        writeCall(request, {.exception = error.what()}, begin);
        throw;
    }
}

void Trace::writeCall(const Request& request, const Reply& reply, Time begin) {
    const std::lock_guard<std::mutex> lock(mutex);
    Json line{{"call", ++calls},
              {"time", textOf(begin)},
              {"microseconds", duration_cast<microseconds>(Clock::now() - begin).count()},
              {"function", signatureOf(request.function).name},
              {"arguments", request.arguments}};
    if (reply.exception) {
        line["exception"] = jsonOf(*reply.exception);
    } else {
        line["result"] = reply.result;
    }
    if (Json outputs = jsonOfOutputs(reply.outputs); !outputs.is_null()) line["outputs"] = std::move(outputs);
    write(line);
}

void Trace::write(const Json& line) {
    if (!file) return;
    const std::string text = line.dump() + '\n';
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    if (!isWritten || std::fflush(file.get()) != 0) file.reset();
}

Recording readTrace(const std::filesystem::path& path) {
    Recording recording{path.string(), {}};
    std::istringstream lines(readFile(path));
    std::string line;
    std::getline(lines, line);
    expectHeading(Value::parse(recording.fileName, line));
    for (std::size_t number = 2; std::getline(lines, line); ++number) {
        const Value value = Value::parse(recording.fileName, line, number);
        TracedCall call{.line = number};
        readMembers(value, callFields, call);
        expectRightOutputs(value, call);
        recording.calls.push_back(std::move(call));
    }
    return recording;
}

} // namespace simulator
