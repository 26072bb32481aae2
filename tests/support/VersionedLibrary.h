#pragma once

#include "cap/CAPFileVersionInfo.h"
#include "common/Environment.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <cstring>
#include <gtest/gtest.h>

/// A library file with a version resource from versions.rc, and the version information read from it.
class VersionedLibrary : public testing::Test {
protected:
    /// Reads the resources of versions.rc, in their order there, from the resource compiler's output. Each consists of
    /// its size, the size of its header, the rest of that header, and the resource.
    VersionedLibrary() {
        constexpr std::size_t fileHeader = 32;
        const std::string file = readFile(common::programFolder() / "versions.res");
        for (std::size_t entry = fileHeader; entry < file.size();) {
            std::array<std::uint32_t, 2> sizes{};
            std::memcpy(sizes.data(), &file[entry], sizeof sizes);
            versions.push_back(file.substr(entry + sizes[1], sizes[0]));
            entry += (sizes[0] + sizes[1] + 3) / 4 * 4;
        }
    }

    int load(const std::string& resource) {
        writeLibrary(path, resource);
        return info.loadFromFile(path.c_str());
    }

    std::vector<std::string> versions;
    TempFolder folder;
    std::string path = (folder / "library").string();
    CAPFileVersionInfo info;
};
