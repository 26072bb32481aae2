#pragma once

#include <cstdint>
#include <string>

/// An error on its way to whoever can report it: two numbers that identify it and two texts that explain it.
///
/// Deliberately not a std::exception: a handler for the standard classes lets it pass. Thrown by value, caught by
/// reference.
class CAPException {
public:
    /// @param error       what went wrong, numbered within the raising module
    /// @param module      which part of the system raised it: 1 the support library, 7 the spectrophotometer module
    /// @param mainText    the main message
    /// @param detailText  further information, often empty
    CAPException(std::int32_t error, std::int32_t module, std::string mainText, std::string detailText = {});
    CAPException(const CAPException&) = default;            ///< a copy
    CAPException& operator=(const CAPException&) = default; ///< a copy
    virtual ~CAPException();

    std::int32_t GetErrorNumber() const { return errorNumber; }   ///< what went wrong
    std::int32_t GetModuleNumber() const { return moduleNumber; } ///< which part raised it
    std::string GetText() const { return text; }                  ///< the main message
    std::string GetDetail() const { return detail; }              ///< further information

private:
    std::int32_t errorNumber;
    std::int32_t moduleNumber;
    std::string text;
    std::string detail;
};
