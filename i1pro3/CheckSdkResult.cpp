#include "i1pro3/CheckSdkResult.h"

#include "i1pro3/I1PRO3_SDK.h"
#include "module/SPMException.h"
#include "platform/ForeignCall.h"

#include <algorithm>

std::string SdkTextBuffer::text() const {
    return {buffer.begin(), std::find(buffer.begin(), buffer.end(), '\0')};
}

void throwSdkError() {
    // Both queries share the buffer and the size variable: the second one gets the values that the first one left.
    SdkTextBuffer value;
    callForeign(I1PRO3_GetGlobalOption, "LastErrorText", value.data(), value.size());
    const std::string errorText = value.text();
    callForeign(I1PRO3_GetGlobalOption, "LastErrorNumber", value.data(), value.size());
    throw SPMException(spmErrorNumber, errorText + "\nErrorNumber: " + value.text());
}
