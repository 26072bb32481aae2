#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace common {

/// Reads comma-separated values (RFC 4180), one record at a time. A field in double quotes may contain separators, line
/// breaks, which are read as '\n', and quotes, written as "". Empty lines and a byte order mark are skipped.
class CsvReader {
public:
    using Fields = std::vector<std::string>;

    /// @param csv   the text; must outlive the reader
    /// @param what  a description of the text for error messages: "the chart file chart.csv"
    /// @param fieldSeparator  between the fields of a record
    CsvReader(std::string_view csv, std::string what, char fieldSeparator = ',');

    /// Returns the fields of the next record; nullopt at the end.
    /// @throws Error  if the record is malformed
    std::optional<Fields> next();

    /// The line, counted from 1, in which the last record read begins.
    int lineNumber() const { return recordLine; }

    /// Reports an error in the last record read.
    /// @throws Error  with the line of the record
    [[noreturn]] void fail(std::string_view what) const;

private:
    std::string takeField();
    std::string take(std::size_t length);

    std::string description;
    char separator;
    std::string_view rest;
    /// The line in which the rest begins, and the one in which the last record read does.
    int line = 1;
    int recordLine = 1;
};

} // namespace common
