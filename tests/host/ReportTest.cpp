#include "host/Report.h"

#include "host/Sparkline.h"

#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <regex>

namespace {

using host::Reading;
using Texts = std::vector<std::string>;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();
const SPM_LAB red{53.24F, 80.09F, 67.20F};

Texts matches(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    Texts found;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
        found.push_back(match->str(1));
    }
    return found;
}

host::Run runOf(std::vector<Reading> readings) {
    host::Run run;
    run.readings = std::move(readings);
    return run;
}

/// What is wrong with the page as XML; empty when nothing is.
std::string fault(const std::string& page) {
    const std::regex markup(R"(<!DOCTYPE html>|<(/?)([a-z][a-z0-9]*)(?: [a-zA-Z-]+="[^"<]*")*(/?)>)");
    const std::string text = std::regex_replace(page, std::regex("&(amp|lt|gt|quot|#[0-9]+);"), "");
    Texts open;
    for (std::sregex_iterator tag(text.begin(), text.end(), markup), end; tag != end; ++tag) {
        const std::string name = tag->str(2);
        if (tag->length(1) == 0) {
            if (tag->length(3) == 0 && !name.empty()) open.push_back(name);
            continue;
        }
        if (open.empty() || open.back() != name) return "</" + name + ">";
        open.pop_back();
    }
    const std::string rest = std::regex_replace(text, markup, "");
    const std::size_t position = rest.find_first_of(std::string("<>&\x1b\0", 5));
    if (position != std::string::npos) return rest.substr(position, 20);
    return open.empty() ? "" : "<" + open.back() + ">";
}

} // namespace

TEST(Report, HasTheSectionsOfWhatWasMeasured) {
    struct Case {
        std::vector<Reading> readings;
        Texts headings;
    };
    const std::vector<Case> cases{
        {{}, {"Patches"}},
        {{{"lab", red, {}}}, {"Patches", "Values"}},
        {{{"spectrum", {}, {{380, 1}, {730, 2}}}}, {"Patches", "Spectra"}},
        {{{"one", red, {}}, {"other", {}, {{380, 1}}}}, {"Patches", "Values", "Spectra"}},
        {{{"none", SPM_LAB{notANumber, infinite, 1}, {{380, notANumber}, {390, -infinite}, {400, infinite}}}},
         {"Patches", "Values", "Spectra"}},
    };
    for (const Case& each : cases) {
        const std::string page = host::htmlReport(runOf(each.readings));
        EXPECT_EQ(matches(page, "<h2>(.*)</h2>"), each.headings);
        EXPECT_EQ(fault(page), "") << page;
        EXPECT_EQ(matches(page, R"(\b(nan|inf)\b)"), Texts()) << page;
        EXPECT_EQ(page.find("Simulated"), std::string::npos);
    }
}

TEST(Report, EscapesEveryTextOfTheRun) {
    const std::string text = "</title><script>\"a\" & 'b'\x1b";
    const std::string escaped = "&lt;/title&gt;&lt;script&gt;&quot;a&quot; &amp; &#39;b&#39; ";
    const std::string page =
        host::htmlReport({text + "1", text + "2", 3, text + "4", 1, {{text + "5", red, {{380, 1}}}}});
    EXPECT_EQ(fault(page), "") << page;
    EXPECT_EQ(matches(page, escaped + "([0-9])"), (Texts{"1", "4", "1", "2", "5", "5", "5"}));
    EXPECT_EQ(matches(page, "(.)script"), (Texts{";", ";", ";", ";", ";", ";", ";"}));
}

