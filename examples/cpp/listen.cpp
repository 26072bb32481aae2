// Measures like measure.cpp, and tells why something failed in the instrument's own words. The listener is a C++ class
// that the module calls: this program must be built with the module's compiler.
// Use: listen MODULE, the path of the spectrophotometer module. Exit status 0 when all was measured.

#include "measuring.h"

#include <exception>
#include <IScmSPM.h>

namespace {

class ErrorPrinter : public ICAPLoggingListener {
public:
    void HandleMessage(ICAPLoggingSource* /*source*/, const ICAPLoggingMessage& message) override {
        if (message.GetLevel() == CAPLevel::error) std::fprintf(stderr, "%s\n", message.ToString().c_str());
    }
};

} // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 2) throw std::runtime_error("use: listen MODULE");
        ErrorPrinter printer; // lives longer than the object that it listens to
        const Module module(argv[1]);
        const Spectrophotometer spm(module);
        spm.handle()->AddListener(&printer);
        measureAll(spm);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "listen: %s\n", error.what());
        return 1;
    }
}
