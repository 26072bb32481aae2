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

/// Reads comma-separated values by RFC 4180, a record at a time: fields may be in double quotes, in which "" is a quote
/// and line breaks, read as '\n', belong to the field. Empty lines and a byte order mark are skipped.
class CsvReader {
public:
    using Fields = std::vector<std::string>;

    /// @param csv   the text, which must outlive the reader
    /// @param what  what the text is, as errors tell it: "the chart file chart.csv"
    CsvReader(std::string_view csv, std::string what) : name(std::move(what)), rest(csv) {}

    /// The fields of the next record; none at the end.
    /// @throws CsvError  when the record is malformed
    std::optional<Fields> next();

    /// The line, counted from 1, in which the record that was read last begins.
    int lineNumber() const { return number; }

    /// @throws CsvError  with that line
    [[noreturn]] void fail(std::string_view what) const;

private:
    bool nextLine();
    std::string takeField();
    std::string takeQuoted();

    std::string name;
    std::string_view rest;
    /// What is left of the line.
    std::string_view line;
    int linesRead = 0;
    int number = 0;
};

} // namespace common
