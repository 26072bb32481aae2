#pragma once

#include "cap/CAPException.h"
#include "cap/ICAPLoggingListener.h"
#include "cap/ICAPLoggingMessage.h"
#include "cap/ICAPLoggingSource.h"

/// Stores the listener of a hub. It is a separate base class so that AddListener and RemoveListener occupy slots in the
/// virtual table of ICAPLoggingSource only, not in that of IScmSPM, which hosts bind to.
class CAPLoggingSource : public ICAPLoggingSource {
public:
    void AddListener(ICAPLoggingListener* newListener) override;
    void RemoveListener() override;

protected:
    ICAPLoggingListener* listener = nullptr; ///< Not owned; null while none is attached.
};

/// The logging hub: forwards its own messages and those that it receives to the one attached listener, on the caller's
/// thread and without a lock. A hub is itself a listener, so it can be attached to another hub.
class CAPLoggingHandler : public ICAPLoggingListener, public CAPLoggingSource {
public:
    CAPLoggingHandler() = default;
    CAPLoggingHandler(const CAPLoggingHandler&) = delete;
    CAPLoggingHandler& operator=(const CAPLoggingHandler&) = delete;
    /// Does not call the attached listener.
    ~CAPLoggingHandler() override;

    /// Forwards a message of another source to the listener, with that source.
    void HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) override;

    /// Passes a message to the listener, if one is attached.
    /// @throws CAPException  if the listener throws: a CAPException unchanged; a standard exception as error 3 of
    ///                       module 1, "STL exception"; anything else as error 2 of module 1, "Exception"
    virtual void Dispatch(ICAPLoggingSource* source, const ICAPLoggingMessage& message);

    /// Dispatches a message with this hub as the source.
    void LogMessage(const ICAPLoggingMessage& message) override;

    /// Logs an exception at level 0. Does nothing while no listener is attached.
    void LogException(const CAPException& exception);

    /// Logs a text formatted like std::printf. Does nothing while no listener is attached.
    [[gnu::format(printf, 4, 5)]] void Log(std::int32_t level, std::int32_t moduleNumber, const char* format, ...);
};
