#include "platform/posix/RegistryText.h"

#include "platform/posix/EqualIgnoringCase.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace registry {

namespace {

constexpr std::string_view signature = "REGEDIT4";
constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Removes the text up to a separator from the front of a list and returns it without the blanks around it.
std::string_view takeUntil(char separator, std::string_view& list) {
    const std::size_t end = std::min(list.find(separator), list.size());
    const std::string_view item = list.substr(0, end);
    list.remove_prefix(std::min(end + 1, list.size()));
    return trimmed(item);
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

std::optional<DWORD> parseHex(std::string_view digits, std::size_t maxDigits) {
    DWORD number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
    const bool isValid = error == std::errc{} && end == digits.data() + digits.size() && digits.size() <= maxDigits;
    return isValid ? std::optional(number) : std::nullopt;
}

std::optional<std::string> parseBytes(std::string_view list) {
    std::string bytes;
    while (!list.empty()) {
        const std::optional<DWORD> byte = parseHex(takeUntil(',', list), 2);
        if (!byte) return std::nullopt;
        bytes += static_cast<char>(*byte);
    }
    return bytes;
}

/// Parses the part after "=": "text", dword:1f or hex(type):00,01, each perhaps followed by a comment.
std::optional<Value> parseValue(const std::string& name, std::string_view text) {
    constexpr std::string_view dwordPrefix = "dword:";
    constexpr std::string_view bytesPrefix = "hex(";
    const std::optional<std::string> quoted = takeQuoted(text);
    text = takeUntil(';', text);
    if (quoted) return text.empty() ? std::optional<Value>({name, REG_SZ, *quoted + '\0'}) : std::nullopt;
    if (text.starts_with(dwordPrefix)) {
        const std::optional<DWORD> number = parseHex(trimmed(text.substr(dwordPrefix.size())), 8);
        if (!number) return std::nullopt;
        return Value{name, REG_DWORD, std::string(reinterpret_cast<const char*>(&*number), sizeof *number)};
    }
    const std::size_t close = text.find("):");
    if (!text.starts_with(bytesPrefix) || close == std::string_view::npos) return std::nullopt;
    const std::optional<DWORD> type = parseHex(text.substr(bytesPrefix.size(), close - bytesPrefix.size()), 8);
    const std::optional<std::string> bytes = parseBytes(text.substr(close + 2));
    return type && bytes ? std::optional<Value>({name, *type, *bytes}) : std::nullopt;
}

std::optional<Value> parseAssignment(std::string_view line) {
    const std::optional<std::string> name = takeQuoted(line);
    line = trimmed(line);
    return name && line.starts_with('=') ? parseValue(*name, trimmed(line.substr(1))) : std::nullopt;
}

/// Calls a function with each line of a text, without the blanks around it, and the key of the last heading before it.
template <class Function>
void forEachLine(std::string_view text, Function function) {
    std::string_view key;
    while (!text.empty()) {
        const std::string_view line = takeUntil('\n', text);
        const std::size_t end = line.rfind(']');
        if (line.starts_with('[') && end != std::string_view::npos) key = line.substr(1, end - 1);
        function(key, line);
    }
}

} // namespace

bool isSettingsText(std::string_view text) {
    return text.empty() || takeUntil('\n', text) == signature;
}

bool isSameOrBelow(std::string_view path, std::string_view top) {
    if (!equalIgnoringCase(path.substr(0, top.size()), top)) return false;
    return path.size() == top.size() || path[top.size()] == '\\';
}

bool hasKey(std::string_view text, std::string_view key) {
    bool found = false;
    forEachLine(text, [&](std::string_view heading, std::string_view) { found |= isSameOrBelow(heading, key); });
    return found;
}

std::vector<Value> valuesOf(std::string_view text, std::string_view key) {
    std::vector<Value> values;
    forEachLine(text, [&](std::string_view heading, std::string_view line) {
        const auto value = equalIgnoringCase(heading, key) ? parseAssignment(line) : std::nullopt;
        if (!value) return;
        std::erase_if(values, [&](const Value& earlier) { return equalIgnoringCase(earlier.name, value->name); });
        values.push_back(*value);
    });
    return values;
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
