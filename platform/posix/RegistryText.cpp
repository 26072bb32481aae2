#include "platform/posix/RegistryText.h"

#include "platform/posix/SameText.h"

#include <algorithm>
#include <charconv>

namespace registry {

namespace {

constexpr std::string_view signature = "REGEDIT4";
constexpr std::string_view blanks = " \t\r";

bool isBelow(std::string_view key, std::string_view parent) {
    return key.size() > parent.size() && key[parent.size()] == '\\' && sameText(key.substr(0, parent.size()), parent);
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return trimmed(line);
}

/// Takes the next line; a list of bytes together with the lines that it is continued on by a backslash at its end.
std::string takeStatement(std::string_view& text) {
    std::string statement(takeLine(text));
    const bool isList = statement.starts_with('"') && statement.find("=hex") != std::string::npos;
    while (isList && statement.ends_with('\\') && !text.empty()) {
        statement.pop_back();
        statement += takeLine(text);
    }
    return statement;
}

/// Takes a quoted text with its escapes \\ and \" from the front of a line.
std::optional<std::string> takeQuoted(std::string_view& line) {
    if (!line.starts_with('"')) return std::nullopt;
    std::string content;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '"') {
            line.remove_prefix(i + 1);
            return content;
        }
        if (line[i] == '\\' && i + 1 < line.size()) ++i;
        content += line[i];
    }
    return std::nullopt;
}

std::optional<DWORD> parseHex(std::string_view digits, std::size_t most) {
    DWORD number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    const bool whole = error == std::errc{} && end == digits.data() + digits.size() && digits.size() <= most;
    return whole ? std::optional(number) : std::nullopt;
}

std::optional<Value> parseBytes(DWORD type, std::string_view list) {
    Value value{type, {}};
    while (!list.empty()) {
        const std::size_t comma = std::min(list.find(','), list.size());
        const std::optional<DWORD> byte = parseHex(trimmed(list.substr(0, comma)), 2);
        if (!byte) return std::nullopt;
        value.data += static_cast<char>(*byte);
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return value;
}

/// What stands behind the "=" of a value: "text", dword:1f, hex:00,01 or hex(type):00,01.
std::optional<Value> parseValue(std::string_view text) {
    constexpr std::string_view dwordPrefix = "dword:";
    constexpr std::string_view binaryPrefix = "hex:";
    constexpr std::string_view typedPrefix = "hex(";
    if (std::optional<std::string> quoted = takeQuoted(text)) {
        if (!trimmed(text).empty()) return std::nullopt;
        quoted->push_back('\0');
        return Value{REG_SZ, *quoted};
    }
    if (text.starts_with(dwordPrefix)) {
        const std::optional<DWORD> number = parseHex(text.substr(dwordPrefix.size()), 8);
        if (!number) return std::nullopt;
        return Value{REG_DWORD, std::string(reinterpret_cast<const char*>(&*number), sizeof *number)};
    }
    if (text.starts_with(binaryPrefix)) return parseBytes(REG_BINARY, text.substr(binaryPrefix.size()));
    const std::size_t close = text.find("):");
    if (!text.starts_with(typedPrefix) || close == std::string_view::npos) return std::nullopt;
    const std::optional<DWORD> type = parseHex(text.substr(typedPrefix.size(), close - typedPrefix.size()), 8);
    return type ? parseBytes(*type, text.substr(close + 2)) : std::nullopt;
}

/// Follows one key, and one value of it, through the statements of a store.
class Search {
public:
    Search(std::string_view ofKey, std::string_view ofName) : key(ofKey), name(ofName) {}

    void run(std::string_view text) {
        while (!text.empty()) {
            const std::string statement = takeStatement(text);
            if (statement.starts_with('[') && statement.ends_with(']')) {
                takeHeading(std::string_view(statement).substr(1, statement.size() - 2));
            } else if (inKey) {
                takeAssignment(statement);
            }
        }
    }

    bool found = false;
    std::optional<Value> value;

private:
    void takeHeading(std::string_view heading) {
        const bool deletes = heading.starts_with('-');
        if (deletes) heading.remove_prefix(1);
        inKey = !deletes && sameText(heading, key);
        if (inKey) found = true;
        if (deletes && (sameText(heading, key) || isBelow(key, heading))) {
            found = false;
            value.reset();
        }
    }

    void takeAssignment(std::string_view statement) {
        const std::optional<std::string> valueName = takeQuoted(statement);
        if (!valueName || !sameText(*valueName, name)) return;
        statement = trimmed(statement);
        if (!statement.starts_with('=')) return;
        const std::string_view right = trimmed(statement.substr(1));
        const std::optional<Value> parsed = parseValue(right);
        if (parsed || right == "-") value = parsed;
    }

    std::string_view key;
    std::string_view name;
    bool inKey = false;
};

Search searched(std::string_view text, std::string_view key, std::string_view name) {
    Search search(key, name);
    search.run(text);
    return search;
}

} // namespace

bool isStore(std::string_view text) {
    return text.empty() || takeLine(text) == signature;
}

bool hasKey(std::string_view text, std::string_view key) {
    return searched(text, key, {}).found;
}

std::optional<Value> findValue(std::string_view text, std::string_view key, std::string_view name) {
    return searched(text, key, name).value;
}

std::string missingHeadings(std::string_view text, std::string_view root, std::string_view key) {
    const std::string_view lineEnd = text.find("\r\n") != std::string_view::npos ? "\r\n" : "\n";
    std::string headings;
    for (std::size_t end = root.size(); end < key.size();) {
        end = std::min(key.find('\\', end + 1), key.size());
        if (hasKey(text, key.substr(0, end))) continue;
        headings += std::string(lineEnd) + '[' + std::string(key.substr(0, end)) + ']' + std::string(lineEnd);
    }
    if (headings.empty()) return {};
    if (text.empty()) return std::string(signature) + std::string(lineEnd) + headings;
    return (text.ends_with('\n') ? "" : std::string(lineEnd)) + headings;
}

} // namespace registry
