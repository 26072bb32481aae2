#pragma once

#include "cap/CAPException.h"

/// The module number of the spectrophotometer module's exceptions and log messages.
inline constexpr std::int32_t spmModuleNumber = 7;

/// The error number of all of the module's exceptions.
inline constexpr std::int32_t spmErrorNumber = 1539;

/// An error of the spectrophotometer module.
class SPMException : public CAPException {
public:
    SPMException(std::int32_t error, std::string mainText)
        : CAPException(error, spmModuleNumber, std::move(mainText)) {}
};
