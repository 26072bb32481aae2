#pragma once

#include "cap/CAPException.h"
#include "cap/ICAPLoggingListener.h"
#include "cap/ICAPLoggingMessage.h"
#include "cap/ICAPLoggingSource.h"

/// Holds the listener of a hub. A base of its own, so that its operations are in the table of ICAPLoggingSource alone
/// and take no place among those of IScmSPM, which hosts bind to.
class CAPLoggingSource : public ICAPLoggingSource {
public:
    void AddListener(ICAPLoggingListener* newListener) override;
    void RemoveListener() override;

protected:
    ICAPLoggingListener* listener = nullptr; ///< not owned; null while none is attached
};

/// The logging hub: sends what it logs and what it receives to the one listener attached to it, on the caller's thread
/// and without a lock. Being a listener itself, a hub can be attached to another.
class CAPLoggingHandler : public ICAPLoggingListener, public CAPLoggingSource {
public:
    CAPLoggingHandler() = default;
    CAPLoggingHandler(const CAPLoggingHandler&) = delete;
    CAPLoggingHandler& operator=(const CAPLoggingHandler&) = delete;
    /// Leaves an attached listener untouched.
    ~CAPLoggingHandler() override;

    /// Passes a message of another source on to the listener; the source stays what it was.
    void HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) override;

    /// Hands a message to the listener, if there is one.
    /// @throws CAPException  the one that the listener threw; (3, module 1, "STL exception") in place of a standard
    ///                       exception, (2, module 1, "Exception") in place of anything else
    virtual void Dispatch(ICAPLoggingSource* source, const ICAPLoggingMessage& message);

    /// Dispatches a message with this hub as its source.
    void LogMessage(const ICAPLoggingMessage& message) override;

    /// Logs a caught exception at level 0. Does nothing while no listener is attached.
    void LogException(const CAPException& exception);

    /// Logs a text formatted like std::printf. Does nothing while no listener is attached.
    [[gnu::format(printf, 4, 5)]] void Log(std::int32_t level, std::int32_t moduleNumber, const char* format, ...);
};
