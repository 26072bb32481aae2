#pragma once

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Reads comma-separated values by RFC 4180, a line at a time: fields may stand in double quotes, in which "" is a
/// quote. Empty lines and a byte order mark are passed over.
class CsvReader {
public:
    using Fields = std::vector<std::string>;

    /// @param what  what the file is, as errors tell it: "the chart file"
    CsvReader(const std::filesystem::path& file, std::string_view what);

    /// The fields of the next line; none at the end.
    /// @throws HostError  when the file can't be read, or the line is wrong
    std::optional<Fields> next();

    /// "the chart file chart.csv"
    const std::string& description() const { return name; }

    /// @throws HostError  with the file and the line that was read last
    [[noreturn]] void fail(std::string_view what) const;

private:
    bool nextLine();
    Fields fields() const;
    std::string takeField(std::string_view& rest) const;
    std::string takeQuoted(std::string_view& rest) const;

    std::string name;
    std::ifstream stream;
    std::string line;
    int number = 0;
};

} // namespace host
