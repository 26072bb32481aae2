#include "tests/boundary/FailOften.h"

#include "tests/support/Support.h"

void letOpeningFail(simulator::Control& sdk) {
    const std::string function = "I1PRO3_GetGlobalOption";
    const std::string number("9\0", 2);
    sdk.answer({.function = "I1PRO3_GetDevices", .times = 0, .result = 9});
    sdk.answer({.function = function, .argument = "LastErrorText", .times = 0, .output = longErrorText});
    sdk.answer({.function = function, .argument = "LastErrorNumber", .times = 0, .output = number});
}

void failOften(const host::Module& module, int times) {
    Recorder listener;
    SPM_HANDLE handle = module.create();
    handle->AddListener(&listener);
    for (int i = 0; i < times; ++i) {
        module.open(handle, "USB");
    }
    module.destroy(handle);
}
