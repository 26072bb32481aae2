#pragma once

// Reads JSON with error messages for people. An invalid value is an exception of the JSON library with the path to the
// value: "/faults/1/result: type must be number, but is string". Only the sources that read and write files include
// this header, since the JSON library takes seconds to compile.

#include "simulator/Call.h"

#include <array>
#include <charconv>
#include <concepts>
#include <fmt/format.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>
#include <system_error>

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

/// Returns the array or object if it is one, for a loop over its elements.
/// @throws Json::exception
inline const Json& requireType(const Json& json, Json::value_t type) {
    if (json.type() == type) return json;
    throw ValueError(json, fmt::format("type must be {}, but is {}", Json(type).type_name(), json.type_name()));
}

/// @throws Json::exception  if the value isn't a number in this range, or not a whole number for an integer type
template <class Number>
Number numberIn(const Json& json, Number minimum, Number maximum) {
    constexpr bool isWhole = std::integral<Number>;
    const auto number = json.get<double>();
    if ((isWhole && !json.is_number_integer()) || number < minimum || number > maximum) {
        throw ValueError(
            json, fmt::format("must be a {} from {} to {}", isWhole ? "whole number" : "number", minimum, maximum));
    }
    return static_cast<Number>(number);
}

/// Finds the entry of a table that has a name.
/// @param kind   what the table contains, for the error message
/// @param place  the JSON value that the error message points to
template <class Table>
auto findNamed(const Table& table, std::string_view name, const char* kind, const Json& place) {
    std::string known;
    for (auto entry = table.begin(); entry != table.end(); ++entry) {
        if (entry->name == name) return entry;
        known += fmt::format("{}{}", known.empty() ? "" : ", ", entry->name);
    }
    throw ValueError(place, fmt::format("unknown {} \"{}\"; expected one of {}", kind, name, known));
}

inline Function functionNamed(const std::string& name, const Json& place) {
    return static_cast<Function>(findNamed(signatures, name, "function", place) - signatures.begin());
}

// Each of these reads a value into a variable. They throw Json::exception if it has another type or range.

inline void read(const Json& json, bool& value) {
    value = json.get<bool>();
}

template <std::integral Integer>
void read(const Json& json, Integer& number) {
    number = numberIn(json, std::numeric_limits<Integer>::min(), std::numeric_limits<Integer>::max());
}

/// Reads a string, or an array of bytes for one that is not UTF-8.
inline void read(const Json& json, std::string& text) {
    if (!json.is_array()) {
        text = json.get<std::string>();
        return;
    }
    text.clear();
    for (const Json& byte : json) {
        text.push_back(static_cast<char>(numberIn(byte, 0, 255)));
    }
}

/// Reads a number, or a string for one that is not finite.
inline void read(const Json& json, float& value) {
    if (!json.is_string()) {
        value = json.get<float>();
        return;
    }
    const auto& text = json.get_ref<const std::string&>();
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{}) throw ValueError(json, R"(must be a number, "inf", "-inf" or "nan")");
}

inline void read(const Json& json, Function& function) {
    function = functionNamed(json.get<std::string>(), json);
}

template <class Value>
void read(const Json& json, std::vector<Value>& values) {
    values.clear();
    for (const Json& element : requireType(json, Json::value_t::array)) {
        read(element, values.emplace_back());
    }
}

template <class Value>
void read(const Json& json, std::optional<Value>& value) {
    read(json, value.emplace());
}

/// An optional member of a JSON object, and the function that reads it into the target.
template <class Target>
struct Field {
    std::string_view name;
    void (*read)(const Json&, Target&);
};

/// A function for Field that reads into a member of the target.
template <auto member, class Target>
void readInto(const Json& json, Target& target) {
    read(json, target.*member);
}

/// Reads an object's members into a target.
/// @throws Json::exception  if a member is unknown or invalid
template <class Target, std::size_t size>
void readMembers(const Json& object, const std::array<Field<Target>, size>& fields, Target& target) {
    for (const auto& [key, member] : requireType(object, Json::value_t::object).items()) {
        try {
            findNamed(fields, key, "key", object)->read(member, target);
        } catch (const std::runtime_error& error) { // of a file that the member names
            throw ValueError(member, error.what());
        }
    }
}

} // namespace simulator
