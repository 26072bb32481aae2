#pragma once

#include "module/SPM.h"

/// Copies a text into the buffer that a host lends: cut to fit, and the buffer filled up with NULs behind it. Without a
/// text only the first byte becomes NUL; without a buffer nothing is written.
/// @param source  may be null
void copyText(const char* source, const SPM_TEXT& target);
