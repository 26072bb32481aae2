#include "module/Device.h"
#include "module/SPM_BASE.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

class Base : public testing::Test {
protected:
    Settings settings;
    std::unique_ptr<SPM_BASE> module = createDevice();
};

/// The values, then the indexes of aperture, auxiliary and illumination.
std::vector<std::int64_t> numbersOf(const SPM_OPTIONS_EX& options) {
    return {options.aperture,      options.illumination,   options.auxiliary,
            options.apertureIndex, options.auxiliaryIndex, options.illuminationIndex};
}

/// The place of a virtual operation in the table that the handle points to, by the C++ binary interface that GCC and
/// Clang share: a pointer to a virtual member holds its offset plus one.
template <class Operation>
std::size_t slotOf(Operation operation) {
    std::uintptr_t offset = 0;
    std::memcpy(&offset, &operation, sizeof offset);
    return (offset - 1) / sizeof(void*);
}

} // namespace

// The destructor takes the slots 0 and 1, AddListener and RemoveListener the slots 5 and 6.
TEST(Interface, KeepsTheOrderOfItsOperations) {
    EXPECT_EQ(slotOf(&IScmSPM::HandleMessage), 2U);
    EXPECT_EQ(slotOf(&IScmSPM::Dispatch), 3U);
    EXPECT_EQ(slotOf(&IScmSPM::LogMessage), 4U);
    const std::vector<std::size_t> slots{
        slotOf(&IScmSPM::getName),
        slotOf(&IScmSPM::getDeviceFlag),
        slotOf(&IScmSPM::isModeSupported),
        slotOf(&IScmSPM::isReferenceSupported),
        slotOf(&IScmSPM::getNumberOfApertures),
        slotOf(&IScmSPM::getAperture),
        slotOf(&IScmSPM::hasApertureChoice),
        slotOf(&IScmSPM::getNumberOfAuxiliaries),
        slotOf(&IScmSPM::getAuxiliary),
        slotOf(&IScmSPM::hasAuxiliaryChoice),
        slotOf(&IScmSPM::getNumberOfIlluminations),
        slotOf(&IScmSPM::getIllumination),
        slotOf(&IScmSPM::hasIlluminationChoice),
        slotOf(&IScmSPM::getNumberOfReferences),
        slotOf(&IScmSPM::getReference),
        slotOf(&IScmSPM::getNumberOfModes),
        slotOf(&IScmSPM::getMode),
        slotOf(&IScmSPM::getNumberOfDevices),
        slotOf(&IScmSPM::getDevice),
        slotOf(&IScmSPM::open),
        slotOf(&IScmSPM::close),
        slotOf(&IScmSPM::isOpened),
        slotOf(&IScmSPM::setOptionsByName),
        slotOf(&IScmSPM::getStatus),
        slotOf(&IScmSPM::isCalibrated),
        slotOf(&IScmSPM::calibrate),
        slotOf(&IScmSPM::getNumberOfReflections),
        slotOf(&IScmSPM::readSpectrum),
        slotOf(&IScmSPM::read),
        slotOf(&SPM_BASE::setOptions),
    };
    for (std::size_t i = 0; i < slots.size(); ++i) {
        EXPECT_EQ(slots[i], 7 + i);
    }
}

TEST_F(Base, DescribesTheInstrument) {
    EXPECT_STREQ(module->getName(), "xrite i1 Pro3");
    EXPECT_FALSE(module->getDeviceFlag());
    EXPECT_EQ(module->getNumberOfApertures(), 1U);
    EXPECT_EQ(module->getNumberOfAuxiliaries(), 0U);
    EXPECT_EQ(module->getNumberOfIlluminations(), 2U);
    EXPECT_EQ(module->getNumberOfReferences(), 1U);
    EXPECT_EQ(module->getNumberOfModes(), 2U);
    EXPECT_EQ(module->getNumberOfDevices(), 1U);
    EXPECT_STREQ(module->getAperture(0), "4.5 mm");
    EXPECT_STREQ(module->getAperture(1), "");
    EXPECT_STREQ(module->getAperture(-1), "");
    EXPECT_STREQ(module->getAuxiliary(0), "");
    EXPECT_STREQ(module->getIllumination(0), "UV Included");
    EXPECT_STREQ(module->getIllumination(1), "UV Excluded");
    EXPECT_STREQ(module->getReference(0), "White Reference");
    const SPM_MODE& scan = *module->getMode(0);
    const SPM_MODE& spot = *module->getMode(1);
    EXPECT_EQ(std::tuple(scan.mode, scan.first, scan.second, scan.third, scan.fourth),
              std::tuple(2U, 10.0F, 20.0F, 22U, 10U));
    EXPECT_EQ(std::tuple(spot.mode, spot.first, spot.second, spot.third, spot.fourth),
              std::tuple(1U, 16.0F, 16.0F, 10U, 10U));
    EXPECT_EQ(module->getMode(2), &scan);
    EXPECT_EQ(module->getMode(-1), &scan);
    EXPECT_FALSE(module->hasApertureChoice() || module->hasAuxiliaryChoice() || module->hasIlluminationChoice());
    EXPECT_TRUE(module->isModeSupported(0) && module->isModeSupported(3));
    EXPECT_FALSE(module->isModeSupported(4) || module->isModeSupported(5));
    EXPECT_TRUE(module->isReferenceSupported(1));
    EXPECT_FALSE(module->isReferenceSupported(2));
}

