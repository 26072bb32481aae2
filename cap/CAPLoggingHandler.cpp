#include "cap/CAPLoggingHandler.h"

#include "cap/CAPLoggingMessage.h"
#include "cap/FormatText.h"

#include <exception>
#include <string_view>

namespace {

constexpr std::int32_t supportModuleNumber = 1;
constexpr std::int32_t unknownExceptionNumber = 2;
constexpr std::int32_t standardExceptionNumber = 3;

constexpr const char* withoutFolder(std::string_view path) {
    return path.substr(path.find_last_of("/\\") + 1).data();
}

constexpr const char* fileName = withoutFolder(__FILE__);

} // namespace

void CAPLoggingSource::AddListener(ICAPLoggingListener* newListener) {
    listener = newListener;
}

void CAPLoggingSource::RemoveListener() {
    listener = nullptr;
}

CAPLoggingHandler::~CAPLoggingHandler() = default;

void CAPLoggingHandler::HandleMessage(ICAPLoggingSource* source, const ICAPLoggingMessage& message) {
    Dispatch(source, message);
}

void CAPLoggingHandler::Dispatch(ICAPLoggingSource* source, const ICAPLoggingMessage& message) {
    ICAPLoggingListener* const receiver = listener;
    if (receiver == nullptr) return;
    try {
        receiver->HandleMessage(source, message);
    } catch (const CAPException&) {
        throw;
    } catch (const std::exception& exception) {
        throw CAPException(standardExceptionNumber, supportModuleNumber, "STL exception",
                           FormatText("%s, line %u of %s", exception.what(), unsigned{__LINE__}, fileName));
    } catch (...) {
        throw CAPException(unknownExceptionNumber, supportModuleNumber, "Exception",
                           FormatText("line %u of %s", unsigned{__LINE__}, fileName));
    }
}

void CAPLoggingHandler::LogMessage(const ICAPLoggingMessage& message) {
    Dispatch(this, message);
}

void CAPLoggingHandler::LogException(const CAPException& exception) {
    if (listener == nullptr) return;
    LogMessage(CAPLoggingMessage(exception));
}

void CAPLoggingHandler::Log(std::int32_t level, std::int32_t moduleNumber, const char* format, ...) {
    if (listener == nullptr) return;
    std::va_list arguments;
    va_start(arguments, format);
    const CAPLoggingMessage message(level, moduleNumber, FormatTextList(format, arguments));
    va_end(arguments);
    LogMessage(message);
}
