#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace common {

/// What is wrong in a CSV text: "the chart file chart.csv, line 3: ...".
class CsvError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads comma-separated values by RFC 4180, a line at a time: fields may stand in double quotes, in which "" is a
/// quote. Empty lines and a byte order mark are passed over.
class CsvReader {
public:
    using Fields = std::vector<std::string>;

    /// @param csv   the text, which must outlive the reader
    /// @param what  what the text is, as errors tell it: "the chart file chart.csv"
    CsvReader(std::string_view csv, std::string what) : name(std::move(what)), rest(csv) {}

    /// The fields of the next line; none at the end.
    /// @throws CsvError  when the line is wrong
    std::optional<Fields> next();

    const std::string& description() const { return name; }

    /// @throws CsvError  with the line that was read last
    [[noreturn]] void fail(std::string_view what) const;

private:
    bool nextLine();
    std::string takeField();
    std::string takeQuoted();

    std::string name;
    std::string_view rest;
    /// What is left of the line.
    std::string_view line;
    int number = 0;
};

} // namespace common