TEST(Report, ShowsThePatchesInTheirRows) {
    host::Run run = runOf({{"a", red, {}}, {"b", {}, {}}, {"c", SPM_LAB{notANumber, 0, 0}, {}}});
    run.patchesInRow = 2;
    const std::string page = host::htmlReport(run);
    EXPECT_EQ(matches(page, "<ol(.*)>"), Texts{R"( class="rows" style="--patches: 2")"});
    EXPECT_EQ(matches(page, "<li>(.*)</li>"),
              (Texts{R"(<span style="background: #ff0000"></span>a)", "<span></span>b", "<span></span>c"}));
    run.patchesInRow = 0;
    EXPECT_EQ(matches(host::htmlReport(run), "<ol(.*)>"), Texts{""});
}

TEST(Report, DrawsTheCurvesToScale) {
    struct Case {
        std::optional<SPM_LAB> lab;
        std::vector<SPM_REFLECTION> spectrum;
        std::string stroke;
        std::string points;
    };
    // 380 nm to 730 nm are at x 56 to 616, and 0 to 100 percent at y 352 to 32.
    const std::vector<Case> cases{
        {red, {{380, 0}, {480, 12.5F}, {730, 100}}, "#ff0000", "56.0,352.0 216.0,312.0 616.0,32.0"},
        {{}, {{380, 0}, {390, notANumber}, {730, 50}}, "currentColor", "56.0,352.0 616.0,192.0"},
        // Above 100 percent, the axis goes on to the next 20; but to 200 at most, and not below 0.
        {{}, {{380, 101}, {730, 120}}, "currentColor", "56.0,82.7 616.0,32.0"},
        {{}, {{380, 1e30F}, {555, -5}, {730, 50}}, "currentColor", "56.0,32.0 336.0,352.0 616.0,272.0"},
        // So does that of the wavelengths.
        {{},
         {{330, 0}, {380, 0}, {780, 0}, {890, 0}},
         "currentColor",
         "56.0,352.0 106.0,352.0 506.0,352.0 616.0,352.0"},
    };
    for (const Case& each : cases) {
        const std::string page = host::htmlReport(runOf({{"patch", each.lab, each.spectrum}}));
        EXPECT_EQ(matches(page, "points=\"(.*)\""), (Texts{each.points, each.points}));
        EXPECT_EQ(matches(page, "<g stroke=\"(.*)\"><title>patch"), Texts{each.stroke});
    }
    const std::string page = host::htmlReport(runOf({{"patch", {}, {{380, 1}, {730, 150}}}}));
    EXPECT_EQ(matches(page, "class=\"beside\".*>([0-9]+)<"),
              (Texts{"0", "20", "40", "60", "80", "100", "120", "140", "160"}));
    EXPECT_EQ(matches(page, "class=\"below\".*>([0-9]+)<"), (Texts{"400", "450", "500", "550", "600", "650", "700"}));
    EXPECT_EQ(matches(page, "class=\"below\" x=\"([0-9.]+)\".*>400<"), Texts{"88.0"});
}

TEST(Report, WritesNumbersAlikeInEveryLocale) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    host::Run run = runOf({{"a", SPM_LAB{95.454F, -0.49F, 1}, {{380, 4.8F}}}, {"b", SPM_LAB{1, 2, notANumber}, {}}});
    run.version = 5090003;
    const std::string page = host::htmlReport(run);
    EXPECT_EQ(matches(page, "</th>(<td>.*)</tr>"),
              (Texts{"<td>95.45</td><td>-0.49</td><td>1.00</td>", "<td>1.00</td><td>2.00</td><td>&#8211;</td>"}));
    EXPECT_NE(page.find("<dd>5090003</dd>"), std::string::npos);
    const std::locale earlier = std::locale::global(std::locale(std::locale(), new Comma));
    const std::string elsewhere = host::htmlReport(run);
    std::locale::global(earlier);
    EXPECT_EQ(elsewhere, page);
}

TEST(Sparkline, HasABlockForEachWavelength) {
    EXPECT_EQ(host::spectralCurve({}), "");
    EXPECT_EQ(host::spectralCurve({{380, 0}, {390, 12.4F}, {400, 12.5F}, {410, 50}, {420, 87.5F}, {430, 100}}),
              "\u2581\u2581\u2582\u2585\u2588\u2588");
    EXPECT_EQ(host::spectralCurve({{380, -3}, {390, notANumber}, {400, 120}, {410, infinite}}), "\u2581 \u2588\u2588");
}
