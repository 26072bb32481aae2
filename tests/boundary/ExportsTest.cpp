#include "tests/boundary/ModuleTest.h"

using Exports = ModuleTest;

TEST_F(Exports, ReturnVersionAndType) {
    EXPECT_EQ(module.getVersion(nullptr), MODULE_VERSION);
    EXPECT_EQ(module.getMinorVersion(), 0U);
    std::string buffer = "xxxx";
    SPM_VERSION version{99, {4, buffer.data()}};
    EXPECT_EQ(module.getVersion(&version), MODULE_VERSION);
    EXPECT_EQ(version.version, MODULE_VERSION);
    EXPECT_EQ(buffer, std::string("\0xxx", 4));
    buffer = "yyyy";
    module.getType(&version.type);
    EXPECT_EQ(buffer, std::string("\0yyy", 4));
    module.getType(nullptr);
}

TEST_F(Exports, ReturnOptionMasksAndConstants) {
    const SPM_OPTION_MASKS masks = module.getOptionMasks(handle);
    EXPECT_EQ((std::array{masks.apertureMask, masks.illuminationMask, masks.auxiliaryMask, masks.modeMask,
                          masks.referenceMask}),
              (std::array<uint32_t, 5>{0, 0, 0, 3, 1}));
    EXPECT_EQ(module.getNumberOfReflections(handle), 36);
    const SPM_OPTIONS options{1, 2, 0};
    module.setOptions(handle, &options);
    EXPECT_TRUE(handle->setOptionsByName(nullptr, nullptr, nullptr)) << "aperture and illumination are selected";
    EXPECT_TRUE(sdk.takeCalls().empty());
}

TEST_F(Exports, RejectNullArguments) {
    openAndCalibrate();
    SPM_LAB value{};
    SPM_SPECTRUM spectrum{};
    const SPM_OPTIONS options{};
    SPM_CALIBRATION calibration{9, 9, 9, 9, 0};
    int32_t count = 2;
    EXPECT_FALSE(module.open(nullptr, "USB"));
    EXPECT_FALSE(module.isOpened(nullptr) || module.isCalibrated(nullptr));
    module.close(nullptr);
    module.calibrate(nullptr, &calibration);
    module.calibrate(handle, nullptr);
    EXPECT_EQ(calibration.reference, 9U);
    EXPECT_EQ(module.getStatus(nullptr).aperture, 0U);
    EXPECT_EQ(module.getNumberOfReflections(nullptr), 0);
    EXPECT_EQ(module.getOptionMasks(nullptr).modeMask, 0U);
    module.setOptions(nullptr, &options);
    module.setOptions(handle, nullptr);
    EXPECT_FALSE(module.read(handle, &value, nullptr) || module.readSpectrum(handle, &spectrum, nullptr));
    EXPECT_FALSE(module.read(nullptr, &value, &count));
    EXPECT_EQ(std::exchange(count, 2), 0);
    EXPECT_TRUE(sdk.takeCalls().empty());
    EXPECT_TRUE(module.isOpened(handle));
    EXPECT_TRUE(module.open(handle, nullptr));
    EXPECT_EQ(log().back(), "M7 D: open[] done");
}

TEST_F(Exports, CatchExceptionsOfListeners) {
    ThrowingListener thrower(1);
    openAndCalibrate();
    SPM_CALIBRATION calibration{9, 9, 9, 9, SPM_STEP_BEGIN};
    module.calibrate(handle, &calibration);
    handle->AddListener(&thrower);
    sdk.use(R"({"faults": [{"times": "always", "result": 9}]})");
    calibration.reference = 8;
    module.calibrate(handle, &calibration);
    EXPECT_EQ(calibration.reference, 8U) << "the record is unchanged";
    EXPECT_FALSE(module.open(handle, "USB"));
    module.destroy(std::exchange(handle, nullptr));
}
