// The CGATS text as another program reads it, and all forms where the decimal separator is a comma.

#include "host/Formats.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <clocale>
#include <gtest/gtest.h>
#include <lcms2.h>
#include <locale>
#include <memory>

namespace {

/// The German locale, made for the test, as that of the C and the C++ library.
class GermanLocale {
public:
    GermanLocale() {
        const std::string name = "de_DE";
        const Output output{folder / "out", folder / "err"};
        const int status = run("localedef", {"--no-archive", "-i", "de_DE", "-f", "ISO-8859-1", folder / name}, output);
        if (status != 0) throw std::runtime_error("localedef: " + readText(output.err));
        const EnvironmentVariable path("LOCPATH", (folder / "").string());
        if (std::setlocale(LC_ALL, name.c_str()) == nullptr) throw std::runtime_error("no locale " + name);
        earlier = std::locale::global(std::locale(std::locale::classic(), new DecimalComma));
    }
    GermanLocale(const GermanLocale&) = delete;
    GermanLocale& operator=(const GermanLocale&) = delete;
    ~GermanLocale() {
        std::locale::global(earlier);
        std::setlocale(LC_ALL, "C");
    }

private:
    /// For the C++ library: a named locale of its own would leak in the C library while LOCPATH is set.
    class DecimalComma : public std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };

    TempFolder folder;
    std::locale earlier;
};

/// A row with values of all sizes, and names that could break a table.
host::Run row(bool withLab, bool withSpectra) {
    host::Run run{.started = "2026-11-23T09:30:00Z",
                  .module = "C:\\new\\spm.dll",
                  .version = 3,
                  .simulation = "simulated \"i1\"; 24 patches",
                  .patchesInRow = 6,
                  .readings = {}};
    for (const char* const name : {"plain", "", "a \"b\", 'c'", "# d\n\te", "gr\xC3\xBCn \xFC", "END_DATA"}) {
        const auto i = static_cast<float>(run.readings.size());
        host::Reading reading{name, std::nullopt, {}};
        if (withLab) reading.lab = SPM_LAB{100 - 19.876F * i, 0.0001F - 33.3333F * i, 25.4321F * i};
        for (int j = 0; withSpectra && j < 36; ++j) {
            reading.spectrum.push_back({380 + 10 * j, static_cast<float>(j) * 2.98765F + i * 0.0001F});
        }
        run.readings.push_back(reading);
    }
    return run;
}

/// A CGATS table as Little CMS reads it.
class Table {
public:
    explicit Table(const std::string& text)
        : handle(cmsIT8LoadFromMem(nullptr, text.data(), static_cast<cmsUInt32Number>(text.size()))) {
        if (handle == nullptr) throw std::runtime_error("not read: " + text);
    }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;
    ~Table() { cmsIT8Free(handle); }

    std::string type() const { return cmsIT8GetSheetType(handle); }
    /// Goes to a table of the text.
    void show(int number) { cmsIT8SetTable(handle, static_cast<cmsUInt32Number>(number)); }
    int tables() const { return static_cast<int>(cmsIT8TableCount(handle)); }
    std::string property(const char* name) const { return textOf(cmsIT8GetProperty(handle, name)); }
    std::string property(const char* name, const char* part) const {
        return textOf(cmsIT8GetPropertyMulti(handle, name, part));
    }
    std::vector<std::string> columns() const {
        char** names = nullptr;
        const int count = cmsIT8EnumDataFormat(handle, &names);
        return {names, names + count};
    }
    std::string text(std::size_t line, std::size_t column) const {
        return textOf(cmsIT8GetDataRowCol(handle, static_cast<int>(line), static_cast<int>(column)));
    }
    double number(std::size_t line, const std::string& column) const {
        return cmsIT8GetDataDbl(handle, std::to_string(line + 1).c_str(), column.c_str());
    }

private:
    static std::string textOf(const char* text) { return text != nullptr ? text : "(none)"; }

    cmsHANDLE handle;
};

