#include "simulator/Trace.h"

#include "common/Files.h"
#include "common/Text.h"
#include "simulator/Json.h"

#include <cerrno>
#include <cmath>
#include <sstream>
#include <system_error>
#include <utility>

namespace simulator {

namespace {

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

// Each of these makes JSON of a value, which Json.h reads again.

/// A JSON string if the text is UTF-8, otherwise an array of its bytes.
Json jsonOf(const std::string& text) {
    if (common::findInvalidUtf8(text) == text.size()) return text;
    return std::vector<std::uint8_t>(text.begin(), text.end());
}

template <std::integral Integer>
Json jsonOf(Integer number) {
    return number;
}

/// A number with the fewest digits that restore the same float; the string "inf", "-inf" or "nan" if it isn't finite.
Json jsonOf(float value) {
    const std::string digits = fmt::format("{}", value);
    if (!std::isfinite(value)) return digits;
    double readable = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), readable);
    return readable;
}

Json argumentsOf(const Call& call) {
    Json json = Json::object();
    for (const Parameter parameter : signatureOf(call.function).parameters) {
        Json argument;
        if (!call.isNull(parameter)) {
            visitArgument(call, parameter, [&](const auto& member) { argument = jsonOf(member); });
        }
        if (!argument.is_null() || call.isNull(parameter)) json[nameOf(parameter)] = argument;
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
        json["values"].push_back(jsonOf(value));
    }
    return json;
}

constexpr auto outputFields = std::to_array<Field<Answer>>({
    {"count", readInto<&Answer::count>},
    {"devices", readInto<&Answer::devices>},
    {"size", readInto<&Answer::size>},
    {"text", readInto<&Answer::text>},
    {"terminated", readInto<&Answer::isTerminated>},
    {"values", readInto<&Answer::values>},
});

void readArguments(const Json& json, Call& call) {
    for (const Parameter parameter : signatureOf(call.function).parameters) {
        const auto argument = json.find(nameOf(parameter));
        if (argument == json.end()) continue;
        if (argument->is_null()) {
            call.setNull(parameter);
        } else {
            visitArgument(call, parameter, [&](auto& member) { read(*argument, member); });
        }
    }
    if (json == argumentsOf(call)) return;
    throw ValueError(json, fmt::format("must be the arguments of {} in order", signatureOf(call.function).name));
}

void readOutputs(const Json& json, TracedCall& traced) {
    Answer& answer = traced.answer;
    readMembers(json, outputFields, answer);
    const std::size_t expected = numberOfValues(traced.call.function);
    if (!answer.values.empty() && answer.values.size() != expected) {
        throw ValueError(json, fmt::format("{} values; expected {}", answer.values.size(), expected));
    }
    const bool hasDevices = answer.devices && !answer.devices->empty();
    if (hasDevices && answer.count != answer.devices->size()) {
        throw ValueError(json, R"("count" is not the number of "devices")");
    }
}

/// Members that a replay doesn't need, such as the time, are not read.
TracedCall readCall(const Json& json, std::size_t line) {
    TracedCall traced{.line = line};
    read(json.at("function"), traced.call.function);
    readArguments(json.at("arguments"), traced.call);
    if (json.contains("exception")) {
        read(json["exception"], traced.answer.exception);
    } else {
        read(json.at("result"), traced.answer.result);
    }
    if (json.contains("outputs")) readOutputs(json["outputs"], traced);
    return traced;
}

/// The function and its arguments as in a trace.
std::string describe(const Call& call) {
    return fmt::format("{} {}", signatureOf(call.function).name, argumentsOf(call).dump());
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
    const auto took = std::chrono::floor<microseconds>(std::chrono::steady_clock::now() - begin);
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

std::vector<TracedCall> readTrace(const std::filesystem::path& path) {
    std::vector<TracedCall> calls;
    std::istringstream lines(common::readFile(path));
    std::string text;
    for (std::size_t number = 1; std::getline(lines, text) || number == 1; ++number) {
        try {
            const Json json = Json::parse(text, nullptr, true, true);
            if (number > 1) {
                calls.push_back(readCall(json, number));
            } else if (!json.is_object() || json.value("trace", Json()) != version) {
                throw ValueError(json, "not a trace; the first line must start with {\"trace\":1");
            }
        } catch (const Json::exception& error) {
            throw errorIn(fmt::format("{}, line {}", path.string(), number), error);
        }
    }
    return calls;
}

Answer Replay::answer(const Call& call) {
    const bool isAtEnd = next == calls.size();
    if (!difference && !isAtEnd && calls[next].call == call) return calls[next++].answer;
    if (!difference) {
        const std::string found =
            isAtEnd ? "ends before it" : fmt::format("has {} in line {}", describe(calls[next].call), calls[next].line);
        difference.emplace(SdkError::replayMismatch,
                           fmt::format("Call {} departs from the trace {}: the host called {}, the trace {}", next + 1,
                                       fileName, describe(call), found));
    }
    return difference->persistentAnswer(call);
}

} // namespace simulator
