// Repeats one operation so that its instructions can be counted: reads a row of 24 patches from a null SDK library, or
// writes a line to the log through the hub.
// Usage: instructions read|readSpectrum|log TIMES

#include "cap/CAPLoggingFile.h"
#include "cap/CAPLoggingHandler.h"
#include "i1pro3/I1PRO3_SDK.h"
#include "module/SPM.h"

#include <array>
#include <cstdlib>
#include <string_view>

namespace {

constexpr std::int32_t patches = 24;

/// Reads rows with SPM_read or SPM_readSpectrum.
template <class Function, class Record>
bool readRows(Function function, std::array<Record, patches>& records, long times) {
    SPM_HANDLE const handle = SPM_create();
    if (!SPM_open(handle, "USB")) return false;
    for (long i = 0; i < times; ++i) {
        std::int32_t count = patches;
        if (!function(handle, records.data(), &count) || count != patches) return false;
    }
    SPM_destroy(handle);
    return true;
}

bool readValues(long times) {
    std::array<SPM_LAB, patches> values{};
    return readRows(SPM_read, values, times);
}

bool readSpectra(long times) {
    std::array<SPM_REFLECTION, I1PRO3_NUMBER_OF_REFLECTIONS> reflections{};
    std::array<SPM_SPECTRUM, patches> spectra{};
    spectra.fill({I1PRO3_NUMBER_OF_REFLECTIONS, reflections.data()});
    return readRows(SPM_readSpectrum, spectra, times);
}

bool logLines(long times) {
    CAPLoggingFile file;
    CAPLoggingHandler hub;
    file.OpenFile("instructions.log", "a");
    hub.AddListener(&file);
    for (long i = 0; i < times; ++i) {
        hub.Log(CAPLevel::error, 7, "open[%s] failed", "USB");
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string_view operation = argv[1];
    const long times = std::strtol(argv[2], nullptr, 10);
    if (operation == "read") return readValues(times) ? 0 : 1;
    if (operation == "readSpectrum") return readSpectra(times) ? 0 : 1;
    if (operation == "log") return logLines(times) ? 0 : 1;
    return 2;
}
