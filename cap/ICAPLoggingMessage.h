#pragma once

#include <cstdint>
#include <string>

/// Severities of log messages; a smaller level is more severe. Any other number counts as further debug detail.
namespace CAPLevel {
inline constexpr std::int32_t error = 0;       ///< something failed
inline constexpr std::int32_t warning = 1;     ///< something is not as it should be
inline constexpr std::int32_t information = 2; ///< for the user
inline constexpr std::int32_t debug = 3;       ///< for who looks for a fault
inline constexpr std::int32_t details = 4;     ///< the same, written only when asked for
} // namespace CAPLevel

/// One entry of the log as a listener sees it. Valid only during the call that hands it over: copy what is to be kept.
class ICAPLoggingMessage {
public:
    virtual ~ICAPLoggingMessage() = default;
    /// The number of the reported error within its module; 0 for messages that report no error.
    virtual std::int32_t GetErrorNumber() const = 0;
    /// The part of the system that logs: 0 the log file itself, 1 the support library, 7 the spectrophotometer module.
    virtual std::int32_t GetModuleNumber() const = 0;
    /// The severity, see CAPLevel.
    virtual std::int32_t GetLevel() const = 0;
    /// The main message.
    virtual std::string GetText() const = 0;
    /// Further information, such as the instrument's own error number; often empty.
    virtual std::string GetDetail() const = 0;
    /// The whole message as one text without a line break at its end, such as "M7 E1539: lamp failure".
    virtual std::string ToString() const = 0;
};
