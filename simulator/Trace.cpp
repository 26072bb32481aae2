#include "simulator/Trace.h"

#include "common/Files.h"

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

/// Creates a file, with a number in its name if the name is taken, and updates the path.
std::FILE* createNumbered(std::filesystem::path& path) {
    const std::filesystem::path wanted = path;
    for (int number = 2; true; ++number) {
        std::FILE* const file = common::createFile(path, "wb");
        if (file != nullptr) return file;
        const int error = errno;
        if (error != EEXIST || !std::filesystem::is_regular_file(path)) {
            const std::string reason = std::generic_category().message(error);
            throw ScriptError("the trace " + path.string() + " can't be created: " + reason);
        }
        path.replace_filename(wanted.stem() += "." + std::to_string(number) + wanted.extension().string());
    }
}

/// In UTC, as ISO 8601.
std::string timestamp(std::chrono::system_clock::time_point time) {
    const auto since = duration_cast<microseconds>(time.time_since_epoch());
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:06}Z", fmt::gmtime(std::chrono::system_clock::to_time_t(time)),
                       since.count() % 1'000'000);
}

/// A number with the fewest digits that restore the same float; the string "inf", "-inf" or "nan" if it isn't finite.
Json jsonOfValue(float value) {
    const std::string digits = fmt::format("{}", value);
    if (!std::isfinite(value)) return digits;
    double readable = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), readable);
    return readable;
}

Json outputsOf(const Answer& answer) {
    Json json;
    if (answer.count) json["count"] = *answer.count;
    if (answer.devices) json["devices"] = *answer.devices;
    if (answer.size) json["size"] = *answer.size;
    if (answer.text) json["text"] = jsonOf(*answer.text);
    if (!answer.isTerminated) json["terminated"] = false;
    for (const float value : answer.values) {
        json["values"].push_back(jsonOfValue(value));
    }
    return json;
}

std::uint32_t readCount(const Json& json) {
    return numberIn(json, 0U, std::numeric_limits<std::uint32_t>::max());
}

float readValue(const Json& json) {
    if (!json.is_string()) return json.get<float>();
    for (const float special : {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                                std::numeric_limits<float>::quiet_NaN()}) {
        if (json == jsonOfValue(special)) return special;
    }
    throw ValueError(json, R"(must be a number, "inf", "-inf" or "nan")");
}

void readValues(const Json& json, Answer& answer) {
    for (const Json& element : elementsOf(json)) {
        answer.values.push_back(readValue(element));
    }
}

const std::vector<Field<Answer>> outputFields{
    {"count", [](const Json& json, Answer& answer) { answer.count = readCount(json); }},
    {"devices", [](const Json& json, Answer& answer) { answer.devices = json.get<std::vector<std::string>>(); }},
    {"size", [](const Json& json, Answer& answer) { answer.size = readCount(json); }},
    {"text", [](const Json& json, Answer& answer) { answer.text = textOf(json); }},
    {"terminated", [](const Json& json, Answer& answer) { answer.isTerminated = json.get<bool>(); }},
    {"values", readValues},
};

void readResult(const Json& json, TracedCall& line) {
    using Limits = std::numeric_limits<std::int32_t>;
    line.answer.result = numberIn(json, Limits::min(), Limits::max());
}

void ignore(const Json& /*json*/, TracedCall& /*line*/) {}

const std::vector<Field<TracedCall>> callFields{
    {"call", ignore},
    {"time", ignore},
    {"microseconds", ignore},
    {"function", [](const Json& json, TracedCall& line) { line.call.function = functionNamed(json); }},
    {"arguments", [](const Json& json, TracedCall& line) { line.call.arguments = membersOf(json); }},
    {"result", readResult},
    {"exception", [](const Json& json, TracedCall& line) { line.answer.exception = textOf(json); }},
    {"outputs", [](const Json& json, TracedCall& line) { readMembers(json, outputFields, line.answer); }},
};

/// Requires outputs that the function has, with the right number of values.
void requireMatchingOutputs(const Json& json, const Call& call, const Answer& answer) {
    const bool hasList = hasParameter(call.function, "list");
    const bool hasBuffer = hasParameter(call.function, "buffer");
    if (((answer.count || answer.devices) && !hasList) || ((answer.size || answer.text) && !hasBuffer)) {
        throw ValueError(json, fmt::format("{} does not have these outputs", signatureOf(call.function).name));
    }
    const std::size_t expected = numberOfValues(call.function);
    if (!answer.values.empty() && answer.values.size() != expected) {
        throw ValueError(json, fmt::format("{} values; expected {}", answer.values.size(), expected));
    }
    const bool hasDevices = answer.devices && !answer.devices->empty();
    if (hasDevices && answer.count != answer.devices->size()) {
        throw ValueError(json, R"("count" is not the number of "devices")");
    }
}

TracedCall readCall(const Json& json, std::size_t number) {
    TracedCall line{.line = number};
    readMembers(json, callFields, line);
    if (json.contains("result") == json.contains("exception")) {
        throw ValueError(json, R"(expected either a "result" or an "exception")");
    }
    json.at("arguments"); // throws if it is missing
    requireMatchingOutputs(json.at("function"), line.call, line.answer);
    return line;
}

} // namespace

Trace::Trace(std::filesystem::path file, const std::string& library, bool isSimulated)
    : path(std::move(file)), stream(createNumbered(path)) {
    const bool isWritten = writeLine({{"trace", version},
                                      {"simulated", isSimulated},
                                      {"library", jsonOf(library)},
                                      {"time", timestamp(std::chrono::system_clock::now())}});
    if (!isWritten) throw ScriptError("the trace " + path.string() + " can't be written to");
}

void Trace::write(const Call& call, const Answer& answer, Time begin) {
    const auto took = duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
    const std::lock_guard<std::mutex> lock(mutex);
    Json line{{"call", ++calls},
              {"time", timestamp(std::chrono::system_clock::now() - took)},
              {"microseconds", took.count()},
              {"function", signatureOf(call.function).name},
              {"arguments", call.arguments}};
    if (answer.exception) {
        line["exception"] = jsonOf(*answer.exception);
    } else {
        line["result"] = answer.result;
    }
    if (Json outputs = outputsOf(answer); !outputs.is_null()) line["outputs"] = std::move(outputs);
    writeLine(line);
}

/// Writes a whole line or none: if it fails, truncates the file to the lines before and closes it.
bool Trace::writeLine(const Json& line) {
    if (!stream) return false;
    const std::string text = line.dump() + '\n';
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stream.get()) == text.size();
    if (isWritten && std::fflush(stream.get()) == 0) {
        written += text.size();
        return true;
    }
    stream.reset();
    std::error_code ignored;
    std::filesystem::resize_file(path, written, ignored);
    return false;
}

Recording readTrace(const std::filesystem::path& path) {
    Recording recording{path.string(), {}};
    std::istringstream lines(common::readFile(path));
    std::string text;
    for (std::size_t number = 1; std::getline(lines, text) || number == 1; ++number) {
        const Json json = parseJson(recording.fileName, text, number);
        try {
            if (number > 1) {
                recording.calls.push_back(readCall(json, number));
            } else if (!json.is_object() || json.value("trace", Json()) != version) {
                throw ValueError(json, "not a trace; the first line must start with {\"trace\":1");
            }
        } catch (const Json::exception& error) {
            throw errorIn(fmt::format("{}, line {}", recording.fileName, number), error);
        }
    }
    return recording;
}

} // namespace simulator
