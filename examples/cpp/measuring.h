// A row of six patches and the spectrum of one more, measured on the first instrument.
#pragma once

#include "module.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <thread>
#include <vector>

inline constexpr std::int32_t patches = 6;

inline void waitAMoment() {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

inline void calibrate(const Spectrophotometer& spm) {
    SPM_CALIBRATION dialogue{};
    dialogue.step = SPM_STEP_BEGIN;
    spm.calibrate(spm.handle(), &dialogue);
    std::puts("Place the instrument on its white reference and press the button.");
    while (dialogue.step == SPM_STEP_CONTINUE) {
        waitAMoment();
        spm.calibrate(spm.handle(), &dialogue);
    }
    if (dialogue.step != SPM_STEP_DONE) throw std::runtime_error("calibrating failed");
}

/// Calls SPM_read or SPM_readSpectrum until the button was pressed, and makes sure that all patches were measured.
template <class Read, class Record>
void measure(const Spectrophotometer& spm, Read read, std::vector<Record>& records) {
    const auto wanted = static_cast<std::int32_t>(records.size());
    std::int32_t count = 0;
    while (count == 0) {
        waitAMoment();
        count = wanted;
        if (!read(spm.handle(), records.data(), &count)) throw std::runtime_error("measuring failed");
        if (count == 0 && !spm.isOpened(spm.handle())) throw std::runtime_error("the connection was lost");
    }
    if (count < wanted) throw std::runtime_error("not all patches of the row were found");
}

inline void measureAll(const Spectrophotometer& spm) {
    if (!spm.open(spm.handle(), "USB")) {
        throw std::runtime_error("the instrument could not be opened; is it connected?");
    }
    calibrate(spm);

    std::puts("Press the button and slide the instrument along the row.");
    std::vector<SPM_LAB> row(patches);
    measure(spm, spm.read, row);
    for (const SPM_LAB& value : row) {
        std::printf("L* %6.2f  a* %6.2f  b* %6.2f\n", value.L, value.a, value.b);
    }

    std::puts("Place the instrument on a patch and press the button.");
    std::vector<SPM_REFLECTION> points(static_cast<std::size_t>(spm.numberOfReflections(spm.handle())));
    std::vector<SPM_SPECTRUM> spectra{{static_cast<std::int32_t>(points.size()), points.data()}};
    measure(spm, spm.readSpectrum, spectra);
    for (const SPM_REFLECTION& point : points) {
        std::printf("%d nm %6.2f %%\n", point.wavelength, point.value);
    }
}
