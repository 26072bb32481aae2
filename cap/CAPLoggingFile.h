#pragma once

#include "cap/ICAPLoggingListener.h"
#include "platform/win32.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

/// A log file with one line per message, written to the file before the call returns.
///
/// A line is "2026-03-01 14:05:09 (UTC+01:00) [process:thread:source] " followed by the message's ToString: the local
/// time, the zone's offset without daylight saving, and hexadecimal numbers in brackets. No operation reports a
/// failure: if the file can't be opened or written, its lines are lost.
///
/// Each line is appended as a whole, without a lock, so lines of several threads, objects and processes don't mix.
class CAPLoggingFile : public ICAPLoggingListener {
public:
    CAPLoggingFile();
    CAPLoggingFile(const CAPLoggingFile&) = delete;
    CAPLoggingFile& operator=(const CAPLoggingFile&) = delete;
    /// Closes the file.
    ~CAPLoggingFile() override;

    /// Writes the message with a number for its source: the low 32 bits of the address, 0 for null.
    void HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) override;

    /// Sets the highest level that is written; initially 2.
    void SetDetailLevel(std::int32_t level);

    /// Opens the log file beside the module's file: the same name with the extension ".log".
    /// @param mode  as for std::fopen, such as "a" to append
    void OpenForModule(HMODULE module, const char* mode);

    /// Closes the open file, if any, opens another and writes the start banner.
    /// @param path  if null, no file is opened
    void OpenFile(const char* path, const char* mode);

    /// Writes the stop banner and closes the file.
    void CloseFile();

    /// Writes a text formatted like std::printf, without a source number.
    [[gnu::format(printf, 4, 5)]] void LogText(std::int32_t level, std::int32_t moduleNumber, const char* format, ...);

    /// Writes the message without a source number.
    void WriteMessage(const ICAPLoggingMessage& message);

private:
    bool accepts(std::int32_t level) const { return stream != nullptr && level <= detailLevel; }
    void writeLine(const std::string& source, const ICAPLoggingMessage& message);

    struct CloseStream {
        void operator()(std::FILE* open) const { std::fclose(open); }
    };

    std::unique_ptr<std::FILE, CloseStream> stream;
    std::string zoneText;
    std::int32_t detailLevel = 2;
};
