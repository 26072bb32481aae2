#include "i1pro3/SPM_i1PRO3.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

/// A device class with two connections and auxiliary options, but without apertures and illuminations. Makes resolved()
/// public.
class TwoConnections : public SPM_i1PRO3 {
public:
    TwoConnections() {
        devices = {"USB", "USB2"};
        apertures = {};
        illuminations = {};
        auxiliaries = {{"Filter", 2}, {"No Filter", 4}};
        references = {{"White", 4}};
        optionMasks = {1, 2, 4, 0, 0};
    }
    using SPM_BASE::resolved;
};

class Base : public testing::Test {
protected:
    Settings settings;
    SPM_i1PRO3 instrument;
    SPM_BASE* const module = &instrument;
    TwoConnections two;
};

/// The values of aperture, illumination and auxiliary; then the indexes of aperture, auxiliary and illumination.
std::vector<std::int64_t> numbersOf(const SPM_OPTIONS_EX& options) {
    return {options.aperture,      options.illumination,   options.auxiliary,
            options.apertureIndex, options.auxiliaryIndex, options.illuminationIndex};
}

/// Returns the index of a virtual function in the virtual table. In the C++ ABI of GCC and Clang, a pointer to a
/// virtual member function contains its offset in that table plus one.
template <class Operation>
std::size_t slotOf(Operation operation) {
    std::uintptr_t offset = 0;
    std::memcpy(&offset, &operation, sizeof offset);
    return (offset - 1) / sizeof(void*);
}

template <class... Operations>
std::vector<std::size_t> slotsOf(Operations... operations) {
    return {slotOf(operations)...};
}

} // namespace

// The destructor occupies slots 0 and 1.
TEST(Interface, KeepsTheOrderOfItsVirtualTable) {
    EXPECT_EQ(slotsOf(&IScmSPM::HandleMessage, &IScmSPM::Dispatch, &IScmSPM::LogMessage),
              (std::vector<std::size_t>{2, 3, 4}));
    const std::vector<std::size_t> slots =
        slotsOf(&IScmSPM::getName, &IScmSPM::getDeviceFlag, &IScmSPM::isModeSupported, &IScmSPM::isReferenceSupported,
                &IScmSPM::getNumberOfApertures, &IScmSPM::getAperture, &IScmSPM::hasApertureChoice,
                &IScmSPM::getNumberOfAuxiliaries, &IScmSPM::getAuxiliary, &IScmSPM::hasAuxiliaryChoice,
                &IScmSPM::getNumberOfIlluminations, &IScmSPM::getIllumination, &IScmSPM::hasIlluminationChoice,
                &IScmSPM::getNumberOfReferences, &IScmSPM::getReference, &IScmSPM::getNumberOfModes, &IScmSPM::getMode,
                &IScmSPM::getNumberOfDevices, &IScmSPM::getDevice, &IScmSPM::open, &IScmSPM::close, &IScmSPM::isOpened,
                &IScmSPM::setOptionsByName, &IScmSPM::getStatus, &IScmSPM::isCalibrated, &IScmSPM::calibrate,
                &IScmSPM::getNumberOfReflections, &IScmSPM::readSpectrum, &IScmSPM::read, &SPM_BASE::setOptions);
    for (std::size_t i = 0; i < slots.size(); ++i) {
        EXPECT_EQ(slots[i], 5 + i);
    }
}

TEST_F(Base, DescribesTheInstrument) {
    EXPECT_FALSE(module->getDeviceFlag());
    EXPECT_EQ((std::vector<std::size_t>{module->getNumberOfApertures(), module->getNumberOfAuxiliaries(),
                                        module->getNumberOfIlluminations(), module->getNumberOfReferences(),
                                        module->getNumberOfModes(), module->getNumberOfDevices()}),
              (std::vector<std::size_t>{1, 0, 2, 1, 2, 1}));
    EXPECT_EQ((std::vector<std::string>{module->getName(), module->getAperture(0), module->getAperture(1),
                                        module->getAperture(-1), module->getAuxiliary(0), module->getIllumination(0),
                                        module->getIllumination(1), module->getReference(0)}),
              (std::vector<std::string>{"xrite i1 Pro3", "4.5 mm", "", "", "", "UV Included", "UV Excluded",
                                        "White Reference"}));
    const SPM_MODE& scan = *module->getMode(0);
    const SPM_MODE& spot = *module->getMode(1);
    EXPECT_EQ(std::tuple(scan.mode, scan.first, scan.second, scan.third, scan.fourth),
              std::tuple(2U, 10.0F, 20.0F, 22U, 10U));
    EXPECT_EQ(std::tuple(spot.mode, spot.first, spot.second, spot.third, spot.fourth),
              std::tuple(1U, 16.0F, 16.0F, 10U, 10U));
    EXPECT_EQ(module->getMode(2), &scan);
    EXPECT_EQ(module->getMode(-1), &scan);
    EXPECT_FALSE(module->hasApertureChoice() || module->hasAuxiliaryChoice() || module->hasIlluminationChoice());
    EXPECT_TRUE(two.hasApertureChoice() && two.hasAuxiliaryChoice() && two.hasIlluminationChoice());
    EXPECT_TRUE(module->isModeSupported(0) && module->isModeSupported(3));
    EXPECT_FALSE(module->isModeSupported(4) || module->isModeSupported(5));
    EXPECT_TRUE(module->isReferenceSupported(1));
    EXPECT_FALSE(module->isReferenceSupported(2));
}

