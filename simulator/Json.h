#pragma once

// Reads JSON with error messages for people. An invalid value is an exception of the JSON library with the path to the
// value: "/faults/1/result: type must be number, but is string".

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace simulator {

/// JSON that keeps the order of an object's members.
using Json = nlohmann::ordered_json;

/// An error in a script or a trace, or in reading or writing it; the message names the file.
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A value of the right type that is invalid.
class ValueError : public Json::exception {
public:
    ValueError(const Json& value, const std::string& what) : exception(0, (diagnostics(&value) + what).c_str()) {}
};

/// Parses JSON with comments.
/// @param firstLine  the text's first line in the file, for error messages
/// @throws ScriptError  with the line of the syntax error
Json parseJson(const std::string& fileName, const std::string& text, std::size_t firstLine = 1);

/// Turns an error in a JSON value into a ScriptError: "script.json: /faults/1/result: ...".
/// @param place  the file, or a line of it
ScriptError errorIn(const std::string& place, const Json::exception& error);

/// A string as JSON: a JSON string if it is UTF-8, otherwise an array of its bytes.
Json jsonOf(const std::string& text);

/// Converts what jsonOf returned back to a string.
std::string textOf(const Json& json);

/// An array's elements, or an object's members.
/// @throws Json::exception  if the value has another type
const Json::array_t& elementsOf(const Json& json);
const Json::object_t& membersOf(const Json& json);

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

/// An optional member of a JSON object, and the function that reads it into the target.
template <class Target>
struct Field {
    std::string name;
    void (*read)(const Json&, Target&);
};

/// The fields' names, with a prefix.
template <class Target>
std::vector<std::string> namesOf(const std::vector<Field<Target>>& fields, const std::string& prefix = "") {
    std::vector<std::string> names;
    std::transform(fields.begin(), fields.end(), std::back_inserter(names),
                   [&](const Field<Target>& field) { return prefix + field.name; });
    return names;
}

/// Reads an object's members into a target.
/// @throws Json::exception  if a member is unknown or invalid
template <class Target>
void readMembers(const Json& object, const std::vector<Field<Target>>& fields, Target& target) {
    for (const auto& [key, member] : membersOf(object)) {
        const auto field = std::find_if(fields.begin(), fields.end(),
                                        [&wanted = key](const Field<Target>& each) { return each.name == wanted; });
        if (field == fields.end()) {
            throw ValueError(
                object, fmt::format("unknown key \"{}\"; expected one of {}", key, fmt::join(namesOf(fields), ", ")));
        }
        field->read(member, target);
    }
}

} // namespace simulator