void expectValues(const Table& table, const host::Run& run) {
    for (std::size_t i = 0; i < run.readings.size(); ++i) {
        const host::Reading& reading = run.readings[i];
        EXPECT_EQ(table.text(i, 0), std::to_string(i + 1));
        if (reading.lab) {
            EXPECT_NEAR(table.number(i, "LAB_L"), reading.lab->L, 0.00005001);
            EXPECT_NEAR(table.number(i, "LAB_A"), reading.lab->a, 0.00005001);
            EXPECT_NEAR(table.number(i, "LAB_B"), reading.lab->b, 0.00005001);
        }
        for (const SPM_REFLECTION& point : reading.spectrum) {
            EXPECT_NEAR(table.number(i, "SPECTRAL_NM" + std::to_string(point.wavelength)), point.value / 100.,
                        0.0000005001);
        }
    }
}

} // namespace

TEST(Cgats, IsReadByAnotherProgram) {
    struct Case {
        bool lab;
        bool spectra;
        std::size_t columns;
    };
    const std::vector<std::string> names{"plain", "-", "a 'b', 'c'", "# d  e", "gr\xC3\xBCn \xFC", "END_DATA"};
    for (const Case& each : std::vector<Case>{{true, false, 5}, {false, true, 38}, {true, true, 41}}) {
        const host::Run run = row(each.lab, each.spectra);
        const Table table(host::formatCgats(run));
        EXPECT_EQ(table.type(), "CGATS.17");
        EXPECT_EQ(table.columns().size(), each.columns);
        EXPECT_EQ(table.property("NUMBER_OF_FIELDS"), std::to_string(each.columns));
        EXPECT_EQ(table.property("NUMBER_OF_SETS"), "6");
        EXPECT_EQ(table.property("INSTRUMENTATION"),
                  "simulated: simulated 'i1'; 24 patches; module C:\\new\\spm.dll, version 3");
        EXPECT_EQ(table.property("WEIGHTING_FUNCTION", "ILLUMINANT"), each.lab ? "D65" : "(none)");
        EXPECT_EQ(table.property("WEIGHTING_FUNCTION", "OBSERVER"), each.lab ? "10 degree" : "(none)");
        EXPECT_EQ(table.property("ILLUMINATION_NAME"), each.lab ? "D65" : "(none)");
        EXPECT_EQ(table.property("OBSERVER_ANGLE"), each.lab ? "10" : "(none)");
        EXPECT_EQ(table.property("SPECTRAL_NORM"), each.spectra ? "1.0" : "(none)");
        expectValues(table, run);
        for (std::size_t i = 0; i < names.size(); ++i) {
            EXPECT_EQ(table.text(i, 1), names[i]);
        }
    }
}

TEST(Cgats, OfAnInterruptedRunIsReadByAnotherProgram) {
    host::Run run = row(true, true);
    run.readings.resize(3);
    run.readings[1].spectrum.clear();
    Table table(host::formatCgats(run));
    ASSERT_EQ(table.tables(), 2);
    EXPECT_EQ(table.property("NUMBER_OF_SETS"), "2");
    EXPECT_NEAR(table.number(2, "SPECTRAL_NM730"), run.readings[2].spectrum.back().value / 100., 0.0000005001);
    table.show(1);
    EXPECT_EQ(table.columns().size(), 5U);
    EXPECT_EQ(table.property("NUMBER_OF_SETS"), "1");
    EXPECT_EQ(table.property("WEIGHTING_FUNCTION", "ILLUMINANT"), "D65");
    EXPECT_NEAR(table.number(1, "LAB_L"), run.readings[1].lab->L, 0.00005001);
}

TEST(Cgats, HasADecimalPointInEveryLocaleAsHaveTheOtherForms) {
    const host::Run run = row(true, true);
    const std::string csv = host::formatCsv(run);
    const std::string json = host::formatJson(run);
    const std::string cgats = host::formatCgats(run);
    const GermanLocale german;
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    ASSERT_EQ(std::use_facet<std::numpunct<char>>(std::locale()).decimal_point(), ',');
    EXPECT_EQ(host::formatCsv(run), csv);
    EXPECT_EQ(host::formatJson(run), json);
    EXPECT_EQ(host::formatCgats(run), cgats);
}
