#include "spm/Instrument.h"

#include "spm/Error.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace spm {

void ErrorListener::HandleMessage(ICAPLoggingSource* /*source*/, const ICAPLoggingMessage& message) {
    last = message.GetText();
    if (!message.GetDetail().empty()) last += "; " + message.GetDetail();
}

std::string ErrorListener::take(const std::string& fallback) {
    const std::string text = std::exchange(last, {});
    return text.empty() ? fallback : text;
}

Instrument::Instrument(const Module& loaded) : module(loaded), handle(loaded.create()) {
    if (handle == nullptr) throw Error("the module object could not be created: out of memory");
    handle->AddListener(&listener);
    if (module.open(handle, "USB")) return;
    const std::string reason = listener.take("");
    module.destroy(handle);
    if (reason.empty()) throw Error("no instrument was found", module.instrumentAdvice());
    throw Error("the instrument could not be opened: " + reason);
}

Instrument::~Instrument() {
    module.close(handle);
    module.destroy(handle);
}

std::string Instrument::illumination() const {
    // The status counts the list's entries from 1; 0 is none.
    return handle->getIllumination(static_cast<std::int32_t>(module.getStatus(handle).illumination) - 1);
}

void Instrument::calibrate(const Wait& wait) {
    SPM_CALIBRATION dialogue{};
    dialogue.step = SPM_STEP_BEGIN;
    module.calibrate(handle, &dialogue);
    while (dialogue.step == SPM_STEP_CONTINUE) {
        wait();
        module.calibrate(handle, &dialogue);
    }
    if (dialogue.step != SPM_STEP_DONE) {
        throw Error("calibrating failed: " + listener.take("the connection to the instrument was lost"));
    }
}

std::vector<Reading> Instrument::read(std::int32_t patches, const Conditions& conditions, const Wait& wait) {
    std::vector<Reading> readings =
        conditions.isCalculated ? readSpectra(patches, conditions, wait) : readLab(patches, wait);
    for (const auto& [lab, spectrum] : readings) {
        if (!std::isfinite(lab.L + lab.a + lab.b)) throw Error("measuring failed: a value is not a number");
    }
    return readings;
}

std::vector<Reading> Instrument::readLab(std::int32_t patches, const Wait& wait) {
    std::vector<SPM_LAB> values(static_cast<std::size_t>(patches));
    values.resize(poll([&](std::int32_t* count) { return module.read(handle, values.data(), count); }, patches, wait));
    std::vector<Reading> readings(values.size());
    std::ranges::transform(values, readings.begin(), [](const SPM_LAB& lab) { return Reading{lab}; });
    return readings;
}

std::vector<Reading> Instrument::readSpectra(std::int32_t patches, const Conditions& conditions, const Wait& wait) {
    const auto points = static_cast<std::size_t>(module.getNumberOfReflections(handle));
    std::vector<Reading> readings(static_cast<std::size_t>(patches));
    std::vector<SPM_SPECTRUM> records;
    for (Reading& reading : readings) {
        reading.spectrum.resize(points);
        records.push_back({static_cast<std::int32_t>(points), reading.spectrum.data()});
    }
    readings.resize(
        poll([&](std::int32_t* count) { return module.readSpectrum(handle, records.data(), count); }, patches, wait));
    for (Reading& reading : readings) {
        reading.lab = toLab(reading.spectrum, conditions);
    }
    return readings;
}

std::size_t Instrument::poll(const std::function<bool(std::int32_t*)>& readOnce, std::int32_t patches,
                             const Wait& wait) {
    for (;;) {
        std::int32_t count = patches;
        if (!readOnce(&count)) throw Error("measuring failed: " + listener.take("the module gave no reason"));
        if (count > 0) return static_cast<std::size_t>(count);
        if (!module.isOpened(handle)) throw Error("measuring failed: the connection to the instrument was lost");
        wait();
    }
}

} // namespace spm