TEST_F(Base, SelectsOptionsByIndexValueAndName) {
    using Numbers = std::vector<std::int64_t>;
    const auto select = [&](std::uint32_t aperture, std::uint32_t illumination, std::int32_t index) {
        SPM_OPTIONS_EX options(SPM_OPTIONS{aperture, illumination, 9});
        options.illuminationIndex = index;
        return module->setOptions(options);
    };
    EXPECT_FALSE(select(0, 0, -1));
    EXPECT_FALSE(select(1, 7, 2));
    EXPECT_EQ(numbersOf(module->getCurrentOptions()), (Numbers{1, 0, 0, 0, -1, -1}));
    EXPECT_TRUE(select(9, 2, -1));
    EXPECT_EQ(numbersOf(module->getCurrentOptions()), (Numbers{1, 2, 0, 0, -1, 1}));
    EXPECT_TRUE(select(9, 2, 0)) << "the index takes precedence";
    EXPECT_EQ(numbersOf(module->getCurrentOptions()), (Numbers{1, 1, 0, 0, -1, 0}));
    EXPECT_TRUE(module->setOptionsByName(nullptr, "none", "UV Excluded"));
    EXPECT_TRUE(module->setOptionsByName("4.5 mm", nullptr, "uv included"));
    EXPECT_EQ(numbersOf(module->getCurrentOptions()), (Numbers{1, 2, 0, 0, -1, 1}));

    EXPECT_FALSE(two.setOptions(SPM_OPTIONS_EX(SPM_OPTIONS{1, 1, 3})));
    EXPECT_TRUE(two.setOptionsByName(nullptr, "No Filter", nullptr));
    EXPECT_EQ(numbersOf(two.getCurrentOptions()), (Numbers{0, 0, 4, -1, 1, -1}));
    EXPECT_TRUE(two.setOptions(SPM_OPTIONS_EX(SPM_OPTIONS{1, 1, 2})));
    EXPECT_EQ(numbersOf(two.getCurrentOptions()), (Numbers{0, 0, 2, -1, 0, -1}));
    EXPECT_STREQ(two.getAuxiliary(1), "No Filter");
}

TEST_F(Base, ReturnsTheConfiguredDevice) {
    const auto configure = [&](const std::string& device) { settings.set(deviceKey, "Device", REG_SZ, device + '\0'); };
    EXPECT_STREQ(two.getDevice(-1), "USB");
    configure("USB2");
    EXPECT_STREQ(two.getDevice(-1), "USB2");
    EXPECT_STREQ(two.getDevice(0), "USB");
    EXPECT_STREQ(two.getDevice(1), "USB2");
    EXPECT_STREQ(two.getDevice(2), "USB");
    configure("usb2");
    EXPECT_STREQ(two.getDevice(-1), "USB");
}

TEST_F(Base, ResolvesCalibrationRecords) {
    for (const std::uint32_t step : {0U, 4U, 5U, 0xFFFFFFFFU}) {
        const SPM_CALIBRATION_EX result = two.resolved(SPM_CALIBRATION_EX(SPM_CALIBRATION{1, 1, 1, 4, step}));
        EXPECT_EQ(result.step, step <= 4 ? step : 3) << step;
        EXPECT_EQ(std::tuple(result.aperture, result.illumination, result.auxiliary, result.reference,
                             result.referenceIndex, result.apertureIndex),
                  std::tuple(0U, 0U, 0U, 4U, 0, -1));
    }
}
