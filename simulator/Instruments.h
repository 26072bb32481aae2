#pragma once

#include "simulator/Call.h"
#include "simulator/Instrument.h"

#include <memory>
#include <string>
#include <vector>

namespace simulator {

/// The simulated instruments and the SDK library's global options.
class Instruments {
public:
    /// Replaces all instruments by those of the script.
    /// @param script  must outlive the instruments
    void attach(const Script& script);
    /// Unplugs all instruments, which lose their connection and calibration, or plugs them in again.
    void setUnplugged(bool areUnplugged);

    Answer answer(const Call& call);

    /// Lets the simulated user press the button again. To be called for every call, including those that a fault
    /// answers: the user acts whether the call succeeds or not.
    void rearmButton(const Call& call);

    /// Stores the error of a failed call as the last error. Failures of I1PRO3_GetGlobalOption, which reads the last
    /// error, are not stored.
    void storeError(const Call& call, const Answer& answer);
    void clearError() { lastError = {}; }

private:
    Answer perform(const Call& call);
    Instrument* find(const Call& call) const;
    Instrument& instrumentOf(const Call& call) const;
    Answer listDevices() const;
    Answer globalOption(const Call& call) const;
    void setGlobalOption(const Call& call);
    Answer tristimulus(const Call& call) const;
    Answer spectrum(const Call& call) const;

    const Weights d65TenDegree = parseWeights(d65TenDegreeCsv);
    std::vector<std::unique_ptr<Instrument>> instruments;
    bool isUnplugged = false;
    LastError lastError;
};

} // namespace simulator
