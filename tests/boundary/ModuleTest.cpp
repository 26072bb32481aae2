#include "tests/boundary/ModuleTest.h"

#include "common/Environment.h"
#include "common/LibraryNames.h"

namespace fs = std::filesystem;

fs::path installModule(const TempFolder& folder) {
    for (const char* name : {common::moduleFileName, common::sdkFileName}) {
        fs::copy_file(common::programFolder() / name, folder / name);
    }
    return folder / common::moduleFileName;
}

ModuleTest::ModuleTest() : module(installModule(folder)), sdk(module), handle(module.create()) {
    handle->AddListener(&listener);
    sdk.use(R"({"button": {"polls": 0}, "light": {"noise": 0}})");
}

ModuleTest::~ModuleTest() {
    module.destroy(handle);
}

Texts ModuleTest::log() const {
    Texts messages;
    for (const std::string& line : linesOf(readText(logFile()))) {
        const std::size_t head = line.find("] M");
        messages.push_back(head == std::string::npos ? line : line.substr(head + 2));
    }
    if (!messages.empty()) messages.erase(messages.begin());
    return messages;
}

void ModuleTest::failNextCall(const std::string& function, int32_t result) {
    sdk.use(R"({"faults": [{"function": "I1PRO3_)" + function + R"(", "result": )" + std::to_string(result) + "}]}");
}

void ModuleTest::open() {
    ASSERT_TRUE(module.open(handle, "USB"));
    sdk.takeCalls();
}

void ModuleTest::openAndCalibrate() {
    open();
    SPM_CALIBRATION calibration{};
    module.calibrate(handle, &calibration);
    module.calibrate(handle, &calibration);
    ASSERT_EQ(calibration.step, uint32_t{SPM_STEP_DONE});
    sdk.takeCalls();
}
