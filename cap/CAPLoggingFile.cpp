#include "cap/CAPLoggingFile.h"

#include "cap/CAPLoggingMessage.h"
#include "cap/FormatText.h"
#include "cap/ModuleFileName.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <thread>

namespace {

constexpr std::int32_t bannerModuleNumber = 0;
constexpr std::size_t zoneTextLength = 9;

/// The zone's standard offset, such as "UTC+01:00". The runtime counts minutes west of UTC, so east is negative.
std::string currentZoneText() {
    __timeb64 now{};
    _ftime64(&now);
    const int minutes = std::abs(int{now.timezone});
    return FormatText("UTC%c%02d:%02d", now.timezone < 0 ? '+' : '-', minutes / 60, minutes % 60)
        .substr(0, zoneTextLength);
}

std::string withLogExtension(const std::string& path) {
    const std::size_t name = path.find_last_of("/\\:") + 1;
    const std::size_t dot = path.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot >= name;
    return path.substr(0, hasExtension ? dot : path.size()) + ".log";
}

/// Keeps other writers off the file, of this process or another, for the object's life. The byte that is locked lies
/// far beyond the end, so that nobody is kept from reading.
class WriteLock {
public:
    /// Waits for the lock, but not for long: whoever may read the file may lock it, and never let go.
    WriteLock(std::FILE* stream, std::chrono::milliseconds patience)
        : file(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)))) {
        place.OffsetHigh = 0x7FFFFFFF;
        const auto end = std::chrono::steady_clock::now() + patience;
        while (!tryLock() && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;
    ~WriteLock() {
        if (isHeld) UnlockFileEx(file, 0, 1, 0, &place);
    }

    bool held() const { return isHeld; }

private:
    bool tryLock() {
        constexpr DWORD flags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
        isHeld = LockFileEx(file, flags, 0, 1, 0, &place) != FALSE;
        return isHeld;
    }

    HANDLE file;
    OVERLAPPED place{};
    bool isHeld = false;
};

} // namespace

CAPLoggingFile::CAPLoggingFile() : zoneText(currentZoneText()) {}

CAPLoggingFile::~CAPLoggingFile() {
    try {
        CloseFile();
    } catch (...) { // NOLINT(bugprone-empty-catch): the banner may be lost, the stream closes all the same
    }
}

void CAPLoggingFile::SetDetailLevel(std::int32_t level) {
    detailLevel = level;
}

void CAPLoggingFile::OpenForModule(HMODULE module, const char* mode) {
    const std::string path = ModuleFileName(module);
    if (path.empty()) {
        CloseFile();
    } else {
        OpenFile(withLogExtension(path).c_str(), mode);
    }
}

void CAPLoggingFile::OpenFile(const char* path, const char* mode) {
    CloseFile();
    isLineTorn = false;
    if (path != nullptr) stream.reset(std::fopen(path, mode));
    // Unbuffered, a line goes out as the one write that it was handed over in.
    if (stream != nullptr) std::setvbuf(stream.get(), nullptr, _IONBF, 0);
    LogText(CAPLevel::debug, bannerModuleNumber, "----- Started Logging -----");
}

void CAPLoggingFile::CloseFile() {
    LogText(CAPLevel::debug, bannerModuleNumber, "----- Stopped Logging -----");
    stream.reset();
}

void CAPLoggingFile::LogText(std::int32_t level, std::int32_t moduleNumber, const char* format, ...) {
    if (!writes(level)) return;
    std::va_list arguments;
    va_start(arguments, format);
    const CAPLoggingMessage message(level, moduleNumber, FormatTextList(format, arguments));
    va_end(arguments);
    WriteMessage(message);
}

void CAPLoggingFile::WriteMessage(const ICAPLoggingMessage& message) {
    if (writes(message.GetLevel())) writeLine("", message);
}

void CAPLoggingFile::HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) {
    if (!writes(message.GetLevel())) return;
    const auto sourceNumber = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(source));
    writeLine(FormatText(":%X", unsigned{sourceNumber}), message);
}

void CAPLoggingFile::writeLine(const std::string& source, const ICAPLoggingMessage& message) {
    const __time64_t now = std::time(nullptr);
    std::tm local{};
    _localtime64_s(&local, &now);
    std::string line = isLineTorn ? "\n" : ""; // a full disk may have let a part of the last line through
    line += FormatText("%04d-%02d-%02d %02d:%02d:%02d (%s) [%X:%X%s] ", local.tm_year + 1900, local.tm_mon + 1,
                       local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, zoneText.c_str(),
                       static_cast<unsigned>(GetCurrentProcessId()), static_cast<unsigned>(GetCurrentThreadId()),
                       source.c_str());
    const std::string text = message.ToString();
    line.append(text, 0, text.find('\0')).append("\n");
    const WriteLock lock(stream.get(), std::chrono::milliseconds(isLockStuck ? 0 : 1000));
    isLockStuck = !lock.held();
    const std::size_t written = std::fwrite(line.data(), 1, line.size(), stream.get());
    if (written > 0) isLineTorn = written < line.size();
}
