#pragma once

#include <cstdio>

/// Opens a file like std::fopen, for a log that several threads and processes write. Each text that is put into it and
/// then flushed is appended as a whole. Opening doesn't wait for a reader of a FIFO; child processes don't inherit the
/// file.
/// @return null if the file can't be opened
[[nodiscard]] std::FILE* openLogStream(const char* path, const char* mode);
