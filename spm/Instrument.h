#pragma once

#include "spm/Module.h"
#include "spm/run/Run.h"

#include <functional>
#include <vector>

namespace spm {

/// Keeps the last error that the module logged: its functions return only success or failure.
class ErrorListener : public ICAPLoggingListener {
public:
    void HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) override;

    /// Returns and clears the last error.
    /// @param fallback  returned if there is none
    std::string take(const std::string& fallback);

private:
    std::string last;
};

/// An open instrument. Calibrating and measuring poll the button until the user has pressed it.
class Instrument {
public:
    /// A note for users with several instruments.
    static constexpr const char* caveat =
        "the module uses the first instrument that the SDK library lists; it can't tell how many are connected";

    /// Called between two polls of the button: sleeps, and may throw to end the wait.
    using Wait = std::function<void()>;

    /// Opens the instrument; the destructor closes it.
    /// @throws Error  if it can't be opened
    explicit Instrument(const Module& loaded);
    Instrument(const Instrument&) = delete;
    Instrument& operator=(const Instrument&) = delete;
    ~Instrument();

    /// The model, as the module names it.
    std::string name() const { return handle->getName(); }

    /// The current illumination, as the module names it; empty if the instrument doesn't respond.
    std::string illumination() const;

    /// The status of an instrument that doesn't respond is all zeros.
    bool isResponding() const { return module.getStatus(handle).aperture != 0; }

    /// Returns and clears the last error that the module logged; the fallback if there is none.
    std::string takeError(const std::string& fallback) { return listener.take(fallback); }

    /// Takes a trial measurement: the SDK library offers no other way to find out.
    bool isCalibrated() const { return module.isCalibrated(handle); }

    /// @throws Error  if the calibration fails
    void calibrate(const Wait& wait);

    /// Measures a row (two or more patches) or a spot (one patch).
    /// @param conditions  decide whether spectra are measured, from which CIELab is calculated
    /// @return a reading for each patch found: at least one, at most the requested number
    /// @throws Error  if the measurement fails, or a value is not finite
    std::vector<Reading> read(std::int32_t patches, const Conditions& conditions, const Wait& wait);

private:
    std::vector<Reading> readLab(std::int32_t patches, const Wait& wait);
    std::vector<Reading> readSpectra(std::int32_t patches, const Conditions& conditions, const Wait& wait);
    /// Calls one of the module's read functions until the button has been pressed and patches have been measured.
    /// @return the number of patches measured
    std::size_t poll(const std::function<bool(std::int32_t*)>& readOnce, std::int32_t patches, const Wait& wait);

    const Module& module;
    ErrorListener listener;
    SPM_HANDLE handle;
};

} // namespace spm
