// Forwards a module object's messages to a C function. It is a separate library because the module's exports are fixed;
// hosts built with another compiler need nothing else of the C++ interface behind the handle.

#include "listener/SPM_listener.h"
#include "module/IScmSPM.h"
#include "platform/ForeignCall.h"

#include <new>

struct SPM_SUBSCRIPTION final : ICAPLoggingListener {
    SPM_SUBSCRIPTION(SPM_HANDLE object, SPM_MESSAGE_CALLBACK hostCallback, void* hostContext)
        : handle(object), callback(hostCallback), context(hostContext) {}

    /// Discards exceptions: the module would treat them as a failure of the call that logs.
    void HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) override;

    const SPM_HANDLE handle;
    const SPM_MESSAGE_CALLBACK callback;
    void* const context;
};

namespace {

/// A message to pass to the callback.
struct Delivery {
    const SPM_SUBSCRIPTION& subscription;
    const ICAPLoggingMessage& message;
    std::string text;
    std::string detail;
};

/// Has no local objects with destructors, since an exception of another compiler would skip them.
std::int32_t deliver(const Delivery* delivery) {
    const ICAPLoggingMessage& message = delivery->message;
    delivery->subscription.callback(delivery->subscription.context, message.GetLevel(), message.GetModuleNumber(),
                                    message.GetErrorNumber(), delivery->text.c_str(), delivery->detail.c_str());
    return 0;
}

} // namespace

void SPM_SUBSCRIPTION::HandleMessage(ICAPLoggingSource* /*source*/, const ICAPLoggingMessage& message) {
    // A negative level counts as debug, but the module withholds only debug messages of levels above 2.
    if (message.GetLevel() < CAPLevel::error) return;
    try {
        const Delivery delivery{*this, message, message.GetText(), message.GetDetail()};
        callForeign(deliver, &delivery);
    } catch (...) { // NOLINT(bugprone-empty-catch): nobody to report it to
    }
}

SPM_SUBSCRIPTION* SPM_subscribe(SPM_HANDLE handle, SPM_MESSAGE_CALLBACK callback, void* context) {
    if (handle == nullptr || callback == nullptr) return nullptr;
    auto* const subscription = new (std::nothrow) SPM_SUBSCRIPTION(handle, callback, context);
    if (subscription != nullptr) handle->AddListener(subscription);
    return subscription;
}

void SPM_unsubscribe(SPM_SUBSCRIPTION* subscription) {
    if (subscription == nullptr) return;
    subscription->handle->RemoveListener();
    delete subscription;
}
