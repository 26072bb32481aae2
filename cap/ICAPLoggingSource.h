#pragma once

class ICAPLoggingListener;
class ICAPLoggingMessage;

/// Sends log messages to the one listener that is attached to it.
class ICAPLoggingSource {
public:
    virtual ~ICAPLoggingSource() = default;
    /// Attaches a listener in place of any earlier one. It stays the caller's, and must be removed before it is
    /// destroyed.
    virtual void AddListener(ICAPLoggingListener* listener) = 0;
    /// Detaches the listener, whichever it is.
    virtual void RemoveListener() = 0;
    /// Sends a message of the caller's.
    virtual void LogMessage(const ICAPLoggingMessage& message) = 0;
};
