#pragma once

#include "module/SPM.h"

/// Copies a text into a host's buffer, truncated to fit, and fills the rest of the buffer with NULs.
/// @param source  if null, only the first byte of the buffer is set to NUL
/// @param target  if its text is null or its size below 1, nothing is written
void copyText(const char* source, const SPM_TEXT& target);
