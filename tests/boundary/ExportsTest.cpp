#include "tests/boundary/ModuleTest.h"

#include <cstddef>
#include <type_traits>

// The layouts that hosts rely on.
static_assert(sizeof(SPM_OPTIONS) == 12 && offsetof(SPM_OPTIONS, illumination) == 4 &&
              offsetof(SPM_OPTIONS, auxiliary) == 8);
static_assert(sizeof(SPM_STATUS) == 12 && offsetof(SPM_STATUS, illumination) == 4 &&
              offsetof(SPM_STATUS, auxiliary) == 8);
static_assert(sizeof(SPM_OPTION_MASKS) == 20 && offsetof(SPM_OPTION_MASKS, illuminationMask) == 4 &&
              offsetof(SPM_OPTION_MASKS, auxiliaryMask) == 8 && offsetof(SPM_OPTION_MASKS, modeMask) == 12 &&
              offsetof(SPM_OPTION_MASKS, referenceMask) == 16);
static_assert(sizeof(SPM_CALIBRATION) == 20 && offsetof(SPM_CALIBRATION, illumination) == 4 &&
              offsetof(SPM_CALIBRATION, auxiliary) == 8 && offsetof(SPM_CALIBRATION, reference) == 12 &&
              offsetof(SPM_CALIBRATION, step) == 16);
static_assert(sizeof(SPM_LAB) == 12 && offsetof(SPM_LAB, a) == 4 && offsetof(SPM_LAB, b) == 8);
static_assert(sizeof(SPM_REFLECTION) == 8 && offsetof(SPM_REFLECTION, value) == 4);
static_assert(alignof(SPM_SPECTRUM) == 1 && alignof(SPM_TEXT) == 1 && alignof(SPM_VERSION) == 1);
static_assert(sizeof(SPM_SPECTRUM) == 12 && offsetof(SPM_SPECTRUM, reflections) == 4);
static_assert(sizeof(SPM_TEXT) == 12 && offsetof(SPM_TEXT, text) == 4);
static_assert(sizeof(SPM_VERSION) == 16 && offsetof(SPM_VERSION, type) == 4);

// The pointer types are those of the functions.
#define SAME_TYPE(name) static_assert(std::is_same_v<decltype(&SPM_##name), SPM_##name##_t>)
SAME_TYPE(create);
SAME_TYPE(destroy);
SAME_TYPE(open);
SAME_TYPE(close);
SAME_TYPE(isOpened);
SAME_TYPE(calibrate);
SAME_TYPE(isCalibrated);
SAME_TYPE(getStatus);
SAME_TYPE(getNumberOfReflections);
SAME_TYPE(read);
SAME_TYPE(readSpectrum);
SAME_TYPE(setOptions);
SAME_TYPE(getOptionMasks);
SAME_TYPE(getVersion);
SAME_TYPE(getMinorVersion);
SAME_TYPE(getType);

namespace {

class Exports : public ModuleTest {};

} // namespace

TEST_F(Exports, TellTheVersion) {
    EXPECT_EQ(module.getVersion(nullptr), 3U);
    EXPECT_EQ(module.getMinorVersion(), 0U);
    std::string buffer(16, 'x');
    SPM_VERSION version{99, {16, buffer.data()}};
    EXPECT_EQ(module.getVersion(&version), 3U);
    EXPECT_EQ(version.version, 3U);
    EXPECT_EQ(buffer, std::string(1, '\0') + std::string(15, 'x'));
}

TEST_F(Exports, GiveAnEmptyTypeText) {
    std::string buffer = "xxxx";
    SPM_TEXT text{4, buffer.data()};
    module.getType(&text);
    EXPECT_EQ(buffer, std::string("\0xxx", 4));
    module.getType(nullptr);
}

TEST_F(Exports, GiveOptionsAndConstants) {
    const SPM_OPTION_MASKS masks = module.getOptionMasks(handle);
    EXPECT_EQ((std::array{masks.apertureMask, masks.illuminationMask, masks.auxiliaryMask, masks.modeMask,
                          masks.referenceMask}),
              (std::array<uint32_t, 5>{0, 0, 0, 3, 1}));
    EXPECT_EQ(module.getNumberOfReflections(handle), 36);
    const SPM_OPTIONS options{1, 2, 0};
    module.setOptions(handle, &options);
    EXPECT_TRUE(handle->setOptionsByName(nullptr, nullptr, nullptr)) << "both were selected";
    EXPECT_TRUE(takeCalls().empty());
}

TEST_F(Exports, AnswerNullWithTheirFailure) {
    prepare();
    std::array<SPM_LAB, 2> values{};
    std::array<SPM_SPECTRUM, 2> spectra{};
    const SPM_OPTIONS options{};
    SPM_CALIBRATION calibration{9, 9, 9, 9, 0};
    int32_t count = 2;
    EXPECT_FALSE(module.open(nullptr, "USB"));
    EXPECT_FALSE(module.open(handle, nullptr));
    module.close(nullptr);
    EXPECT_FALSE(module.isOpened(nullptr));
    module.calibrate(nullptr, &calibration);
    EXPECT_EQ(calibration.reference, 9U);
    module.calibrate(handle, nullptr);
    EXPECT_FALSE(module.isCalibrated(nullptr));
    EXPECT_EQ(module.getStatus(nullptr).aperture, 0U);
    EXPECT_EQ(module.getNumberOfReflections(nullptr), 0);
    EXPECT_EQ(module.getOptionMasks(nullptr).modeMask, 0U);
    module.setOptions(nullptr, &options);
    module.setOptions(handle, nullptr);
    EXPECT_FALSE(module.read(handle, values.data(), nullptr));
    EXPECT_FALSE(module.readSpectrum(handle, spectra.data(), nullptr));
    for (const bool withHandle : {false, true}) {
        SPM_HANDLE const some = withHandle ? handle : nullptr;
        EXPECT_FALSE(module.read(some, withHandle ? nullptr : values.data(), &count));
        EXPECT_EQ(std::exchange(count, 2), 0);
        EXPECT_FALSE(module.readSpectrum(some, withHandle ? nullptr : spectra.data(), &count));
        EXPECT_EQ(std::exchange(count, 2), 0);
    }
    EXPECT_TRUE(takeCalls().empty());
    EXPECT_TRUE(module.isOpened(handle));
}

TEST_F(Exports, ContainWhatTheListenerThrows) {
    Thrower thrower(1);
    prepare();
    handle->AddListener(&thrower);
    SPM_LAB lab{};
    int32_t count = 1;
    SPM_CALIBRATION calibration{9, 9, 9, 9, 0};
    module.calibrate(handle, &calibration);
    sdk.answer({.times = 0, .result = 9});
    calibration.reference = 8;
    calibration.step = 1;
    module.calibrate(handle, &calibration);
    EXPECT_EQ(calibration.reference, 8U) << "the record stays as it was";
    EXPECT_FALSE(module.read(handle, &lab, &count));
    EXPECT_FALSE(module.open(handle, "USB"));
    module.destroy(std::exchange(handle, module.create()));
    handle->AddListener(&listener);
    sdk.clearAnswers();
    EXPECT_TRUE(module.open(handle, "USB"));
}
