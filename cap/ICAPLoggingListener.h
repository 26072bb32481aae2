#pragma once

class ICAPLoggingMessage;
class ICAPLoggingSource;

/// Receives log messages. A C++ host implements this interface to receive the module's error messages.
class ICAPLoggingListener {
public:
    virtual ~ICAPLoggingListener() = default;
    /// Called for each message, synchronously, on the thread that logs. An exception propagates to the code that logs.
    /// @param source   the object that sent the message; may be null
    /// @param message  valid only during the call
    virtual void HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) = 0;
};
