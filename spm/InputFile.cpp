#include "spm/InputFile.h"

#include "common/System.h"
#include "spm/Error.h"

#include <fmt/format.h>
#include <system_error>

namespace spm {

std::string readInput(const std::filesystem::path& file, std::string_view what) try {
    return common::readFile(file);
} catch (const std::system_error&) {
    throw Error(fmt::format("can't read {} {}; name a CSV file", what, file.string()));
}

} // namespace spm
