#pragma once

// Reading JSON. What is wrong with a value is an exception of the JSON library, with the path to the value:
// "/faults/1/result: type must be number, but is string".

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace simulator {

/// JSON whose members keep their order.
using Json = nlohmann::ordered_json;

/// What is wrong with a file or its content.
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What is wrong with a value, beyond its type.
class ValueError : public Json::exception {
public:
    ValueError(const Json& value, const std::string& what) : exception(0, (diagnostics(&value) + what).c_str()) {}
};

/// Parses a JSON text, in which comments may stand.
/// @param firstLine  where in the file the text begins
/// @throws ScriptError  with the line where the text is not JSON
Json parseJson(const std::string& fileName, const std::string& text, std::size_t firstLine = 1);

/// @param place  the file, or a line of it
ScriptError errorIn(const std::string& place, const Json::exception& error);

/// A text in JSON: as it is when it is UTF-8, otherwise its bytes as numbers.
Json jsonOf(const std::string& text);

/// The text that jsonOf wrote.
std::string textOf(const Json& json);

/// An array's elements, or an object's members.
/// @throws Json::exception  when the value is something else
const Json::array_t& elementsOf(const Json& json);
const Json::object_t& membersOf(const Json& json);

/// @throws Json::exception  when the value is not a number of the range, and whole where the type is
template <class Number>
Number numberIn(const Json& json, Number least, Number most) {
    constexpr bool isWhole = std::is_integral_v<Number>;
    const auto number = json.get<double>();
    if ((isWhole && !json.is_number_integer()) || number < least || number > most) {
        throw ValueError(json,
                         fmt::format("must be a {} from {} to {}", isWhole ? "whole number" : "number", least, most));
    }
    return static_cast<Number>(number);
}

/// A member that an object may have, and how it is read into the target.
template <class Target>
struct Field {
    std::string name;
    void (*read)(const Json&, Target&);
};

/// The fields' names, each after a prefix.
template <class Target>
std::vector<std::string> namesOf(const std::vector<Field<Target>>& fields, const std::string& prefix = "") {
    std::vector<std::string> names;
    std::transform(fields.begin(), fields.end(), std::back_inserter(names),
                   [&](const Field<Target>& field) { return prefix + field.name; });
    return names;
}

/// Reads an object's members into a target.
/// @throws Json::exception  also when an unknown member stands there
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
