#include "simulator/Json.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

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

/// Part of where a value stands in a text.
std::string step(const std::string& name) {
    return '/' + Parsed(name).dump();
}

/// A value in a message.
std::string abridged(const Parsed& value) {
    constexpr std::size_t most = 60;
    const std::string text = value.dump(-1, ' ', true);
    return text.size() > most ? text.substr(0, most) + " ..." : text;
}

/// What the parser says is wrong, without its own numbers; at its end it quotes what it read last.
std::string reasonOf(const Parsed::exception& error) {
    constexpr std::size_t most = 300;
    std::string reason = error.what();
    reason.erase(0, reason.find("] ") + 2);
    const std::size_t column = reason.find(": ");
    if (reason.starts_with("parse error at") && column != std::string::npos) reason.erase(0, column + 2);
    return reason.substr(0, most);
}

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
            if (event != Event::value) open(event == Event::array_start, line);
        }
    }

    std::map<std::string, std::size_t> take() { return std::move(lines); }

private:
    struct Level {
        bool isArray = false;
        std::string name{};
        std::size_t next = 0;
    };

    void open(bool isArray, std::size_t line) {
        constexpr std::size_t mostLevels = 20;
        if (levels.size() == mostLevels) throw ScriptError(at(fileName, line, "too much stands within one another"));
        levels.push_back({isArray});
    }

    void add(std::size_t line) {
        std::string pointer;
        for (const Level& level : levels) {
            pointer += step(level.name);
        }
        if (!lines.emplace(pointer, line).second) {
            throw ScriptError(at(fileName, line, abridged(levels.back().name) + " stands here twice"));
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
    try {
        std::ifstream file;
        file.exceptions(std::ios::badbit | std::ios::failbit);
        file.open(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    } catch (const std::ios::failure&) { // a folder can be opened, too, but not be read
        throw ScriptError(path.string() + ": the file can't be read: " + std::generic_category().message(errno));
    }
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
        throw ScriptError(at(fileName, line(), "this is not JSON: " + reasonOf(error)));
    }
    document->lines = lines.take();
    return {document, document->whole, ""};
}

const std::string& Value::fileName() const {
    return document->fileName;
}

std::string Value::quoted(const std::string& name) {
    return abridged(name);
}

std::string Value::shown() const {
    return abridged(*value);
}

void Value::fail(const std::string& what) const {
    const auto line = document->lines.find(pointer);
    throw ScriptError(at(document->fileName, line != document->lines.end() ? line->second : document->firstLine, what));
}

void Value::failUnknown(const std::string& name, const std::string& known) const {
    fail("there is no " + abridged(name) + " here; there may be " + known);
}

Value Value::below(const std::string& name, const Parsed& part) const {
    return {document, part, pointer + step(name)};
}

std::string Value::text() const {
    if (!value->is_string()) fail(shown() + " is not a text");
    return value->get<std::string>();
}

double Value::number(double least, double most) const {
    if (!value->is_number() || value->get<double>() < least || value->get<double>() > most) {
        fail(shown() + " is not a number from " + Parsed(least).dump() + " to " + Parsed(most).dump());
    }
    return value->get<double>();
}

std::int64_t Value::integer(std::int64_t least, std::int64_t most) const {
    const bool fits = value->is_number_integer() && value->get<double>() < 9e18;
    if (!fits || value->get<std::int64_t>() < least || value->get<std::int64_t>() > most) {
        fail(shown() + " is not a whole number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return value->get<std::int64_t>();
}

bool Value::truth() const {
    if (!value->is_boolean()) fail(shown() + " is neither true nor false");
    return value->get<bool>();
}

std::vector<Value> Value::elements() const {
    if (!value->is_array()) fail(shown() + " is not a list in square brackets");
    std::vector<Value> elements;
    for (const Parsed& element : *value) {
        elements.push_back(below(std::to_string(elements.size()), element));
    }
    return elements;
}

std::vector<std::pair<std::string, Value>> Value::members() const {
    if (!value->is_object()) fail(shown() + " is not an object in curly brackets");
    std::vector<std::pair<std::string, Value>> members;
    for (const auto& [name, member] : value->items()) {
        members.emplace_back(name, below(name, member));
    }
    return members;
}

} // namespace simulator
