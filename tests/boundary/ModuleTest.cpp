#include "tests/boundary/ModuleTest.h"

#include "tests/support/SimulatorOf.h"

namespace fs = std::filesystem;

fs::path installModule(const TempFolder& folder) {
    for (const char* name : {host::moduleFileName, host::sdkFileName}) {
        fs::copy_file(host::programFolder() / name, folder / name);
    }
    return folder / host::moduleFileName;
}

ModuleTest::ModuleTest() : module(installModule(folder)), sdk(simulatorOf(module)), handle(module.create()) {
    handle->AddListener(&listener);
}

ModuleTest::~ModuleTest() {
    module.destroy(handle);
}

Texts ModuleTest::takeCalls() {
    const std::string prefix = "I1PRO3_";
    Texts texts;
    for (const simulator::Call& call : sdk.calls()) {
        std::string text = call.function.substr(prefix.size());
        for (const std::string& argument : call.arguments) {
            text += " " + argument;
        }
        texts.push_back(text);
    }
    sdk.clearCalls();
    return texts;
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

void ModuleTest::open() {
    ASSERT_TRUE(module.open(handle, "USB"));
    takeCalls();
}

void ModuleTest::prepare() {
    open();
    sdk.use(R"({"button": {"polls": 0}})");
    SPM_CALIBRATION calibration{};
    module.calibrate(handle, &calibration);
    module.calibrate(handle, &calibration);
    ASSERT_EQ(calibration.step, uint32_t{SPM_STEP_DONE});
    takeCalls();
}
