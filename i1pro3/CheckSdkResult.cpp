#include "i1pro3/CheckSdkResult.h"

#include "i1pro3/I1PRO3_SDK.h"
#include "module/SPMException.h"
#include "platform/ForeignCall.h"

#include <algorithm>

std::string SdkText::text() const {
    return {buffer.begin(), std::find(buffer.begin(), buffer.end(), '\0')};
}

void throwSdkError() {
    // Both queries share the buffer and the size: the second is offered what the first left in them.
    SdkText answer;
    callForeign(I1PRO3_GetGlobalOption, "LastErrorText", answer.data(), answer.size());
    const std::string errorText = answer.text();
    callForeign(I1PRO3_GetGlobalOption, "LastErrorNumber", answer.data(), answer.size());
    throw SPMException(spmErrorNumber, errorText + "\nErrorNumber: " + answer.text());
}
