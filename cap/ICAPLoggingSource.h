#pragma once

class ICAPLoggingListener;
class ICAPLoggingMessage;

/// Sends log messages to one attached listener.
class ICAPLoggingSource {
public:
    virtual ~ICAPLoggingSource() = default;
    /// Attaches a listener, replacing any earlier one. The caller keeps ownership, and must remove the listener before
    /// destroying it.
    virtual void AddListener(ICAPLoggingListener* listener) = 0;
    /// Detaches the listener, if any.
    virtual void RemoveListener() = 0;
    /// Sends a message to the listener, with this object as the source.
    virtual void LogMessage(const ICAPLoggingMessage& message) = 0;
};