TEST_F(Base, SelectsOptionsByValue) {
    struct Case {
        SPM_OPTIONS options;
        bool valid;
        std::vector<std::int64_t> current;
    };
    const std::vector<Case> cases{
        {{0, 0, 0}, false, {0, 0, 0, -1, -1, -1}}, {{1, 7, 0}, false, {1, 0, 0, 0, -1, -1}},
        {{1, 2, 0}, true, {1, 2, 0, 0, -1, 1}},    {{1, 7, 0}, true, {1, 2, 0, 0, -1, 1}},
        {{9, 1, 9}, true, {1, 1, 0, 0, -1, 0}},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(module->setOptions(SPM_OPTIONS_EX(each.options)), each.valid);
        EXPECT_EQ(numbersOf(module->getCurrentOptions()), each.current);
    }
}

TEST_F(Base, PrefersAnIndexToAValue) {
    SPM_OPTIONS_EX options(SPM_OPTIONS{7, 1, 0});
    options.apertureIndex = 0;
    options.illuminationIndex = 1;
    EXPECT_TRUE(module->setOptions(options));
    EXPECT_EQ(numbersOf(module->getCurrentOptions()), (std::vector<std::int64_t>{1, 2, 0, 0, -1, 1}));
    options.illuminationIndex = 2;
    EXPECT_TRUE(module->setOptions(options));
    EXPECT_EQ(numbersOf(module->getCurrentOptions()), (std::vector<std::int64_t>{1, 1, 0, 0, -1, 0}));
}

TEST_F(Base, SelectsOptionsByName) {
    EXPECT_FALSE(module->setOptionsByName("4.5 MM", nullptr, "UV Excluded"));
    EXPECT_TRUE(module->setOptionsByName("4.5 mm", nullptr, nullptr));
    EXPECT_EQ(numbersOf(module->getCurrentOptions()), (std::vector<std::int64_t>{1, 2, 0, 0, -1, 1}));
    EXPECT_TRUE(module->setOptionsByName(nullptr, "none", "uv included"));
    EXPECT_EQ(module->getCurrentOptions().illumination, 2U);
}

TEST_F(Base, CreatesItsKeysAndReadsTheDeviceAnew) {
    EXPECT_EQ(settings.keys(), (std::vector<std::string>{"Kestrova", commonKey, deviceKey}));
    EXPECT_FALSE(settings.hasValues());
    for (const char* configured : {"USB", "usb", "COM1", ""}) {
        settings.setText("Device", configured);
        EXPECT_STREQ(module->getDevice(-1), "USB");
    }
    EXPECT_STREQ(module->getDevice(0), "USB");
    EXPECT_STREQ(module->getDevice(5), "USB");
}

namespace {

/// A device class with two connections, and with the record resolution opened up.
class TwoConnections : public SPM_BASE {
public:
    TwoConnections() : SPM_BASE("two connections", true) {
        devices = {"USB", "USB2"};
        auxiliaries = {{"Filter", 2}, {"No Filter", 4}};
        references = {{"White", 4}};
    }
    using SPM_BASE::resolved;

    bool open(const char* /*device*/) override { return false; }
    void close() override {}
    bool isOpened() override { return false; }
    SPM_OPTIONS_EX getStatus() override { return {}; }
    bool isCalibrated() override { return false; }
    SPM_CALIBRATION_EX calibrate(const SPM_CALIBRATION_EX& request) override { return request; }
    std::int32_t getNumberOfReflections() const override { return 0; }
    bool readSpectrum(SPM_SPECTRUM* /*spectra*/, std::int32_t* /*count*/) override { return true; }
    bool read(SPM_LAB* /*values*/, std::int32_t* /*count*/) override { return true; }
};

} // namespace

TEST_F(Base, TakesTheConfiguredDeviceOfSeveral) {
    const TwoConnections two;
    EXPECT_STREQ(two.getDevice(-1), "USB");
    settings.set("Kestrova\\SPM\\two connections", "Device", REG_SZ, std::string("USB2\0", 5));
    EXPECT_STREQ(two.getDevice(-1), "USB2");
    EXPECT_STREQ(two.getDevice(2), "USB");
}

TEST_F(Base, SelectsFromAnAuxiliaryList) {
    TwoConnections two;
    EXPECT_FALSE(two.setOptions(SPM_OPTIONS_EX(SPM_OPTIONS{1, 1, 3})));
    EXPECT_TRUE(two.setOptionsByName(nullptr, "No Filter", nullptr));
    EXPECT_EQ(numbersOf(two.getCurrentOptions()), (std::vector<std::int64_t>{0, 0, 4, -1, 1, -1}));
    EXPECT_TRUE(two.setOptions(SPM_OPTIONS_EX(SPM_OPTIONS{1, 1, 2})));
    EXPECT_EQ(numbersOf(two.getCurrentOptions()), (std::vector<std::int64_t>{0, 0, 2, -1, 0, -1}));
    EXPECT_STREQ(two.getAuxiliary(1), "No Filter");
}

TEST_F(Base, ResolvesCalibrationRecords) {
    const TwoConnections two;
    for (const std::uint32_t step : {0U, 4U, 5U, 7U, 0xFFFFFFFFU}) {
        const SPM_CALIBRATION_EX result = two.resolved(SPM_CALIBRATION_EX(SPM_CALIBRATION{1, 1, 1, 4, step}));
        EXPECT_EQ(result.step, step <= 4 ? step : 3) << step;
        EXPECT_EQ(std::tuple(result.aperture, result.illumination, result.auxiliary, result.reference,
                             result.referenceIndex, result.apertureIndex),
                  std::tuple(0U, 0U, 0U, 4U, 0, -1));
    }
}
