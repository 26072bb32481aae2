#include "simulator/Json.h"

#include "common/Text.h"

#include <cstdint>

namespace simulator {

namespace {

void requireType(const Json& json, const Json& example) {
    if (json.type() == example.type()) return;
    throw ValueError(json, fmt::format("type must be {}, but is {}", example.type_name(), json.type_name()));
}

} // namespace

Json parseJson(const std::string& fileName, const std::string& text, std::size_t firstLine) try {
    return Json::parse(text, nullptr, true, true);
} catch (const Json::parse_error& error) {
    const auto read = static_cast<std::ptrdiff_t>(std::min(error.byte, text.size() + 1)) - 1;
    const auto line = firstLine + static_cast<std::size_t>(std::count(text.begin(), text.begin() + read, '\n'));
    const std::string what = error.what();
    throw ScriptError(fmt::format("{}, line {}: {}", fileName, line, what.substr(what.find(": ") + 2)));
} catch (const Json::exception& error) {
    throw errorIn(fileName, error);
}

ScriptError errorIn(const std::string& place, const Json::exception& error) {
    std::string what = error.what();
    if (what.starts_with("[json.exception.")) what.erase(0, what.find("] ") + 2);
    if (what.starts_with("(/")) what = what.substr(1).replace(what.find(") ") - 1, 2, ": ");
    return ScriptError{place + ": " + what};
}

Json jsonOf(const std::string& text) {
    if (common::findInvalidUtf8(text) == text.size()) return text;
    return std::vector<std::uint8_t>(text.begin(), text.end());
}

std::string textOf(const Json& json) {
    if (!json.is_array()) return json.get<std::string>();
    std::string text;
    for (const Json& byte : json) {
        text.push_back(static_cast<char>(numberIn(byte, 0, 255)));
    }
    return text;
}

const Json::array_t& elementsOf(const Json& json) {
    requireType(json, Json::array());
    return json.get_ref<const Json::array_t&>();
}

const Json::object_t& membersOf(const Json& json) {
    requireType(json, Json::object());
    return json.get_ref<const Json::object_t&>();
}

} // namespace simulator
