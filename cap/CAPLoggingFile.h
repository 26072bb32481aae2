#pragma once

#include "cap/ICAPLoggingListener.h"
#include "platform/win32.h"

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

/// A log file: one line per message, each on disk before the call returns.
///
/// A line is "2026-03-01 14:05:09 (UTC+01:00) [process:thread:source] " followed by the message's ToString. A file that
/// can't be opened or written loses its lines and disturbs nobody: no operation reports a failure.
///
/// Each line is handed over whole, so that lines of several threads, objects and processes do not mix. Only a regular
/// file is written to, and nobody else's lock is waited for longer than a few milliseconds. A line that a full disk has
/// torn, whoever wrote it, is ended before the next one.
class CAPLoggingFile : public ICAPLoggingListener {
public:
    CAPLoggingFile();
    CAPLoggingFile(const CAPLoggingFile&) = delete;
    CAPLoggingFile& operator=(const CAPLoggingFile&) = delete;
    /// Closes the file.
    ~CAPLoggingFile() override;

    /// Writes the message with the source's number: the low 32 bits of its address, 0 for null.
    void HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) override;

    /// Sets the highest level that is written. Initially 2.
    void SetDetailLevel(std::int32_t level);

    /// Opens the file beside the module's own: its name with the extension ".log".
    /// @param mode  "a" to append, "w" to empty the file first
    void OpenForModule(HMODULE module, const char* mode);

    /// Closes any open file, opens this one and writes the start banner.
    /// @param path  null leaves the file closed
    void OpenFile(const char* path, const char* mode);

    /// Writes the stop banner and closes the file.
    void CloseFile();

    /// Writes a line of the file's own, formatted like std::printf, without a source number.
    [[gnu::format(printf, 4, 5)]] void LogText(std::int32_t level, std::int32_t moduleNumber, const char* format, ...);

    /// Writes the message without a source number.
    void WriteMessage(const ICAPLoggingMessage& message);

private:
    bool accepts(std::int32_t level) const { return stream != nullptr && level <= detailLevel; }
    void writeLine(const std::string& source, const ICAPLoggingMessage& message);
    void appendTimestamp(std::string& line);

    struct CloseStream {
        void operator()(std::FILE* open) const { std::fclose(open); }
    };

    std::unique_ptr<std::FILE, CloseStream> stream;
    std::string zoneText;
    std::int32_t detailLevel = 2;
    std::atomic<bool> isLastLineIncomplete = false;
    std::atomic_flag isTimestampInUse;
    __time64_t timestampSecond = -1;
    std::string timestamp;
};
