#include "common/CsvReader.h"

#include <algorithm>

namespace common {

namespace {

std::string_view takeUntil(std::string_view& text, char separator) {
    const std::string_view taken = text.substr(0, text.find(separator));
    text.remove_prefix(taken.size());
    return taken;
}

} // namespace

std::optional<CsvReader::Fields> CsvReader::next() {
    do {
        if (!nextLine()) return std::nullopt;
    } while (line.empty());
    recordLine = linesRead;
    Fields taken{takeField()};
    while (line.starts_with(separator)) {
        line.remove_prefix(1);
        taken.push_back(takeField());
    }
    if (!line.empty()) fail("text follows a closing quote; write a quote in a name as \"\"");
    return taken;
}

void CsvReader::fail(std::string_view what) const {
    throw CsvError(description + ", line " + std::to_string(recordLine) + ": " + std::string(what));
}

/// Advances to the next line.
/// @return false at the end
bool CsvReader::nextLine() {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (linesRead == 0 && rest.starts_with(byteOrderMark)) rest.remove_prefix(byteOrderMark.size());
    if (rest.empty()) return false;
    line = takeUntil(rest, '\n');
    rest.remove_prefix(std::min<std::size_t>(rest.size(), 1));
    ++linesRead;
    if (line.ends_with('\r')) line.remove_suffix(1);
    return true;
}

std::string CsvReader::takeField() {
    return line.starts_with('"') ? takeQuoted() : std::string(takeUntil(line, separator));
}

/// Each pass of the outer loop begins at a quote: the opening one, or the second of an escaped pair.
std::string CsvReader::takeQuoted() {
    std::string taken;
    do {
        line.remove_prefix(1);
        taken += takeUntil(line, '"');
        while (line.empty()) {
            if (!nextLine()) fail("a quote is not closed; end the field with another one");
            taken += '\n';
            taken += takeUntil(line, '"');
        }
        line.remove_prefix(1);
        if (line.starts_with('"')) taken += '"';
    } while (line.starts_with('"'));
    return taken;
}

} // namespace common
