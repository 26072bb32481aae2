#pragma once

#include "cap/CAPException.h"
#include "cap/ICAPLoggingMessage.h"

/// The implementation of ICAPLoggingMessage: a value on the stack of the code that logs.
class CAPLoggingMessage : public ICAPLoggingMessage {
public:
    /// An error message (level 0) with the numbers and texts of an exception.
    explicit CAPLoggingMessage(const CAPException& exception);
    /// A message with error number 0 and no detail.
    CAPLoggingMessage(std::int32_t severity, std::int32_t module, std::string mainText);

    std::int32_t GetErrorNumber() const override { return errorNumber; }
    std::int32_t GetModuleNumber() const override { return moduleNumber; }
    std::int32_t GetLevel() const override { return level; }
    std::string GetText() const override { return text; }
    std::string GetDetail() const override { return detail; }
    std::string ToString() const override;

private:
    std::int32_t errorNumber;
    std::int32_t moduleNumber;
    std::int32_t level;
    std::string text;
    std::string detail;
};
