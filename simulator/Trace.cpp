#include "simulator/Trace.h"

#include "simulator/Json.h"
#include "simulator/System.h"

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

/// Creates a file, with a number in its name when there is one already; the path becomes the file's.
std::FILE* createNumbered(std::filesystem::path& path) {
    const std::filesystem::path wanted = path;
    for (int number = 2; true; ++number) {
        std::FILE* const file = createFile(path);
        if (file != nullptr) return file;
        const int error = errno;
        if (error != EEXIST || !std::filesystem::is_regular_file(path)) {
            const std::string reason = std::generic_category().message(error);
            throw ScriptError("the trace " + path.string() + " can't be created: " + reason);
        }
        path.replace_filename(wanted.stem() += "." + std::to_string(number) + wanted.extension().string());
    }
}

/// In UTC, by ISO 8601.
std::string textOf(std::chrono::system_clock::time_point time) {
    const auto since = duration_cast<microseconds>(time.time_since_epoch());
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:06}Z", fmt::gmtime(std::chrono::system_clock::to_time_t(time)),
                       since.count() % 1'000'000);
}

/// With the fewest digits that give the same float again; "inf", "-inf" or "nan" for what is no finite number.
Json jsonOfValue(float value) {
    const std::string digits = fmt::format("{}", value);
    if (!std::isfinite(value)) return digits;
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

/// A text or its bytes.
std::string readText(const Value& value) {
    if (!value.json().is_array()) return value.text();
    std::string text;
    for (const Value& byte : value.elements()) {
        text.push_back(static_cast<char>(byte.integer(0, 255)));
    }
    return text;
}

float readValue(const Value& value) {
    constexpr double most = std::numeric_limits<double>::max();
    if (!value.json().is_string()) return static_cast<float>(value.number(-most, most));
    for (const float special : {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                                std::numeric_limits<float>::quiet_NaN()}) {
        if (value.json() == jsonOfValue(special)) return special;
    }
    value.fail(value.shown() + " is neither a number nor \"inf\", \"-inf\" or \"nan\"");
}

void readValues(const Value& value, Outputs& outputs) {
    for (const Value& element : value.elements()) {
        outputs.values.push_back(readValue(element));
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
    {"text", [](const Value& value, Outputs& outputs) { outputs.text = readText(value); }},
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
    {"exception", [](const Value& value, TracedCall& call) { call.reply.exception = readText(value); }},
    {"outputs", [](const Value& value, TracedCall& call) { readMembers(value, outputsFields, call.reply.outputs); }},
};

void expectHeading(const Value& line) {
    const Json& json = line.json();
    if (!json.is_object() || !json.contains("trace") || json["trace"] != version) {
        line.fail("this is no trace: the first line of one begins with {\"trace\":1");
    }
}

Function functionOf(const Value& line, const std::string& name) {
    const Signature* const found = findSignature(name);
    if (found == nullptr) line.fail(Value::quoted(name) + " is no function of the SDK library");
    return static_cast<Function>(found - signatures.data());
}

/// Outputs that the function hands out, and as many as it says.
void expectRightOutputs(const Value& line, Function function, const Outputs& outputs) {
    const Signature& signature = signatureOf(function);
    const bool hasList = takes(signature, Parameter::list);
    const bool hasBuffer = takes(signature, Parameter::buffer);
    if (((outputs.count || outputs.devices) && !hasList) || ((outputs.size || outputs.text) && !hasBuffer)) {
        line.fail(fmt::format("{} does not hand out all of these \"outputs\"", signature.name));
    }
    const std::size_t expected = valuesOf(function);
    if (!outputs.values.empty() && outputs.values.size() != expected) {
        line.fail(fmt::format("there are {} values; {} has {}", outputs.values.size(), signature.name, expected));
    }
    const bool hasDevices = outputs.devices && !outputs.devices->empty();
    if (hasDevices && outputs.count != outputs.devices->size()) line.fail("\"count\" is not that of the \"devices\"");
}

void expectWhole(const Value& line, const TracedCall& call) {
    for (const char* const name : {"function", "arguments"}) {
        if (!line.json().contains(name)) line.fail(fmt::format("the \"{}\" of the call is missing", name));
    }
    if (line.json().contains("result") == line.json().contains("exception")) {
        line.fail("a call has either a \"result\" or an \"exception\"");
    }
    expectRightOutputs(line, functionOf(line, call.function), call.reply.outputs);
}

} // namespace

Trace::Trace(std::filesystem::path file, const std::string& library, bool isSimulated)
    : path(std::move(file)), open(createNumbered(path)) {
    const bool isWritten = write({{"trace", version},
                                  {"simulated", isSimulated},
                                  {"library", jsonOf(library)},
                                  {"time", textOf(std::chrono::system_clock::now())}});
    if (!isWritten) throw ScriptError("the trace " + path.string() + " can't be written to");
}

Reply Trace::record(const Request& request, Time begin, const std::function<Reply()>& work) {
    Reply reply;
    try {
        reply = work();
    } catch (const std::exception& error) {
        writeCall(request, {.exception = error.what()}, begin);
        throw;
    } catch (...) {
        writeCall(request, {.exception = "an exception of an unknown kind"}, begin);
        throw;
    }
    writeCall(request, reply, begin);
    return reply;
}

void Trace::writeCall(const Request& request, const Reply& reply, Time begin) {
    const auto took = duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
    const std::lock_guard<std::mutex> lock(mutex);
    Json line{{"call", ++calls},
              {"time", textOf(std::chrono::system_clock::now() - took)},
              {"microseconds", took.count()},
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

/// Writes a line as a whole: what is left of one that could not be written is taken back, and nothing follows it.
bool Trace::write(const Json& line) {
    if (!open) return false;
    const std::string text = line.dump() + '\n';
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), open.get()) == text.size();
    if (isWritten && std::fflush(open.get()) == 0) {
        written += text.size();
        return true;
    }
    open.reset();
    std::error_code ignored;
    std::filesystem::resize_file(path, written, ignored);
    return false;
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
        expectWhole(value, call);
        recording.calls.push_back(std::move(call));
    }
    return recording;
}

} // namespace simulator
