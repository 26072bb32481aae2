#include "spm/formats/Formats.h"
#include "tests/spm/SampleRuns.h"
#include "tests/support/Support.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

namespace {

enum Kind { chart, reference };

/// The patches that were read, a line each with the chart's fields, name, L*, a*, b* and reflectance; or the error
/// message after the file's name.
std::string outcome(const std::filesystem::path& file, Kind kind) try {
    if (kind == reference) return fmt::format("{} values\n", spm::readReference(file, {}).patches.size());
    std::string text;
    for (const spm::Patch& patch : spm::readRun(file, "the reference file").patches) {
        text += fmt::format("{} {}", fmt::join(patch.fields, " "), patch.name);
        if (patch.reading) {
            const auto& [lab, spectrum] = *patch.reading;
            text += fmt::format(" {} {} {}", lab.L, lab.a, lab.b);
            for (const SPM_REFLECTION& point : spectrum) {
                text += fmt::format(" {}:{}", point.wavelength, point.value);
            }
        }
        text += '\n';
    }
    return text;
} catch (const std::exception& error) {
    return std::string(error.what()).substr(std::string("the reference file ").size() + file.string().size());
}

} // namespace

// Reading a file and writing it again changes nothing: the chart, its rows and columns, the conditions and the
// simulation are all read. Reasons for missing values aren't.
TEST(RunFile, ReadsAllOfARun) {
    const std::vector<std::pair<std::string, std::string (*)(const spm::Run&)>> formats{
        {"csv", spm::formatCsv}, {"json", spm::formatJson}, {"cgats", spm::formatCgats}};
    const TempFolder folder;
    for (const auto& [name, format] : formats) {
        for (spm::Run sample : {simulatedRows(), measuredSpots()}) {
            sample.patches[1].missingReason = spm::notReached;
            if (sample.simulation.empty()) sample.patches.front().name = "b"; // CGATS has no quotes
            sample.reference = nullptr;
            const std::string text = format(sample);
            writeFile(folder / "run", text);
            spm::Run read = spm::readRun(folder / "run", "the run");
            read.started = sample.started;
            read.module = sample.module;
            read.version = sample.version;
            EXPECT_EQ(format(read), text) << name;
        }
    }
}

TEST(RunFile, ReadsPatchesOrReportsTheError) {
    const std::string header = "name,L*,a*,b*\n";
    const auto cgats = [&](const std::string& format, const std::string& data) {
        return fmt::format("IT8.7/3\nBEGIN_DATA_FORMAT\n{}\nEND_DATA_FORMAT\nBEGIN_DATA\n{}END_DATA\n", format, data);
    };
    const std::string d50 = "CGATS.17\nWEIGHTING_FUNCTION \"ILLUMINANT, D50\"\n";
    const std::vector<std::tuple<Kind, std::string, std::string>> cases{
        {chart, "rgb_r,sample_id,380,Sample_Name,6CLR_2\n9,1,0.5,A 1,8\n", "1 9 8 A 1\n"},
        {chart, "PATCH,L,R,G,B\nA1,1,2,3,4\n", " A1\n"},
        {chart, "name,nm400_percent,L*,a*,b*,nm380_percent\nA1,5,,,,7.5\nA2,1,1,-2,.5,7.5\n",
         " A1\n A2 1 -2 0.5 380:7.5 400:1\n"},
        {chart, "\xEF\xBB\xBFname;L*;a*;b*;CMYK_C\r\n\"A;1\";1,5;-,25;3;0,5\r\nA2;1.5;2;3;\r\n",
         "0.5 A;1 1.5 -0.25 3\n A2 1.5 2 3\n"},
        {chart,
         cgats("SAMPLE_NAME LAB_B\nLAB_A\tLAB_L SPECTRAL_NM380", "\"#1\" 3 2 1 .5 # x\r\n\r\n#2 0\n\"\" 0 0 0 1\n"),
         " #1 1 2 3 380:0.5\n  0 0 0 380:1\n"},
        {chart, cgats("SAMPLE_ID", "") + cgats("SAMPLE_ID SAMPLE_NAME", "10 b\n2 a\n") + cgats("SAMPLE_ID", "3\n"),
         "10 b\n2 a\n"},
        {chart, "\xEF\xBB\xBF {\"readings\": [{\"name\": \"A1\"}]}", " A1\n"},
        {reference, header + "A1,1,2,3\nA2,1,-2,500\n", "2 values\n"},
        {reference, d50 + cgats("SAMPLE_ID LAB_L LAB_A LAB_B", "A1 1 2 3\n"), " is for D50/10 degree, but "},
        {reference, "name,L*,a*,b*,observer\nA1,1,2,3,2 degree\n", " is for D65/2 degree, but "},
        {reference, R"({"illuminant": "A", "readings": [{"name": "A1"}]})", " is for A/10 degree, but "},
        {reference, "name,L*,a*,b*,illuminant,observer\nA1,1,2,3,D65,10 degree\n", "1 values\n"},
        {reference, header, " has no patches"},
        {reference, header + "A1,1,2,3\n\nA2,1,2\n", ", line 4: the number of fields is 3, "},
        {chart, header + "\"A\n1\",1,2,3,4\n", ", line 2: the number of fields is 5, but the header has 4; "},
        {chart, header + "A1,1,2,3\n,,,\n", ", line 3: "},
        {chart, "A1,1,2,3\nA2,1,2,3\n", ", line 1: "},
        {reference, "name,L,a,c\nA1,1,2,3\n", ", line 2: \"A1\" has no L*, a* and b*; "},
        {reference, header + "A1,1,2,\n", ", line 2: \"\" is not a number"},
        {reference, header + "A1,nan,2,3\n", ", line 2: \"nan\""},
        {reference, header + "A1,1,2,3\nA1,1,2,3\n", ", line 3: \"A1\""},
        {chart, "name\nA1\ngr\xFCn\n", ", line 3, byte 3: "},
        {chart, cgats("SAMPLE_ID LAB_L", "A1 1 2\n"), ", line 6: the number of fields is 3, "},
        {chart, "CGATS.17\nBEGIN_DATA\nA1 1\n", " is incomplete: END_DATA is missing"},
        {chart, "CGATS.17\nBEGIN_DATA\nA1 1\nEND_DATA\n", ", line 2: "},
        {chart, "{\"name\": 1}", " is not JSON written by spm: "},
    };
    const TempFolder folder;
    for (const auto& [kind, content, expected] : cases) {
        writeFile(folder / "file", content);
        const std::string actual = outcome(folder / "file", kind);
        EXPECT_TRUE(actual.starts_with(expected)) << content << actual;
    }
}
