#include "common/CsvReader.h"

#include "common/Error.h"

#include <algorithm>

namespace common {

CsvReader::CsvReader(std::string_view csv, std::string what, char fieldSeparator)
    : description(std::move(what)), separator(fieldSeparator), rest(csv) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (rest.starts_with(byteOrderMark)) rest.remove_prefix(byteOrderMark.size());
}

std::optional<CsvReader::Fields> CsvReader::next() {
    take(rest.find_first_not_of("\r\n"));
    if (rest.empty()) return std::nullopt;
    recordLine = line;
    Fields fields{takeField()};
    while (rest.starts_with(separator)) {
        take(1);
        fields.push_back(takeField());
    }
    if (rest.find_first_of("\r\n") != 0 && !rest.empty()) {
        fail("text follows a closing quote; write a quote in a name as \"\"");
    }
    return fields;
}

void CsvReader::fail(std::string_view what) const {
    throw Error(description + ", line " + std::to_string(recordLine) + ": " + std::string(what));
}

std::string CsvReader::takeField() {
    if (!rest.starts_with('"')) return take(rest.find_first_of(std::string{separator, '\r', '\n'}));
    std::string field;
    do {
        field += take(1); // the opening quote, or the second one of a pair
        const std::size_t length = rest.find('"');
        if (length == std::string_view::npos) fail("a quote is not closed; end the field with another one");
        field += take(length);
        take(1);
    } while (rest.starts_with('"'));
    std::erase(field, '\r');
    return field.substr(1);
}

/// Takes a number of characters from the rest, or all if there are fewer.
std::string CsvReader::take(std::size_t length) {
    std::string taken(rest.substr(0, length));
    rest.remove_prefix(taken.size());
    line += static_cast<int>(std::ranges::count(taken, '\n'));
    return taken;
}

} // namespace common
