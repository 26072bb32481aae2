#include "host/CsvReader.h"

#include "host/HostError.h"

#include <algorithm>
#include <fmt/format.h>

namespace host {

CsvReader::CsvReader(const std::filesystem::path& file, std::string_view what)
    : name(fmt::format("{} {}", what, file.string())), stream(file, std::ios::binary) {}

std::optional<CsvReader::Fields> CsvReader::next() {
    if (nextLine()) return fields();
    if (!stream.eof()) throw HostError(fmt::format("can't read {}; name a CSV file", name));
    return std::nullopt;
}

void CsvReader::fail(std::string_view what) const {
    throw HostError(fmt::format("{}, line {}: {}", name, number, what));
}

/// Goes to the next line that is not empty; false at the end.
bool CsvReader::nextLine() {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    do {
        if (!std::getline(stream, line)) return false;
        if (++number == 1 && line.starts_with(byteOrderMark)) line.erase(0, byteOrderMark.size());
        if (line.ends_with('\r')) line.pop_back();
    } while (line.empty());
    return true;
}

CsvReader::Fields CsvReader::fields() const {
    std::string_view rest = line;
    Fields taken{takeField(rest)};
    while (rest.starts_with(',')) {
        rest.remove_prefix(1);
        taken.push_back(takeField(rest));
    }
    if (!rest.empty()) fail("text follows a closing quote; write a quote in a name as \"\"");
    return taken;
}

std::string CsvReader::takeField(std::string_view& rest) const {
    if (rest.starts_with('"')) return takeQuoted(rest);
    const std::size_t end = std::min(rest.find(','), rest.size());
    const std::string_view taken = rest.substr(0, end);
    rest.remove_prefix(end);
    return std::string(taken);
}

/// Begins at the opening quote, and at the second of two quotes again.
std::string CsvReader::takeQuoted(std::string_view& rest) const {
    std::string taken;
    do {
        rest.remove_prefix(1);
        const std::size_t end = rest.find('"');
        if (end == std::string_view::npos) fail("a quote is not closed; end the field with another one");
        taken += rest.substr(0, end);
        rest.remove_prefix(end + 1);
        if (rest.starts_with('"')) taken += '"';
    } while (rest.starts_with('"'));
    return taken;
}

} // namespace host
