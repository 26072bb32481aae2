#include "simulator/Trace.h"

#include "common/Files.h"
#include "simulator/Json.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <sstream>
#include <system_error>
#include <utility>

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
            throw std::runtime_error("the trace " + path.string() + " can't be created: " + reason);
        }
        path.replace_filename(wanted.stem() += "." + std::to_string(number) + wanted.extension().string());
    }
}

/// In UTC, as ISO 8601.
std::string timestamp(std::chrono::system_clock::time_point time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(std::chrono::floor<microseconds>(time - day));
    return fmt::format("{}-{:02}-{:02}T{:02}:{:02}:{:02}.{:06}Z", static_cast<int>(date.year()),
                       static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count(), clock.subseconds().count());
}

/// A number with the fewest digits that restore the same float; the string "inf", "-inf" or "nan" if it isn't finite.
Json jsonOfValue(float value) {
    const std::string digits = fmt::format("{}", value);
    if (!std::isfinite(value)) return digits;
    double readable = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), readable);
    return readable;
}

Json argumentsOf(const Call& call) {
    Json json = Json::object();
    for (const Parameter parameter : signatureOf(call.function).parameters) {
        const char* const name = nameOf(parameter);
        if (call.isNull(parameter)) {
            json[name] = nullptr;
        } else if (parameter == Parameter::size) {
            json[name] = call.size;
        } else if (parameter == Parameter::sample) {
            json[name] = call.sample;
        } else if (const std::optional<std::string> text = call.textOf(parameter)) {
            json[name] = jsonOf(*text);
        }
    }
    return json;
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

constexpr auto outputFields = std::to_array<Field<Answer>>({
    {"count", [](const Json& json, Answer& answer) { answer.count = integerIn<std::uint32_t>(json); }},
    {"devices", [](const Json& json, Answer& answer) { answer.devices = json.get<std::vector<std::string>>(); }},
    {"size", [](const Json& json, Answer& answer) { answer.size = integerIn<std::uint32_t>(json); }},
    {"text", [](const Json& json, Answer& answer) { answer.text = textOf(json); }},
    {"terminated", [](const Json& json, Answer& answer) { answer.isTerminated = json.get<bool>(); }},
    {"values", readValues},
});

void readArgument(const Json& json, Parameter parameter, Call& call) {
    if (json.is_null()) return call.setNull(parameter);
    switch (parameter) {
    case Parameter::device:
        call.device = textOf(json);
        break;
    case Parameter::key:
        call.key = textOf(json);
        break;
    case Parameter::value:
        call.value = textOf(json);
        break;
    case Parameter::size:
        call.size = integerIn<std::uint32_t>(json);
        break;
    case Parameter::sample:
        call.sample = integerIn<std::int32_t>(json);
        break;
    default:
        throw ValueError(json, "a pointer to an output can only be null or missing");
    }
}

void readArguments(const Json& json, Call& call) {
    std::size_t found = 0;
    for (const Parameter parameter : signatureOf(call.function).parameters) {
        const auto argument = json.find(nameOf(parameter));
        if (argument != json.end()) {
            readArgument(*argument, parameter, call);
            ++found;
        } else if (call.textOf(parameter)) {
            throw ValueError(json, fmt::format("\"{}\" is missing", nameOf(parameter)));
        }
    }
    if (found == membersOf(json).size()) return;
    throw ValueError(json, fmt::format("{} does not have these arguments", signatureOf(call.function).name));
}

void ignore(const Json& /*json*/, TracedCall& /*line*/) {}

constexpr auto callFields = std::to_array<Field<TracedCall>>({
    {"call", ignore},
    {"time", ignore},
    {"microseconds", ignore},
    {"function", [](const Json& json, TracedCall& line) { line.call.function = functionNamed(json); }},
    {"arguments", ignore}, // read once the function is known
    {"result", [](const Json& json, TracedCall& line) { line.answer.result = integerIn<std::int32_t>(json); }},
    {"exception", [](const Json& json, TracedCall& line) { line.answer.exception = textOf(json); }},
    {"outputs", [](const Json& json, TracedCall& line) { readMembers(json, outputFields, line.answer); }},
});

/// Requires outputs that the function has, with the right number of values.
void requireMatchingOutputs(const Json& json, const Call& call, const Answer& answer) {
    const bool hasList = hasParameter(call.function, Parameter::list);
    const bool hasBuffer = hasParameter(call.function, Parameter::buffer);
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
    const Json& function = json.at("function"); // throws if it is missing
    readArguments(json.at("arguments"), line.call);
    requireMatchingOutputs(function, line.call, line.answer);
    return line;
}

} // namespace

Trace::Trace(std::filesystem::path file, const std::string& library, bool isSimulated)
    : path(std::move(file)), stream(createNumbered(path)) {
    const Json heading{{"trace", version},
                       {"simulated", isSimulated},
                       {"library", jsonOf(library)},
                       {"time", timestamp(std::chrono::system_clock::now())}};
    if (!writeLine(heading.dump())) throw std::runtime_error("the trace " + path.string() + " can't be written to");
}

void Trace::write(const Call& call, const Answer& answer, Time begin) {
    const auto took = duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
    const std::lock_guard<std::mutex> lock(mutex);
    Json line{{"call", ++calls},
              {"time", timestamp(std::chrono::system_clock::now() - took)},
              {"microseconds", took.count()},
              {"function", signatureOf(call.function).name},
              {"arguments", argumentsOf(call)}};
    if (answer.exception) {
        line["exception"] = jsonOf(*answer.exception);
    } else {
        line["result"] = answer.result;
    }
    if (Json outputs = outputsOf(answer); !outputs.is_null()) line["outputs"] = std::move(outputs);
    writeLine(line.dump());
}

/// Writes a whole line or none: if it fails, truncates the file to the lines before and closes it.
bool Trace::writeLine(const std::string& line) {
    if (!stream) return false;
    const std::string text = line + '\n';
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

std::string describe(const Call& call) {
    return fmt::format("{} {}", signatureOf(call.function).name, argumentsOf(call).dump());
}

} // namespace simulator
