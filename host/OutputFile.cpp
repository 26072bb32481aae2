#include "host/OutputFile.h"

#include "host/HostError.h"

#include <cerrno>
#include <fmt/format.h>
#include <fstream>
#include <system_error>

namespace host {

void replaceFile(const std::filesystem::path& file, const std::string& content) {
    std::filesystem::path part = file;
    part += ".part";
    try {
        std::ofstream stream;
        stream.exceptions(std::ios::badbit | std::ios::failbit);
        stream.open(part);
        stream << content;
        stream.close();
        std::filesystem::rename(part, file);
    } catch (const std::filesystem::filesystem_error& error) {
        throw HostError(fmt::format("can't write {}: {}; choose another file or free its folder", file.string(),
                                    error.code().message()));
    } catch (const std::ios::failure&) {
        throw HostError(fmt::format("can't write {}: {}; choose another file or free its folder", part.string(),
                                    std::generic_category().message(errno)));
    }
}

} // namespace host
