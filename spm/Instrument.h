#pragma once

#include "spm/Module.h"

#include <array>
#include <functional>
#include <vector>

namespace spm {

/// Keeps the text of the last error that the module logged.
class ErrorListener : public ICAPLoggingListener {
public:
    void HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) override;

    /// The text since the last call, or this one when the module logged nothing.
    std::string take(const std::string& otherwise);

private:
    std::string last;
};

/// An instrument, open and closed with the object. Each wait for the user calls back between two looks at the button.
class Instrument {
public:
    /// Which instruments can be used at all, as a text for people.
    static constexpr const char* reach =
        "the module reaches one instrument only, the first that the SDK library lists: how many are connected can't be "
        "told";

    using Wait = std::function<void()>;
    using Spectrum = std::vector<SPM_REFLECTION>;

    /// @throws Error  when the instrument can't be opened
    explicit Instrument(const Module& loaded);
    Instrument(const Instrument&) = delete;
    Instrument& operator=(const Instrument&) = delete;
    ~Instrument();

    /// The model, as the module names it.
    std::string name() const { return handle->getName(); }

    /// The illumination in force, as the module names it; empty when the instrument doesn't answer.
    std::string illumination() const;

    /// Whether it still answers: its options in force can be read.
    bool isAnswering() const { return module.getStatus(handle).aperture != 0; }

    /// Whether it is calibrated, which the instrument can tell only by a trial measurement.
    bool isCalibrated() const { return module.isCalibrated(handle); }

    /// @throws Error  when calibrating fails
    void calibrate(const Wait& wait);

    /// Measures a row of patches (two or more) or a spot (one).
    /// @return as many values as patches were found: at least one, at most those asked for
    /// @throws Error  when measuring fails
    std::vector<SPM_LAB> read(std::int32_t patches, const Wait& wait);

    /// Measures the spectra of a row of patches (two or more) or of a spot (one).
    /// @return as many as patches were found, like read
    /// @throws Error  when measuring fails
    std::vector<Spectrum> readSpectra(std::int32_t patches, const Wait& wait);

private:
    /// Calls one of the module's reads until something was measured.
    /// @return the number of patches measured
    std::int32_t poll(const std::function<bool(std::int32_t*)>& read, std::int32_t patches, const Wait& wait);

    const Module& module;
    ErrorListener listener;
    SPM_HANDLE handle;
};

} // namespace spm
