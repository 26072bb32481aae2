#include "spm/formats/PatchFile.h"

#include "spm/formats/Formats.h"
#include "tests/spm/SampleRuns.h"
#include "tests/support/Support.h"

#include <algorithm>
#include <fmt/format.h>
#include <gtest/gtest.h>

namespace {

using enum spm::PatchFileKind;
using namespace std::string_literals; // texts with NUL bytes

/// The patches that were read, a line each with name, L*, a*, b* and reflectance, and a blank line; or the error
/// message after the file's name.
std::string outcome(const std::filesystem::path& file, spm::PatchFileKind kind) try {
    std::string text;
    for (const spm::Reading& reading : spm::readPatches(file, "the file", kind)) {
        text += reading.name;
        if (reading.lab) text += fmt::format(" {} {} {}", reading.lab->L, reading.lab->a, reading.lab->b);
        for (const SPM_REFLECTION& point : reading.spectrum) {
            text += fmt::format(" {}:{}", point.wavelength, point.value);
        }
        text += '\n';
    }
    return text + '\n';
} catch (const std::exception& error) {
    return std::string(error.what()).substr(std::string("the file ").size() + file.string().size());
}

} // namespace

TEST(PatchFile, ReadsBackAllFormats) {
    const std::vector<std::pair<std::string, std::string (*)(const spm::Run&)>> formats{
        {".csv", spm::formatCsv}, {".json", spm::formatJson}, {".cgats", spm::formatCgats}};
    const TempFolder folder;
    for (const auto& [extension, format] : formats) {
        for (spm::Run sample : {simulatedRows(), measuredSpots(), comparedSpots()}) {
            std::erase_if(sample.readings, [](const spm::Reading& reading) { return !reading.isMeasured(); });
            std::ranges::for_each(sample.readings, [](spm::Reading& reading) { reading.missingReason.clear(); });
            const std::string text = format(sample);
            writeFile(folder / "run", text);
            sample.readings = spm::readPatches(folder / "run", "the run", run);
            EXPECT_EQ(format(sample), text) << extension;
        }
    }
}

