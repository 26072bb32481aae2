#pragma once

#include "simulator/Call.h"
#include "simulator/Instrument.h"

#include <memory>

namespace simulator {

/// The simulated instruments, and what the SDK library has beside them.
class Instruments {
public:
    /// Attaches a script's instruments in place of the ones before.
    /// @param script  read by the instruments for as long as they live
    void attach(const Script& script);
    /// Takes all instruments away.
    void unplug() { isUnplugged = true; }

    /// Sees each call, also one that a fault answers: the person at the button presses it again for the next.
    void notice(const Call& call);
    Answer answer(const Call& call);

    /// Keeps what a call failed with. That asking for the last failure failed, too, is not kept.
    void keepError(const Call& call, const Answer& answer);
    void clearError() { lastError = {}; }

private:
    Answer perform(const Call& call);
    Instrument* find(const Call& call) const;
    Instrument& instrumentOf(const Call& call) const;
    Answer listDevices() const;
    Answer globalOption(const Call& call) const;
    void setGlobalOption(const std::string& key, const std::string& value);
    Answer tristimulus(const Call& call) const;
    Answer spectrum(const Call& call) const;

    const Weights d65TenDegree = parseWeights(d65TenDegreeCsv);
    std::vector<std::unique_ptr<Instrument>> instruments;
    bool isUnplugged = false;
    ErrorReport lastError;
};

} // namespace simulator
