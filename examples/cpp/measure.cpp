// Measures a row of six patches and the spectrum of one more.
// Usage: measure MODULE, the path of the spectrophotometer module. Exit status: 0 if everything was measured.

#include "spectrophotometer.h"

#include <cstdio>
#include <exception>

namespace {

constexpr std::size_t patches = 6;
constexpr std::size_t reflections = 36;
constexpr const char* nothingMeasured = "not measured: the button was not pressed, or no patch found";

/// Repeats an action until it returns true, once the user has pressed the button.
template <class Action>
void withinAMinute(const char* failure, Action action) {
    for (int moment = 0; !action(); ++moment) {
        if (moment == moments_per_minute) throw std::runtime_error(failure);
        wait_a_moment();
    }
}

void calibrate(Spectrophotometer& instrument) {
    SPM_CALIBRATION dialogue{};
    instrument.calibrate(dialogue);
    std::puts("Place the instrument on its white reference and press the button within a minute.");
    withinAMinute("not calibrated: the button was not pressed", [&] {
        instrument.calibrate(dialogue);
        return dialogue.step == SPM_STEP_DONE;
    });
}

void measureRow(Spectrophotometer& instrument) {
    std::puts("Press the button and slide the instrument along the row, within a minute.");
    std::vector<SPM_LAB> values(patches);
    std::int32_t count = 0;
    withinAMinute(nothingMeasured, [&] { return (count = instrument.read(values)) != 0; });
    values.resize(static_cast<std::size_t>(count));
    for (const SPM_LAB& value : values) {
        std::printf("L* %6.2f  a* %6.2f  b* %6.2f\n", value.L, value.a, value.b);
    }
    if (values.size() < patches) throw std::runtime_error("not measured: not all patches of the row were found");
}

void measureSpectrum(Spectrophotometer& instrument) {
    std::puts("Place the instrument on a patch and press the button within a minute.");
    std::vector<SPM_REFLECTION> points(reflections);
    std::vector<SPM_SPECTRUM> spectra{{reflections, points.data()}};
    withinAMinute(nothingMeasured, [&] { return instrument.read(spectra) != 0; });
    for (const SPM_REFLECTION& point : points) {
        std::printf("%d nm %6.2f %%\n", point.wavelength, point.value);
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 2) throw std::runtime_error("usage: measure MODULE");
        Spectrophotometer instrument(path_argument(argv, 1));
        calibrate(instrument);
        measureRow(instrument);
        measureSpectrum(instrument);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "measure: %s\n", error.what());
        return 1;
    }
}
