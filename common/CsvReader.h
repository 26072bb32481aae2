#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace common {

/// An error in a CSV text: "the chart file chart.csv, line 3: ...".
class CsvError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads comma-separated values (RFC 4180), one record at a time. A field in double quotes may contain separators, line
/// breaks, which are read as '\n', and quotes, written as "". Empty lines and a byte order mark are skipped.
class CsvReader {
public:
    using Fields = std::vector<std::string>;

    /// @param csv   the text; must outlive the reader
    /// @param what  a description of the text for error messages: "the chart file chart.csv"
    /// @param fieldSeparator  between the fields of a record
    CsvReader(std::string_view csv, std::string what, char fieldSeparator = ',')
        : description(std::move(what)), separator(fieldSeparator), rest(csv) {}

    /// Returns the fields of the next record; nullopt at the end.
    /// @throws CsvError  if the record is malformed
    std::optional<Fields> next();

    /// The line, counted from 1, in which the last record read begins.
    int lineNumber() const { return recordLine; }

    /// Reports an error in the last record read.
    /// @throws CsvError  with the line of the record
    [[noreturn]] void fail(std::string_view what) const;

private:
    bool nextLine();
    std::string takeField();
    std::string takeQuoted();

    std::string description;
    char separator;
    std::string_view rest;
    /// The unread part of the current line.
    std::string_view line;
    int linesRead = 0;
    int recordLine = 0;
};

} // namespace common
