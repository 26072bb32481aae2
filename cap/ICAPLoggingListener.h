#pragma once

class ICAPLoggingMessage;
class ICAPLoggingSource;

/// Receives log messages. The one thing that a host implements to see the module's errors.
class ICAPLoggingListener {
public:
    virtual ~ICAPLoggingListener() = default;
    /// Called on the thread that logs, while it logs. An exception thrown here reaches the code that logged.
    /// @param source   where the message comes from; may be null
    /// @param message  valid only during the call
    virtual void HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) = 0;
};
