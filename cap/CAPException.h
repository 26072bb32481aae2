#pragma once

#include <cstdint>
#include <string>
#include <utility>

/// An error: two numbers that identify it and two texts that explain it.
///
/// Deliberately not a std::exception, so that a handler for standard exceptions doesn't catch it. Throw by value, catch
/// by reference. Everything is inline, so that a host which catches it has its own copy of the type information, which
/// the module doesn't export. The C++ runtime compares types by name.
class CAPException {
public:
    /// @param error       the error number, unique within the throwing part
    /// @param module      the part that throws: 1 the support library, 7 the spectrophotometer module
    /// @param mainText    the main message
    /// @param detailText  additional information, often empty
    CAPException(std::int32_t error, std::int32_t module, std::string mainText, std::string detailText = {})
        : errorNumber(error), moduleNumber(module), text(std::move(mainText)), detail(std::move(detailText)) {}
    CAPException(const CAPException&) = default;            ///< Copies the numbers and texts.
    CAPException& operator=(const CAPException&) = default; ///< Copies the numbers and texts.
    virtual ~CAPException() = default;

    std::int32_t GetErrorNumber() const { return errorNumber; }   ///< The error number, unique within the part.
    std::int32_t GetModuleNumber() const { return moduleNumber; } ///< The part that threw.
    std::string GetText() const { return text; }                  ///< The main message.
    std::string GetDetail() const { return detail; }              ///< Additional information, often empty.

private:
    std::int32_t errorNumber;
    std::int32_t moduleNumber;
    std::string text;
    std::string detail;
};
