#pragma once

#include <cstdint>
#include <string>

/// Severities of log messages, from the most severe. Any other number counts as a debug message.
namespace CAPLevel {
inline constexpr std::int32_t error = 0;       ///< An operation failed.
inline constexpr std::int32_t warning = 1;     ///< Something unexpected that isn't a failure.
inline constexpr std::int32_t information = 2; ///< For the user.
inline constexpr std::int32_t debug = 3;       ///< For troubleshooting.
inline constexpr std::int32_t details = 4;     ///< For troubleshooting; written only with the setting "Details".
} // namespace CAPLevel

/// A log message as a listener receives it. Valid only during HandleMessage: copy what is needed later.
class ICAPLoggingMessage {
public:
    virtual ~ICAPLoggingMessage() = default;
    /// The error number, unique within the part that logs; 0 if the message reports no error.
    virtual std::int32_t GetErrorNumber() const = 0;
    /// The part that logs: 0 the log file itself, 1 the support library, 7 the spectrophotometer module.
    virtual std::int32_t GetModuleNumber() const = 0;
    /// The severity, see CAPLevel.
    virtual std::int32_t GetLevel() const = 0;
    /// The main message.
    virtual std::string GetText() const = 0;
    /// Additional information; often empty.
    virtual std::string GetDetail() const = 0;
    /// The whole message without a line break at its end, such as "M7 E1539: lamp failure".
    virtual std::string ToString() const = 0;
};
