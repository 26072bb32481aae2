#include "cap/CAPLoggingFile.h"

#include "cap/CAPLoggingMessage.h"
#include "cap/FormatText.h"
#include "cap/ModuleFileName.h"
#include "platform/LogStream.h"

#include <cstdlib>
#include <ctime>

namespace {

constexpr std::int32_t bannerModuleNumber = 0;
constexpr std::size_t zoneTextLength = 9;

/// Returns the zone's offset without daylight saving, such as "UTC+01:00". The C runtime counts minutes west of UTC, so
/// the sign is reversed.
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

} // namespace

CAPLoggingFile::CAPLoggingFile() : zoneText(currentZoneText()) {}

CAPLoggingFile::~CAPLoggingFile() {
    try {
        CloseFile();
    } catch (
        ...) { // NOLINT(bugprone-empty-catch): only the stop banner is lost; the destructor of `stream` closes the file
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
    if (path != nullptr) stream.reset(openLogStream(path, mode));
    LogText(CAPLevel::debug, bannerModuleNumber, "----- Started Logging -----");
}

void CAPLoggingFile::CloseFile() {
    LogText(CAPLevel::debug, bannerModuleNumber, "----- Stopped Logging -----");
    stream.reset();
}

void CAPLoggingFile::LogText(std::int32_t level, std::int32_t moduleNumber, const char* format, ...) {
    if (!accepts(level)) return;
    std::va_list arguments;
    va_start(arguments, format);
    const CAPLoggingMessage message(level, moduleNumber, FormatTextList(format, arguments));
    va_end(arguments);
    WriteMessage(message);
}

void CAPLoggingFile::WriteMessage(const ICAPLoggingMessage& message) {
    if (accepts(message.GetLevel())) writeLine("", message);
}

void CAPLoggingFile::HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) {
    if (!accepts(message.GetLevel())) return;
    const auto sourceNumber = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(source));
    writeLine(FormatText(":%X", unsigned{sourceNumber}), message);
}

/// Hands the line over as a whole, so that lines of several threads don't mix.
void CAPLoggingFile::writeLine(const std::string& source, const ICAPLoggingMessage& message) {
    const __time64_t now = std::time(nullptr);
    std::tm local{};
    _localtime64_s(&local, &now);
    std::string line = FormatText("%04d-%02d-%02d %02d:%02d:%02d (%s) [%X:%X%s] ", local.tm_year + 1900,
                                  local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                                  zoneText.c_str(), static_cast<unsigned>(GetCurrentProcessId()),
                                  static_cast<unsigned>(GetCurrentThreadId()), source.c_str());
    line.append(message.ToString().c_str()).append("\n"); // NOLINT(readability-redundant-string-cstr): up to a NUL
    std::fputs(line.c_str(), stream.get());
    std::fflush(stream.get());
}
