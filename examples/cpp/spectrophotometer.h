// An instrument. Failures are exceptions with the reason.
#pragma once

#include "library.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <SPM_listener.h>
#include <vector>

/// No instrument was found: ask the user to connect it, and open again.
struct NoInstrument : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Spectrophotometer {
    template <class Function, class... Arguments>
    auto call(const char* name, Arguments... arguments) {
        reason.clear();
        return module.find<Function>(name)(object.get(), arguments...);
    }

public:
    /// Opens the instrument.
    /// @param file  the module; the listener library and the SDK library must be in the same folder
    explicit Spectrophotometer(const std::filesystem::path& file)
        : module(file, "the module"), listener(listenerOf(file), "the listener library") {
        open();
    }

    Spectrophotometer(const Spectrophotometer&) = delete; // the subscription has the address of `reason`

    /// Opens the instrument again, for instance after its cable was pulled; calibrate it afterwards. Uses a new
    /// module object each time: one that can't close its connection can't open another, and doesn't say why.
    void open() {
        subscription.reset(); // before its object
        object.reset(module.find<SPM_create_t>("SPM_create")(), closeAndDestroy());
        subscription.reset(listener.find<SPM_subscribe_t>("SPM_subscribe")(object.get(), keepReason, &reason),
                           listener.find<SPM_unsubscribe_t>("SPM_unsubscribe"));
        if (subscription == nullptr) throw std::bad_alloc();
        if (call<SPM_open_t>("SPM_open", "USB")) return;
        if (reason.empty()) throw NoInstrument("not opened: no instrument was found");
        throw failure("not opened", reason);
    }

    /// Takes one step of the calibration dialogue. Begin with a `step` of SPM_STEP_BEGIN, and repeat the call while it
    /// is SPM_STEP_CONTINUE.
    void calibrate(SPM_CALIBRATION& dialogue) {
        call<SPM_calibrate_t>("SPM_calibrate", &dialogue);
        if (dialogue.step == SPM_STEP_NOTHING) throw failure("not calibrated", "the connection was lost");
    }

    /// Measures a spot or, with more than one record, a row, if the button is pressed.
    /// @return the number of patches measured; 0 while the button is not pressed
    std::int32_t read(std::vector<SPM_LAB>& values) { return measure<SPM_read_t>("SPM_read", values); }
    std::int32_t read(std::vector<SPM_SPECTRUM>& spectra) {
        return measure<SPM_readSpectrum_t>("SPM_readSpectrum", spectra);
    }

private:
    static std::filesystem::path listenerOf(const std::filesystem::path& file) {
        return (std::filesystem::path(file).replace_extension() += "_listener") += file.extension();
    }

    template <class Function, class Record>
    std::int32_t measure(const char* name, std::vector<Record>& records) {
        auto count = static_cast<std::int32_t>(records.size());
        if (!call<Function>(name, records.data(), &count)) throw failure("not measured", "no reason given");
        if (count == 0 && !call<SPM_isOpened_t>("SPM_isOpened"))
            throw failure("not measured", "the connection was lost");
        return count;
    }

    std::function<void(SPM_HANDLE)> closeAndDestroy() const {
        const auto close = module.find<SPM_close_t>("SPM_close");
        const auto destroy = module.find<SPM_destroy_t>("SPM_destroy");
        return [=](SPM_HANDLE handle) { close(handle), destroy(handle); };
    }

    /// Called by the listener library, which ignores exceptions.
    static void keepReason(void* reason, std::int32_t level, std::int32_t /*moduleNumber*/,
                           std::int32_t /*errorNumber*/, const char* text, const char* detail) {
        if (level == 0) *static_cast<std::string*>(reason) = text + (*detail != '\0' ? std::string(" ") + detail : "");
    }

    std::runtime_error failure(const std::string& what, const std::string& defaultReason) const {
        return std::runtime_error(what + ": " + (reason.empty() ? defaultReason : reason));
    }

    Library module;
    Library listener;
    std::string reason; // the module's last error message
    std::shared_ptr<IScmSPM> object;
    std::shared_ptr<SPM_SUBSCRIPTION> subscription; // ends before the object
};
