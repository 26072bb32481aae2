#include "common/CsvReader.h"
#include "spm/formats/Columns.h"
#include "spm/formats/Formats.h"
#include "spm/formats/Sheet.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace spm {

namespace {

std::string csvField(const std::string& text) {
    if (text.find_first_of("\",\r\n") == std::string::npos) return text;
    std::string field = "\"";
    for (const char character : text) {
        field += character;
        if (character == '"') field += character;
    }
    return field + '"';
}

std::string csvLine(const std::vector<std::string>& fields) {
    std::string text;
    for (const std::string& field : fields) {
        text += (&field == &fields.front() ? "" : ",") + csvField(field);
    }
    return text + '\n';
}

char separatorOf(const std::string& text) {
    const std::string header = text.substr(0, text.find('\n'));
    for (const char separator : {';', '\t'}) {
        if (header.find(separator) != std::string::npos) return separator;
    }
    return ',';
}

} // namespace

std::string formatCsv(const Run& run) {
    const Columns columns = allColumns(run);
    std::vector<std::string> titles = withName(run, run.chartColumns, "name");
    std::vector<std::string> facts;
    for (const Column& column : columns) {
        titles.push_back(column.title);
    }
    for (const auto& [title, text] : factsOf(run)) {
        titles.push_back(title);
        facts.push_back(text);
    }
    titles.emplace_back("not_measured");
    std::string text = csvLine(titles);
    for (const Patch& patch : run.patches) {
        std::vector<std::string> fields = withName(run, patch.fields, patch.name);
        for (const std::vector<std::string>& more : {fieldsOf(patch, columns), facts}) {
            fields.insert(fields.end(), more.begin(), more.end());
        }
        fields.push_back(patch.reading ? "" : patch.missingReason);
        text += csvLine(fields);
    }
    return text;
}

Run readCsv(const std::string& text, const std::string& description) {
    const char separator = separatorOf(text);
    common::CsvReader csv(text, description, separator);
    Sheet sheet{.description = description, .hasDecimalCommas = separator != ','};
    while (auto fields = csv.next()) {
        Sheet::Row row{fmt::format("line {}", csv.lineNumber()), std::move(*fields)};
        if (sheet.titles.fields.empty()) {
            sheet.titles = std::move(row);
        } else {
            sheet.rows.push_back(std::move(row));
        }
    }
    if (sheet.rows.empty()) return {};
    Run run = readSheet(sheet);
    takeFacts(run, [&](const char* title) {
        const auto column = std::ranges::find(sheet.titles.fields, title) - sheet.titles.fields.begin();
        return column < std::ssize(sheet.titles.fields) ? sheet.rows[0].fields[static_cast<std::size_t>(column)] : "";
    });
    return run;
}

} // namespace spm
