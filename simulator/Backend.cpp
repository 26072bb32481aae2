#include "simulator/Backend.h"

#include <algorithm>

namespace simulator {

Reply LastError::answerOf(Backend& backend, const Request& request) {
    try {
        return backend.answer(request);
    } catch (const SdkError& error) {
        const auto code = static_cast<std::int32_t>(error.code);
        keep(request, error.what(), std::to_string(code));
        const bool isCount = request.function == Function::getNumberOfAvailableSamples;
        return {isCount ? -code : code, error.outputs};
    }
}

void LastError::keep(const Request& request, const std::string& newText, const std::string& newNumber) {
    if (request.function != Function::getGlobalOption) set(newText, newNumber);
}

void LastError::set(const std::string& newText, const std::string& newNumber) {
    text = newText;
    number = newNumber;
}

Reply LastError::read(const Request& request) const {
    const std::string key = request.text("key");
    if (key == "LastErrorText") return textReply(request, text);
    if (key == "LastErrorNumber") return textReply(request, number);
    throw SdkError(ErrorCode::unknownOption, "There is no global option \"" + key + "\"");
}

Reply textReply(const Request& request, const std::string& text) {
    const auto needed = static_cast<std::uint32_t>(text.size() + 1);
    if (request.size() < needed) {
        throw SdkError(ErrorCode::bufferTooSmall, "The buffer is too small", {.size = needed});
    }
    return {.outputs = {.text = text}};
}

Failure::Failure(ErrorCode errorCode, std::string errorText, LastError& common)
    : code(errorCode), text(std::move(errorText)), lastError(common) {
    lastError.set(text, std::to_string(static_cast<std::int32_t>(code)));
}

Reply Failure::answer(const Request& request) {
    const bool asksWhy = request.function == Function::getGlobalOption && request.isComplete() &&
                         request.text("key").starts_with("LastError");
    if (!asksWhy) throw SdkError(code, text);
    return lastError.read(request);
}

std::string Devices::nameOf(I1PRO3_DeviceHandle handle) const {
    const auto found =
        std::find_if(handles.begin(), handles.end(), [&](const auto& entry) { return &entry.second == handle; });
    return found != handles.end() ? found->first : "unknown";
}

void Devices::handOut(const Outputs& outputs, const SdkCall& call) {
    if (outputs.text && call.buffer != nullptr && call.size != nullptr) {
        const std::size_t length = outputs.text->size() + (outputs.isTerminated ? 1 : 0);
        std::copy_n(outputs.text->c_str(), std::min<std::size_t>(length, *call.size), call.buffer);
    }
    if (outputs.size && call.size != nullptr) *call.size = *outputs.size;
    if (call.values != nullptr) std::copy(outputs.values.begin(), outputs.values.end(), call.values);
    if (outputs.count && call.count != nullptr) *call.count = *outputs.count;
    if (!outputs.devices || call.list == nullptr) return;
    std::vector<I1PRO3_DeviceHandle>& list = lists[*outputs.devices];
    if (list.empty()) {
        for (const std::string& name : *outputs.devices) {
            list.push_back(&handles[name]);
        }
    }
    *call.list = list.data();
}

} // namespace simulator
