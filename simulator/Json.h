#pragma once

// Reads JSON with error messages for people. An invalid value is an exception of the JSON library with the path to the
// value: "/faults/1/result: type must be number, but is string". Only the sources that read and write files include
// this header, since the JSON library takes seconds to compile.

#include "common/Text.h"
#include "simulator/Call.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace simulator {

/// JSON that keeps the order of an object's members.
using Json = nlohmann::ordered_json;

/// A value of the right type that is invalid.
class ValueError : public Json::exception {
public:
    ValueError(const Json& value, const std::string& what) : exception(0, (diagnostics(&value) + what).c_str()) {}
};

/// Turns an error in a JSON value into one for people: "script.json: /faults/1/result: ...".
/// @param place  the file, or a line of it
inline std::runtime_error errorIn(const std::string& place, const Json::exception& error) {
    std::string what = error.what();
    if (what.starts_with("[json.exception.")) what.erase(0, what.find("] ") + 2);
    if (what.starts_with("(/")) what = what.substr(1).replace(what.find(") ") - 1, 2, ": ");
    return std::runtime_error{place + ": " + what};
}

/// Parses JSON with comments.
/// @param firstLine  the text's first line in the file, for error messages
/// @throws std::runtime_error  with the line of the syntax error
inline Json parseJson(const std::string& fileName, const std::string& text, std::size_t firstLine = 1) try {
    return Json::parse(text, nullptr, true, true);
} catch (const Json::parse_error& error) {
    const auto read = static_cast<std::ptrdiff_t>(std::min(error.byte, text.size() + 1)) - 1;
    const auto line = firstLine + static_cast<std::size_t>(std::count(text.begin(), text.begin() + read, '\n'));
    const std::string what = error.what();
    throw std::runtime_error(fmt::format("{}, line {}: {}", fileName, line, what.substr(what.find(": ") + 2)));
} catch (const Json::exception& error) {
    throw errorIn(fileName, error);
}

inline void requireType(const Json& json, const Json& example) {
    if (json.type() == example.type()) return;
    throw ValueError(json, fmt::format("type must be {}, but is {}", example.type_name(), json.type_name()));
}

/// An array's elements, or an object's members.
/// @throws Json::exception  if the value has another type
inline const Json::array_t& elementsOf(const Json& json) {
    requireType(json, Json::array());
    return json.get_ref<const Json::array_t&>();
}

inline const Json::object_t& membersOf(const Json& json) {
    requireType(json, Json::object());
    return json.get_ref<const Json::object_t&>();
}

/// @throws Json::exception  if the value isn't a number in this range, or not a whole number for an integer type
template <class Number>
Number numberIn(const Json& json, Number minimum, Number maximum) {
    constexpr bool isWhole = std::is_integral_v<Number>;
    const auto number = json.get<double>();
    if ((isWhole && !json.is_number_integer()) || number < minimum || number > maximum) {
        throw ValueError(
            json, fmt::format("must be a {} from {} to {}", isWhole ? "whole number" : "number", minimum, maximum));
    }
    return static_cast<Number>(number);
}

/// @throws Json::exception  if the value isn't a whole number in the range of this type
template <class Integer>
Integer integerIn(const Json& json) {
    using Limits = std::numeric_limits<Integer>;
    return numberIn(json, Limits::min(), Limits::max());
}

/// A string as JSON: a JSON string if it is UTF-8, otherwise an array of its bytes.
inline Json jsonOf(const std::string& text) {
    if (common::findInvalidUtf8(text) == text.size()) return text;
    return std::vector<std::uint8_t>(text.begin(), text.end());
}

/// Converts what jsonOf returned back to a string.
inline std::string textOf(const Json& json) {
    if (!json.is_array()) return json.get<std::string>();
    std::string text;
    for (const Json& byte : json) {
        text.push_back(static_cast<char>(numberIn(byte, 0, 255)));
    }
    return text;
}

/// The function with this name.
/// @param place  the JSON value that an error message points to
inline Function functionNamed(const std::string& name, const Json& place) {
    std::vector<std::string> names;
    for (const Signature& signature : signatures) {
        if (signature.name == name) return static_cast<Function>(names.size());
        names.emplace_back(signature.name);
    }
    throw ValueError(place, fmt::format("unknown function \"{}\"; expected one of {}", name, fmt::join(names, ", ")));
}

inline Function functionNamed(const Json& json) {
    return functionNamed(json.get<std::string>(), json);
}

/// An optional member of a JSON object, and the function that reads it into the target.
template <class Target>
struct Field {
    std::string_view name;
    void (*read)(const Json&, Target&);
};

/// Reads an object's members into a target.
/// @throws Json::exception  if a member is unknown or invalid
template <class Target, std::size_t size>
void readMembers(const Json& object, const std::array<Field<Target>, size>& fields, Target& target) {
    for (const auto& [key, member] : membersOf(object)) {
        const auto field = std::ranges::find(fields, key, &Field<Target>::name);
        if (field == fields.end()) {
            std::vector<std::string_view> names;
            std::ranges::transform(fields, std::back_inserter(names), &Field<Target>::name);
            throw ValueError(object,
                             fmt::format("unknown key \"{}\"; expected one of {}", key, fmt::join(names, ", ")));
        }
        field->read(member, target);
    }
}

} // namespace simulator
