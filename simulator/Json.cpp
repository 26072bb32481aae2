#include "simulator/Json.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace simulator {

namespace {

using Parsed = nlohmann::ordered_json;
using Event = Parsed::parse_event_t;

/// Reads a text and tells how far it has come.
class Reader {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    Reader(const char* begin, const char** reached) : at(begin), position(reached) {}
    reference operator*() const { return *at; }
    Reader& operator++() {
        *position = ++at;
        return *this;
    }
    bool operator==(const Reader& other) const { return at == other.at; }
    bool operator!=(const Reader& other) const { return at != other.at; }

private:
    const char* at;
    const char** position;
};

std::string at(const std::string& fileName, std::size_t line, const std::string& what) {
    return fileName + ", line " + std::to_string(line) + ": " + what;
}

/// Notes the line of each value while a text is parsed.
class Lines {
public:
    explicit Lines(std::string name) : fileName(std::move(name)) {}

    void note(Event event, const Parsed& parsed, std::size_t line) {
        switch (event) {
        case Event::key:
            levels.back().name = parsed.get<std::string>();
            add(line);
            break;
        case Event::object_end:
        case Event::array_end:
            levels.pop_back();
            break;
        default:
            if (!levels.empty() && levels.back().isArray) {
                levels.back().name = std::to_string(levels.back().next++);
                add(line);
            }
            if (event != Event::value) levels.push_back({event == Event::array_start});
        }
    }

    std::map<std::string, std::size_t> take() { return std::move(lines); }

private:
    struct Level {
        bool isArray = false;
        std::string name{};
        std::size_t next = 0;
    };

    void add(std::size_t line) {
        std::string pointer;
        for (const Level& level : levels) {
            pointer += '/' + level.name;
        }
        if (!lines.emplace(pointer, line).second) {
            throw ScriptError(at(fileName, line, '"' + levels.back().name + "\" stands here twice"));
        }
    }

    std::string fileName;
    std::vector<Level> levels;
    std::map<std::string, std::size_t> lines;
};

} // namespace

struct Value::Document { // NOLINT(bugprone-exception-escape): only memory may run out
    std::string fileName;
    std::size_t firstLine = 1;
    Parsed whole;
    std::map<std::string, std::size_t> lines;
};

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw ScriptError(path.string() + ": the file can't be read");
    return {std::istreambuf_iterator<char>(file), {}};
}

Value Value::parse(const std::string& fileName, const std::string& text, std::size_t firstLine) {
    const char* const begin = text.data();
    const char* reached = begin;
    // The last character that was read may belong to what follows: a number ends where something else begins.
    const auto line = [&] {
        return firstLine + static_cast<std::size_t>(std::count(begin, std::max(begin, reached - 1), '\n'));
    };
    Lines lines(fileName);
    const auto note = [&](int /*depth*/, Event event, Parsed& parsed) {
        lines.note(event, parsed, line());
        return true;
    };
    auto document = std::make_shared<Document>();
    document->fileName = fileName;
    document->firstLine = firstLine;
    try {
        document->whole =
            Parsed::parse(Reader(begin, &reached), Reader(begin + text.size(), &reached), note, true, true);
    } catch (const Parsed::exception& error) {
        const std::string what = error.what();
        throw ScriptError(at(fileName, line(), "this is not JSON: " + what.substr(what.find(": ") + 2)));
    }
    document->lines = lines.take();
    return {document, document->whole, ""};
}

const std::string& Value::fileName() const {
    return document->fileName;
}

void Value::fail(const std::string& what) const {
    const auto line = document->lines.find(pointer);
    throw ScriptError(at(document->fileName, line != document->lines.end() ? line->second : document->firstLine, what));
}

void Value::failUnknown(const std::string& name, const std::string& known) const {
    fail("there is no \"" + name + "\" here; there may be " + known);
}

Value Value::below(const std::string& name, const Parsed& part) const {
    return {document, part, pointer + '/' + name};
}

std::string Value::text() const {
    if (!value->is_string()) fail(value->dump() + " is not a text");
    return value->get<std::string>();
}

double Value::number(double least, double most) const {
    if (!value->is_number() || value->get<double>() < least || value->get<double>() > most) {
        fail(value->dump() + " is not a number from " + Parsed(least).dump() + " to " + Parsed(most).dump());
    }
    return value->get<double>();
}

std::int64_t Value::integer(std::int64_t least, std::int64_t most) const {
    const bool fits = value->is_number_integer() && value->get<double>() < 9e18;
    if (!fits || value->get<std::int64_t>() < least || value->get<std::int64_t>() > most) {
        fail(value->dump() + " is not a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return value->get<std::int64_t>();
}

bool Value::truth() const {
    if (!value->is_boolean()) fail(value->dump() + " is neither true nor false");
    return value->get<bool>();
}

std::vector<Value> Value::elements() const {
    if (!value->is_array()) fail(value->dump() + " is not a list in square brackets");
    std::vector<Value> elements;
    for (const Parsed& element : *value) {
        elements.push_back(below(std::to_string(elements.size()), element));
    }
    return elements;
}

std::vector<std::pair<std::string, Value>> Value::members() const {
    if (!value->is_object()) fail(value->dump() + " is not an object in curly brackets");
    std::vector<std::pair<std::string, Value>> members;
    for (const auto& [name, member] : value->items()) {
        members.emplace_back(name, below(name, member));
    }
    return members;
}

} // namespace simulator
