#include "module/SPM_BASE.h"

#include "module/ModuleHandle.h"

#include <algorithm>
#include <cstring>

IScmSPM::~IScmSPM() = default; // not inline, so that the virtual table is in the module

namespace {

template <class List>
bool hasIndex(const List& list, std::int32_t index) {
    return index >= 0 && static_cast<std::size_t>(index) < list.size();
}

/// Returns the index of the first matching entry, or -1 if there is none.
template <class List, class Matches>
std::int32_t indexOf(const List& list, Matches matches) {
    const auto found = std::find_if(list.begin(), list.end(), matches);
    return found != list.end() ? static_cast<std::int32_t>(found - list.begin()) : -1;
}

/// Completes the value and index of an entry: a valid index determines the value, otherwise the value determines the
/// index; if neither is in the list, they become 0 and -1.
template <class List>
void resolve(const List& list, std::uint32_t& value, std::int32_t& index) {
    if (!hasIndex(list, index)) {
        index = indexOf(list, [&](const auto& entry) { return entry.value == value; });
    }
    value = index >= 0 ? list[static_cast<std::size_t>(index)].value : 0;
}

template <class List>
const char* nameAt(const List& list, std::int32_t index) {
    return hasIndex(list, index) ? list[static_cast<std::size_t>(index)].name : "";
}

template <class List>
std::int32_t indexOfName(const List& list, const char* name) {
    if (name == nullptr) return -1;
    return indexOf(list, [&](const auto& entry) { return std::strcmp(entry.name, name) == 0; });
}

/// Returns the element at an index, or the first if the index is out of range; null if the list is empty.
template <class Element>
const Element* atOrFirst(const std::vector<Element>& list, std::int32_t index) {
    if (list.empty()) return nullptr;
    return &list[hasIndex(list, index) ? static_cast<std::size_t>(index) : 0];
}

bool contains(std::uint32_t mask, std::uint32_t bits) {
    return (mask & bits) == bits;
}

} // namespace

SPM_BASE::SPM_BASE(const char* model, bool flag) : registry(model), modelName(model), deviceFlag(flag) {
    openLogFile();
}

SPM_BASE::~SPM_BASE() = default;

void SPM_BASE::openLogFile() {
    const SPMRegistry settings;
    if (settings.readNumber("Logging", 0) == 0) return;
    logFile.SetDetailLevel(settings.readNumber("Details", 0) == 0 ? CAPLevel::debug : CAPLevel::details);
    logFile.OpenForModule(moduleHandle(), "a");
}

void SPM_BASE::Dispatch(ICAPLoggingSource* source, const ICAPLoggingMessage& message) {
    if (message.GetLevel() <= CAPLevel::information) CAPLoggingHandler::Dispatch(source, message);
    logFile.HandleMessage(source, message);
}

const char* SPM_BASE::getName() const {
    return modelName;
}

bool SPM_BASE::getDeviceFlag() const {
    return deviceFlag;
}

bool SPM_BASE::isModeSupported(std::uint32_t bits) const {
    return contains(optionMasks.modeMask, bits);
}

bool SPM_BASE::isReferenceSupported(std::uint32_t bits) const {
    return contains(optionMasks.referenceMask, bits);
}

std::size_t SPM_BASE::getNumberOfApertures() const {
    return apertures.size();
}

const char* SPM_BASE::getAperture(std::int32_t index) const {
    return nameAt(apertures, index);
}

bool SPM_BASE::hasApertureChoice() const {
    return optionMasks.apertureMask != 0;
}

std::size_t SPM_BASE::getNumberOfAuxiliaries() const {
    return auxiliaries.size();
}

const char* SPM_BASE::getAuxiliary(std::int32_t index) const {
    return nameAt(auxiliaries, index);
}

bool SPM_BASE::hasAuxiliaryChoice() const {
    return optionMasks.auxiliaryMask != 0;
}

std::size_t SPM_BASE::getNumberOfIlluminations() const {
    return illuminations.size();
}

const char* SPM_BASE::getIllumination(std::int32_t index) const {
    return nameAt(illuminations, index);
}

bool SPM_BASE::hasIlluminationChoice() const {
    return optionMasks.illuminationMask != 0;
}

std::size_t SPM_BASE::getNumberOfReferences() const {
    return references.size();
}

const char* SPM_BASE::getReference(std::int32_t index) const {
    return nameAt(references, index);
}

std::size_t SPM_BASE::getNumberOfModes() const {
    return modes.size();
}

const SPM_MODE* SPM_BASE::getMode(std::int32_t index) const {
    return atOrFirst(modes, index);
}

std::size_t SPM_BASE::getNumberOfDevices() const {
    return devices.size();
}

const char* SPM_BASE::getDevice(std::int32_t index) const {
    if (index < 0) {
        const std::string configured = registry.readString("Device", "");
        index = indexOf(devices, [&](const char* device) { return configured == device; });
    }
    const char* const* const device = atOrFirst(devices, index);
    return device != nullptr ? *device : nullptr;
}

bool SPM_BASE::setOptionsByName(const char* aperture, const char* auxiliary, const char* illumination) {
    SPM_OPTIONS_EX named;
    named.apertureIndex = indexOfName(apertures, aperture);
    named.auxiliaryIndex = indexOfName(auxiliaries, auxiliary);
    named.illuminationIndex = indexOfName(illuminations, illumination);
    return setOptions(named);
}

bool SPM_BASE::setOptions(const SPM_OPTIONS_EX& options) {
    const SPM_OPTIONS_EX chosen = resolved(options);
    if (chosen.apertureIndex >= 0) currentOptions.apertureIndex = chosen.apertureIndex;
    if (chosen.auxiliaryIndex >= 0) currentOptions.auxiliaryIndex = chosen.auxiliaryIndex;
    if (chosen.illuminationIndex >= 0) currentOptions.illuminationIndex = chosen.illuminationIndex;
    return validate(currentOptions);
}

template <class Record>
Record SPM_BASE::withOptionsResolved(Record record) const {
    resolve(apertures, record.aperture, record.apertureIndex);
    resolve(auxiliaries, record.auxiliary, record.auxiliaryIndex);
    resolve(illuminations, record.illumination, record.illuminationIndex);
    return record;
}

SPM_OPTIONS_EX SPM_BASE::resolved(const SPM_OPTIONS_EX& options) const {
    return withOptionsResolved(options);
}

SPM_CALIBRATION_EX SPM_BASE::resolved(const SPM_CALIBRATION_EX& calibration) const {
    SPM_CALIBRATION_EX result = withOptionsResolved(calibration);
    resolve(references, result.reference, result.referenceIndex);
    if (result.step > SPM_STEP_DONE) result.step = SPM_STEP_NOTHING;
    return result;
}

bool SPM_BASE::validate(SPM_OPTIONS_EX& options) const {
    options = resolved(options);
    const auto isSelected = [](const EntryList& list, std::int32_t index) { return list.empty() || index >= 0; };
    return isSelected(apertures, options.apertureIndex) && isSelected(auxiliaries, options.auxiliaryIndex) &&
           isSelected(illuminations, options.illuminationIndex);
}
