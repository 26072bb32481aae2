#pragma once

// JSON texts whose values know where they stand, for messages that name the file and the line.

#include "simulator/ScriptError.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace simulator {

/// @throws ScriptError  when the file can't be read
std::string readFile(const std::filesystem::path& path);

/// A value in a JSON text. The checks throw a ScriptError.
class Value {
public:
    /// The text's outermost value. Comments are passed over.
    /// @param firstLine  where in the file the text begins
    /// @throws ScriptError  when the text is not JSON, or names a member twice
    static Value parse(const std::string& fileName, const std::string& text, std::size_t firstLine = 1);

    std::string text() const;
    double number(double least, double most) const;
    std::int64_t integer(std::int64_t least, std::int64_t most) const;
    bool truth() const;
    std::vector<Value> elements() const;
    std::vector<std::pair<std::string, Value>> members() const;

    /// How a value or a name looks in a message: cut when it is long.
    std::string shown() const;
    static std::string quoted(const std::string& name);
    const nlohmann::ordered_json& json() const { return *value; }
    const std::string& fileName() const;
    [[noreturn]] void fail(const std::string& what) const;
    [[noreturn]] void failUnknown(const std::string& name, const std::string& known) const;

private:
    struct Document;

    Value(std::shared_ptr<const Document> whole, const nlohmann::ordered_json& part, std::string place)
        : document(std::move(whole)), value(&part), pointer(std::move(place)) {}
    Value below(const std::string& name, const nlohmann::ordered_json& part) const;

    std::shared_ptr<const Document> document;
    const nlohmann::ordered_json* value;
    std::string pointer;
};

/// A member that an object may have, and what it does to the target.
template <class Target>
struct Field {
    std::string name;
    void (*read)(const Value&, Target&);
};

/// Reads an object's members; one that no field is for is a failure.
template <class Target>
void readMembers(const Value& object, const std::vector<Field<Target>>& fields, Target& target) {
    for (const auto& [name, member] : object.members()) {
        const auto found = std::find_if(fields.begin(), fields.end(),
                                        [&wanted = name](const Field<Target>& field) { return field.name == wanted; });
        if (found == fields.end()) {
            std::string known;
            for (const Field<Target>& field : fields) {
                known.append(known.empty() ? "\"" : ", \"").append(field.name).append("\"");
            }
            member.failUnknown(name, known);
        }
        found->read(member, target);
    }
}

} // namespace simulator
