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

/// The lines of a table below its header, with their numbers for messages.
class Table {
public:
    explicit Table(std::string_view csv) : rest(csv) { takeUntil(rest, '\n'); }

    bool next() {
        ++number;
        line = takeUntil(rest, '\n');
        if (line.ends_with('\r')) line.remove_suffix(1);
        return !line.empty();
    }

    std::string_view takeField() { return takeUntil(line, ','); }

    double takeNumber() {
        const std::string_view field = takeField();
        double value = 0;
        const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
        if (error != std::errc{} || end != field.data() + field.size()) {
            fail("\"" + std::string(field) + "\" is not a number");
        }
        return value;
    }

    void expectEnd() const {
        if (!line.empty()) fail("more fields than expected");
    }

    [[noreturn]] void fail(const std::string& what) const {
        throw std::runtime_error("line " + std::to_string(number) + ": " + what);
    }

private:
    std::string_view rest;
    std::string_view line;
    int number = 1;
};

} // namespace

std::vector<Patch> parseChart(std::string_view csv) {
    std::vector<Patch> patches;
    for (Table table(csv); table.next();) {
        Patch patch{std::string(table.takeField()), {}};
        for (double& factor : patch.reflectance) {
            factor = table.takeNumber();
        }
        table.expectEnd();
        patches.push_back(std::move(patch));
    }
    return patches;
}

Weights parseWeights(std::string_view csv) {
    Weights weights{};
    Table table(csv);
    for (std::size_t i = 0; i < wavelengths; ++i) {
        table.next();
        if (table.takeNumber() != static_cast<double>(380 + 10 * i))
            table.fail("the wavelengths are not 380 to 730 nm");
        weights[i].x = table.takeNumber();
        weights[i].y = table.takeNumber();
        weights[i].z = table.takeNumber();
        table.expectEnd();
    }
    return weights;
}

} // namespace simulator
