// A host whose module object lives in a static one: it is destroyed after the static objects of the libraries that were
// created later.

#include "module/SPM.h"

namespace {

class Device {
public:
    Device() = default;
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    ~Device() { SPM_destroy(handle); }
    bool open() { return handle != nullptr && SPM_open(handle, "USB"); }

private:
    SPM_HANDLE handle = SPM_create();
};

Device device;

} // namespace

int main() {
    return device.open() ? 0 : 1;
}
