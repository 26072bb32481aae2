// Does one of two things so many times, for counting the instructions that it takes: a row of 24 patches read over an
// SDK library that does nothing, or a line written to the log through the hub.
// Use: instructions read|log TIMES

#include "cap/CAPLoggingFile.h"
#include "cap/CAPLoggingHandler.h"
#include "module/SPM.h"

#include <array>
#include <cstdlib>
#include <string_view>

namespace {

bool readRows(long times) {
    SPM_HANDLE const handle = SPM_create();
    if (!SPM_open(handle, "USB")) return false;
    std::array<SPM_LAB, 24> values{};
    for (long i = 0; i < times; ++i) {
        std::int32_t count = values.size();
        if (!SPM_read(handle, values.data(), &count) || count != 24) return false;
    }
    SPM_destroy(handle);
    return true;
}

bool logLines(long times) {
    CAPLoggingFile file;
    CAPLoggingHandler hub;
    file.OpenFile("/dev/null", "a");
    hub.AddListener(&file);
    for (long i = 0; i < times; ++i) {
        hub.Log(CAPLevel::error, 7, "open[%s] failed", "USB");
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string_view what = argv[1];
    const long times = std::strtol(argv[2], nullptr, 10);
    if (what == "read") return readRows(times) ? 0 : 1;
    if (what == "log") return logLines(times) ? 0 : 1;
    return 2;
}
