#include "platform/posix/RegistryText.h"

#include "platform/posix/EqualIgnoringCase.h"

#include <algorithm>
#include <charconv>

namespace registry {

namespace {

constexpr std::string_view signature = "REGEDIT4";
constexpr std::string_view blanks = " \t\r";

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

/// Removes a quoted text from the front of a line and returns it with its escapes \\ and \" resolved.
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

/// Removes the "=" after a value's name.
bool takeEquals(std::string_view& line) {
    line = trimmed(line);
    if (!line.starts_with('=')) return false;
    line = trimmed(line.substr(1));
    return true;
}

bool isByteList(std::string_view statement) {
    return takeQuoted(statement) && takeEquals(statement) && statement.starts_with("hex");
}

/// Removes the next line and returns it. A list of bytes includes its continuation lines: those after a backslash at
/// the end of a line, up to a blank line.
std::string takeStatement(std::string_view& text) {
    std::string_view line = takeLine(text);
    std::string statement(line);
    if (!isByteList(line)) return statement;
    while (line.ends_with('\\') && !text.empty()) {
        statement.pop_back();
        line = takeLine(text);
        statement += line;
    }
    return statement;
}

std::string_view withoutComment(std::string_view text) {
    return trimmed(text.substr(0, text.find(';')));
}

std::optional<DWORD> parseHex(std::string_view digits, std::size_t maxDigits) {
    DWORD number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    const bool isValid = error == std::errc{} && end == digits.data() + digits.size() && digits.size() <= maxDigits;
    return isValid ? std::optional(number) : std::nullopt;
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

/// Parses the part after "=": "text", dword:1f, hex:00,01 or hex(type):00,01.
std::optional<Value> parseValue(std::string_view text) {
    constexpr std::string_view dwordPrefix = "dword:";
    constexpr std::string_view binaryPrefix = "hex:";
    constexpr std::string_view typedPrefix = "hex(";
    if (std::optional<std::string> quoted = takeQuoted(text)) {
        if (!withoutComment(text).empty()) return std::nullopt;
        quoted->push_back('\0');
        return Value{REG_SZ, *quoted};
    }
    text = withoutComment(text);
    if (text.starts_with(dwordPrefix)) {
        const std::optional<DWORD> number = parseHex(trimmed(text.substr(dwordPrefix.size())), 8);
        if (!number) return std::nullopt;
        return Value{REG_DWORD, std::string(reinterpret_cast<const char*>(&*number), sizeof *number)};
    }
    if (text.starts_with(binaryPrefix)) return parseBytes(REG_BINARY, text.substr(binaryPrefix.size()));
    const std::size_t close = text.find("):");
    if (!text.starts_with(typedPrefix) || close == std::string_view::npos) return std::nullopt;
    const std::optional<DWORD> type = parseHex(text.substr(typedPrefix.size(), close - typedPrefix.size()), 8);
    return type ? parseBytes(*type, text.substr(close + 2)) : std::nullopt;
}

/// Looks up a key and one of its values by applying the statements of a text in order.
class Lookup {
public:
    Lookup(std::string_view wantedKey, std::string_view wantedName) : key(wantedKey), name(wantedName) {}

    void run(std::string_view text) {
        while (!text.empty()) {
            const std::string statement = takeStatement(text);
            if (statement.starts_with('[')) {
                applyHeading(std::string_view(statement).substr(1, statement.rfind(']') - 1));
            } else if (inKey) {
                applyAssignment(statement);
            }
        }
    }

    bool hasKey = false;
    std::optional<Value> value;

private:
    void applyHeading(std::string_view heading) {
        const bool deletes = heading.starts_with('-');
        if (deletes) heading.remove_prefix(1);
        inKey = !deletes && equalIgnoringCase(heading, key);
        if (!deletes && isSameOrBelow(heading, key)) hasKey = true;
        if (deletes && isSameOrBelow(key, heading)) {
            hasKey = false;
            value.reset();
        }
    }

    void applyAssignment(std::string_view statement) {
        const std::optional<std::string> valueName = takeQuoted(statement);
        if (!valueName || !equalIgnoringCase(*valueName, name) || !takeEquals(statement)) return;
        const std::optional<Value> parsed = parseValue(statement);
        if (parsed || withoutComment(statement) == "-") value = parsed;
    }

    std::string_view key;
    std::string_view name;
    bool inKey = false;
};

Lookup lookUp(std::string_view text, std::string_view key, std::string_view name) {
    Lookup lookup(key, name);
    lookup.run(text);
    return lookup;
}

} // namespace

bool isSettingsText(std::string_view text) {
    return text.empty() || takeLine(text) == signature;
}

bool isSameOrBelow(std::string_view key, std::string_view other) {
    if (!equalIgnoringCase(key.substr(0, other.size()), other)) return false;
    return key.size() == other.size() || key[other.size()] == '\\';
}

bool hasKey(std::string_view text, std::string_view key) {
    return lookUp(text, key, {}).hasKey;
}

std::optional<Value> findValue(std::string_view text, std::string_view key, std::string_view name) {
    return lookUp(text, key, name).value;
}

std::string missingHeadings(std::string_view text, std::string_view root, std::string_view key) {
    const std::string lineEnding = text.find("\r\n") != std::string_view::npos ? "\r\n" : "\n";
    std::string headings;
    for (std::size_t end = root.size(); end < key.size();) {
        end = std::min(key.find('\\', end + 1), key.size());
        if (hasKey(text, key.substr(0, end))) continue;
        headings.append(lineEnding).append("[").append(key.substr(0, end)).append("]").append(lineEnding);
    }
    if (headings.empty()) return {};
    if (text.empty()) return std::string(signature) + lineEnding + headings;
    return (text.ends_with('\n') ? "" : lineEnding) + headings;
}

} // namespace registry
