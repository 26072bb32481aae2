#include "cap/CAPLoggingMessage.h"

#include <utility>

namespace {

/// Returns the level's letter, followed by the error number for errors and warnings.
std::string levelText(std::int32_t level, std::int32_t errorNumber) {
    switch (level) {
    case CAPLevel::error:
        return "E" + std::to_string(errorNumber);
    case CAPLevel::warning:
        return "W" + std::to_string(errorNumber);
    case CAPLevel::information:
        return "I";
    default:
        return "D";
    }
}

} // namespace

CAPLoggingMessage::CAPLoggingMessage(const CAPException& exception)
    : errorNumber(exception.GetErrorNumber()), moduleNumber(exception.GetModuleNumber()), level(CAPLevel::error),
      text(exception.GetText()), detail(exception.GetDetail()) {}

CAPLoggingMessage::CAPLoggingMessage(std::int32_t severity, std::int32_t module, std::string mainText)
    : errorNumber(0), moduleNumber(module), level(severity), text(std::move(mainText)) {}

std::string CAPLoggingMessage::ToString() const {
    std::string line = "M" + std::to_string(moduleNumber) + " " + levelText(level, errorNumber);
    if (!text.empty()) line += ": " + text;
    if (!detail.empty()) line += "; " + detail;
    return line;
}
