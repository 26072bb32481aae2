#pragma once

#include "simulator/Backend.h"
#include "simulator/Instrument.h"

#include <memory>

namespace simulator {

/// The simulated instruments, and what the SDK library has beside them.
class Model : public Backend {
public:
    explicit Model(LastError& common) : lastError(common) {}

    /// Attaches the instruments of a script in place of the ones before.
    /// @param script  read by the instruments for as long as they live
    void attach(const Script& script);
    /// Takes all instruments away.
    void unplug() { isUnplugged = true; }

    /// Sees each call, also one that a fault answers: the person at the button presses it again for the next.
    void notice(const Request& request);
    Reply answer(const Request& request) override;

private:
    Instrument* find(const Request& request) const;
    Instrument& instrumentOf(const Request& request) const;
    Reply listDevices() const;
    Reply globalOption(const Request& request) const;
    void setGlobalOption(const std::string& key, const std::string& value);
    Reply tristimulus(const Request& request) const;
    Reply spectrum(const Request& request) const;

    LastError& lastError;
    const Weights d65TenDegree = parseWeights(d65TenDegreeCsv);
    std::vector<std::unique_ptr<Instrument>> instruments;
    bool isUnplugged = false;
};

} // namespace simulator
