#pragma once

// Version resources for the tests that read them.

#include "tests/support/System.h"

/// A fixed part with file version 1.2.3.4.
inline version_block::FixedPart someFixedPart() {
    VS_FIXEDFILEINFO info{};
    info.dwFileVersionMS = 1 << 16 | 2;
    info.dwFileVersionLS = 3 << 16 | 4;
    return version_block::fixedPart(info);
}

/// Writes a library with the fixed part and one text, "Comments" = "text".
inline void writeCompleteLibrary(const std::filesystem::path& path) {
    const std::array<version_block::Text, 1> texts{{{"Comments", "text"}}};
    const std::array<version_block::Table, 1> tables{{{0x0409, 0x04B0, texts}}};
    writeLibrary(path, version_block::build(someFixedPart(), tables));
}
