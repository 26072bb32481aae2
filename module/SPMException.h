#pragma once

#include "cap/CAPException.h"

/// The number under which the spectrophotometer module raises and logs.
inline constexpr std::int32_t spmModuleNumber = 7;

/// The error number of everything that the module raises.
inline constexpr std::int32_t spmErrorNumber = 1539;

/// An error of the spectrophotometer module.
class SPMException : public CAPException {
public:
    SPMException(std::int32_t error, std::string mainText)
        : CAPException(error, spmModuleNumber, std::move(mainText)) {}
};
