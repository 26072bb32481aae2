#include "simulator/Data.h"

#include <charconv>
#include <stdexcept>

namespace simulator {

namespace {

std::string_view takeUntil(std::string_view& text, char separator) {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

/// A table's lines, with their numbers for messages.
class Table {
public:
    Table(std::string_view csv, std::size_t fieldsInALine) : rest(csv), width(fieldsInALine) {}

    /// Goes to the next line; false at the end.
    bool next() {
        if (rest.find_first_not_of("\r\n") == std::string_view::npos) return false;
        ++number;
        std::string_view line = takeUntil(rest, '\n');
        if (line.ends_with('\r')) line.remove_suffix(1);
        fields.clear();
        while (!line.empty()) {
            fields.push_back(takeUntil(line, ','));
        }
        if (fields.size() != width) {
            fail("there are " + std::to_string(fields.size()) + " fields, separated by commas, where " +
                 std::to_string(width) + " belong");
        }
        return true;
    }

    std::string_view text(std::size_t field) const { return fields[field]; }

    double numberIn(std::size_t field, int least, int most) const {
        const std::string_view digits = fields[field];
        double value = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        const bool isNumber = error == std::errc{} && end == digits.data() + digits.size();
        if (!isNumber || !(value >= least && value <= most)) {
            fail('"' + std::string(digits) + "\" is not a number from " + std::to_string(least) + " to " +
                 std::to_string(most));
        }
        return value;
    }

    void expectWavelength(std::size_t field, std::size_t index) const {
        const std::string wavelength = std::to_string(380 + 10 * index);
        if (fields[field] != wavelength) {
            fail('"' + std::string(fields[field]) + "\" stands where the wavelength " + wavelength + " belongs");
        }
    }

    [[noreturn]] void fail(const std::string& what) const {
        throw std::runtime_error("line " + std::to_string(number) + ": " + what);
    }

private:
    std::string_view rest;
    std::size_t width;
    std::vector<std::string_view> fields;
    int number = 0;
};

} // namespace

std::vector<Patch> parseChart(std::string_view csv) {
    Table table(csv, 1 + wavelengths);
    if (table.next()) {
        for (std::size_t i = 0; i < wavelengths; ++i) {
            table.expectWavelength(1 + i, i);
        }
    }
    std::vector<Patch> patches;
    while (table.next()) {
        Patch patch{std::string(table.text(0)), {}};
        for (std::size_t i = 0; i < wavelengths; ++i) {
            patch.reflectance[i] = table.numberIn(1 + i, 0, 2);
        }
        patches.push_back(std::move(patch));
    }
    return patches;
}

Weights parseWeights(std::string_view csv) {
    Weights weights{};
    Table table(csv, 4);
    table.next();
    for (std::size_t i = 0; i < wavelengths; ++i) {
        if (!table.next()) table.fail("the wavelengths end before 730 nm");
        table.expectWavelength(0, i);
        weights[i] = {table.numberIn(1, 0, 100), table.numberIn(2, 0, 100), table.numberIn(3, 0, 100)};
    }
    return weights;
}

} // namespace simulator
