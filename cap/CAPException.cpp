#include "cap/CAPException.h"

#include <utility>

CAPException::CAPException(std::int32_t error, std::int32_t module, std::string mainText, std::string detailText)
    : errorNumber(error), moduleNumber(module), text(std::move(mainText)), detail(std::move(detailText)) {}

CAPException::~CAPException() = default;