TEST(PatchFile, ReadsPatchesOrReportsTheError) {
    const std::string header = "name,L*,a*,b*\n";
    const auto cgats = [&](const std::string& format, const std::string& data) {
        return fmt::format(
            "IT8.7/3\nSPECTRAL_NORM 0.5\nBEGIN_DATA_FORMAT\n{}\nEND_DATA_FORMAT\nBEGIN_DATA\n{}END_DATA\n", format,
            data);
    };
    const std::vector<std::tuple<spm::PatchFileKind, std::string, std::string>> cases{
        {chart, "sample_id,380,Sample_Name,place\n1,0.5,A 1,\n", "A 1\n\n"},
        {chart, "PATCH,L,R,G,B\nA1,1,2,3,4\n", "A1\n\n"},
        {chart, "name,nm400_percent,L*,a*,b*,nm380_percent\nA1,5,,,,7.5\nA2,,1,-2,.5,\n",
         "A1 380:7.5 400:5\nA2 1 -2 0.5\n\n"},
        {chart, "name\n\"a\r\n\r\n,b\"\r\n", "a\n\n,b\n\n"},
        {chart,
         cgats("SAMPLE_NAME LAB_B\nLAB_A\tLAB_L SPECTRAL_380 NM_390",
               "\"#1\" 3 2 1 .5 1 # x\r\n\n#2 0\n\"\" 0 0 0 1 1\n"),
         "#1 1 2 3 380:100 390:200\n 0 0 0 380:200 390:200\n\n"},
        {chart, cgats("SAMPLE_ID SAMPLE_NAME", "10 b\n2 a\n") + cgats("SAMPLE_ID nm380", "2 .25\n10 .5\n"),
         "a 380:50\nb 380:100\n\n"},
        {chart, cgats("SAMPLE_ID", "2\n10\n") + cgats("SAMPLE_ID", "9\n"), "2\n9\n10\n\n"},
        {chart, "\xEF\xBB\xBF {\"readings\": [{\"name\": \"A1\"}]}", "A1\n\n"},
        {reference, header, " has no patches; add a line for each below the header"},
        {reference, "name;L*;a*;b*\nA1;1;2;3\n", ", line 1: the fields are separated by semicolons; "},
        {chart, "\"name\"\tL*\n\"A,1\"\t2\n", ", line 1: the fields are separated by tabs; "},
        {reference, header + "A1,1,2,3\n\nA2,1,2\n", ", line 4: the number of fields is 3, "},
        {chart, header + "\"A\n1\",1,2,3,4\n", ", line 2: the number of fields is 5, but the header has 4; "},
        {chart, header + "A1,1,2,3\n,,,\n", ", line 3: all fields are empty; "},
        {chart, "A1,1,2,3\nA2,1,2,3\n", ", line 1: the header "},
        {reference, "name,L,a,c\n", ", line 1: the header "},
        {chart, "name,L*,L*\nA1,1,2\n", ", line 1: \"L*\" duplicates an earlier column; "},
        {reference, header + "A1,1,2,\n", ", line 2: \"\" is not a number"},
        {reference, header + "A1,,,\n", ", line 2: \"A1\" has no L*, a* and b*; "},
        {reference, header + "A1,1,\"2,5\",3\n", ", line 2: \"2,5\" is not a number"},
        {reference, header + "A1,1,2,500.1\n", ", line 2: 500.1 is out of range; "},
        {reference, header + "A1,nan,2,3\n", ", line 2: \"nan\" is not a number"},
        {chart, "name,nm380_percent\nA1,4e38\n", ", line 2: \"4e38\" is not a number"},
        {reference, header + "A1,1,2,3\nA1,1,2,3\n", ", line 3: duplicate patch name \"A1\"; "},
        {chart, header + "\"A1,1,2,3\n\n", ", line 2: a quote is not closed; "},
        {reference, header + "\"A1\" red,1,2,3\n", ", line 2: text follows a closing quote; "},
        {chart, "\xFF\xFEn\0a\0"s, " is UTF-16; save it as UTF-8"},
        {chart, "name\nA\0"s, ", line 2, byte 2: a NUL byte"},
        {chart, "name\nA1\ngr\xFCn\n", ", line 3, byte 3: this is not UTF-8 (0xFC); save it as UTF-8"},
        {chart, "name\n\xC1\x81\n", ", line 2, byte 1: "},
        {chart, "name\n\xE0\x9F\xBF\n", ", line 2, byte 1: "},
        {chart, "name\n\xED\xA0\x80\n", ", line 2, byte 1: "},
        {chart, "name\n\xF4\x90\x80\x80\n", ", line 2, byte 1: "},
        {chart, "name\n\xE2\x82", ", line 2, byte 1: "},
        {chart, "\xEF\xBB\xBFname\n\xF0\x9F\x8E\xA8\xED\x9F\xBF\x80", ", line 2, byte 8: "},
        {chart, cgats("SAMPLE_ID LAB_L", "A1 1 2\n"), ", line 7: the number of fields is 3, "},
        {chart, "CGATS.17\nBEGIN_DATA\nA1 1\n", " is incomplete: END_DATA is missing"},
        {chart, "CGATS.17\nBEGIN_DATA\nA1 1\nEND_DATA\n", ", line 2: the header "},
        {chart, "{\"name\": 1}", " is not JSON written by spm: "},
        {reference, R"({"readings": [{"name": "A1"}]})", ", reading 1: \"A1\" has no L*, a* and b*; "},
    };
    const TempFolder folder;
    for (const auto& [kind, content, expected] : cases) {
        writeFile(folder / "file", content);
        const std::string actual = outcome(folder / "file", kind);
        EXPECT_TRUE(actual.starts_with(expected)) << content << actual;
    }
}
