#include "bench/Limits.h"

#include <array>
#include <charconv>
#include <elf.h>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace bench {

namespace {

template <class Function>
void find(const host::Module& module, const char* name, Function& function) {
    function = reinterpret_cast<Function>(module.findInSdk(name));
    if (function == nullptr) throw std::runtime_error(std::string("no ") + name);
}

void require(bool isDone, const char* what) {
    if (!isDone) throw std::runtime_error(what);
}

void look(const std::filesystem::path& settings, int flags, int lock) {
    std::array<char, 4096> text{};
    const int file = open(settings.c_str(), flags | O_CLOEXEC, 0644);
    require(flock(file, lock) == 0, "flock");
    const ssize_t length = pread(file, text.data(), text.size(), 0);
    require(pread(file, text.data(), text.size(), length) == 0, "pread");
    close(file);
}

void openKeys(const std::filesystem::path& settings) {
    look(settings, O_RDWR | O_CREAT, LOCK_SH);
    look(settings, O_RDWR | O_CREAT, LOCK_EX);
}

void writeBanner(int file) {
    static_cast<void>(gettid());
    static_cast<void>(getpid());
    struct flock place {};
    place.l_type = F_WRLCK;
    place.l_start = 0x7FFFFFFF00000000;
    place.l_len = 1;
    require(fcntl(file, F_OFD_SETLK, &place) == 0, "lock");
    const std::string line(78, '-');
    require(write(file, line.data(), line.size()) == static_cast<ssize_t>(line.size()), "write");
    place.l_type = F_UNLCK;
    require(fcntl(file, F_OFD_SETLK, &place) == 0, "unlock");
}

} // namespace

Sdk::Sdk(const host::Module& module) {
    find(module, "I1PRO3_GetDevices", getDevices);
    find(module, "I1PRO3_GetConnectionStatus", getConnectionStatus);
    find(module, "I1PRO3_SetOption", setOption);
    find(module, "I1PRO3_SetGlobalOption", setGlobalOption);
    find(module, "I1PRO3_GetButtonStatusD", getButtonStatus);
    find(module, "I1PRO3_TriggerMeasurement", triggerMeasurement);
    find(module, "I1PRO3_GetNumberOfAvailableSamples", getNumberOfAvailableSamples);
    find(module, "I1PRO3_GetTriStimulus", getTriStimulus);
    find(module, "I1PRO3_GetSpectrum", getSpectrum);
    I1PRO3_DeviceHandle* devices = nullptr;
    std::uint32_t count = 0;
    getDevices(&devices, &count);
    device = devices[0];
}

bool Sdk::begin(std::int32_t patches) const {
    getConnectionStatus(device);
    if (patches == 1) {
        setOption(device, "MeasurementMode", "ReflectanceSpot");
    } else {
        std::array<char, 12> digits{};
        std::to_chars(digits.data(), digits.data() + digits.size() - 1, patches);
        setOption(device, "RecognitionKey", "RecognitionPositionDark");
        setOption(device, "PatchesPerLine", digits.data());
        setOption(device, "MeasurementMode", "ReflectanceScan");
    }
    if (getButtonStatus(device) == 1001) return false;
    triggerMeasurement(device);
    if (patches > 1) getNumberOfAvailableSamples(device);
    return true;
}

void Sdk::read(std::int32_t patches) const {
    if (!begin(patches)) return;
    std::array<float, 3> lab{};
    for (std::int32_t i = 0; i < patches; ++i) {
        getTriStimulus(device, lab.data(), i);
    }
}

void Sdk::readSpectrum(std::int32_t patches) const {
    if (!begin(patches)) return;
    std::array<float, 36> factors{};
    for (std::int32_t i = 0; i < patches; ++i) {
        getSpectrum(device, factors.data(), i);
    }
}

void Sdk::readSpectrum(std::int32_t patches, SPM_SPECTRUM* spectra) const {
    if (!begin(patches)) return;
    std::array<float, 36> factors{};
    for (std::int32_t i = 0; i < patches; ++i) {
        getSpectrum(device, factors.data(), i);
        SPM_REFLECTION* const points = spectra[i].reflections;
        for (std::int32_t j = 0; j < 36; ++j) {
            points[j] = {380 + 10 * j, factors[static_cast<std::size_t>(j)] * 100};
        }
    }
}

RawFile::RawFile(const std::filesystem::path& path)
    : descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644)) {
    require(descriptor >= 0, "open");
}

RawFile::~RawFile() {
    close(descriptor);
}

void RawFile::write(const std::string& line) const {
    require(::write(descriptor, line.data(), line.size()) == static_cast<ssize_t>(line.size()), "write");
}

void createAndDestroy(const std::filesystem::path& settings) {
    struct stat zone {};
    openKeys(settings);
    static_cast<void>(stat("/etc/localtime", &zone));
    openKeys(settings);
    look(settings, O_RDONLY, LOCK_SH);
}

void createAndDestroy(const std::filesystem::path& settings, const std::filesystem::path& log) {
    createAndDestroy(settings);
    look(settings, O_RDONLY, LOCK_SH);
    const int file = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
    lseek(file, 0, SEEK_END);
    writeBanner(file);
    writeBanner(file);
    close(file);
}

void getVersion(const std::filesystem::path& module) {
    for (int i = 0; i < 2; ++i) {
        Elf64_Ehdr header{};
        std::array<Elf64_Shdr, 64> sections{};
        std::array<char, 1024> bytes{};
        const int file = open(module.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        require(pread(file, &header, sizeof header, 0) == sizeof header, "pread");
        const std::size_t size = header.e_shnum * sizeof(Elf64_Shdr);
        require(pread(file, sections.data(), size, static_cast<off_t>(header.e_shoff)) > 0, "pread");
        const Elf64_Shdr& names = sections[header.e_shstrndx];
        require(pread(file, bytes.data(), names.sh_size, static_cast<off_t>(names.sh_offset)) > 0, "pread");
        require(pread(file, bytes.data(), 780, 0) > 0, "pread"); // the resource's length, from the start: cached too
        close(file);
    }
}

} // namespace bench
