#include "common/Files.h"
#include "module/SPMRegistry.h"
#include "spm/doctor/StoredSettings.h"

#include <sstream>
#include <system_error>

namespace spm {

const char* const settingsAccessAdvice =
    "give this user permission to read and write the file or, if it does not exist, to create it; or set SPM_REGISTRY "
    "to another file";

std::string settingsText() try {
    const std::string file = SPMRegistry::place();
    return std::filesystem::is_regular_file(file) ? common::readFile(file) : ""; // reading a pipe might never end
} catch (const std::system_error&) {
    return "";
}

std::vector<std::string> storedValues() {
    std::vector<std::string> values;
    std::string key;
    std::istringstream lines(settingsText());
    for (std::string line; std::getline(lines, line);) {
        line.erase(0, line.find_first_not_of(" \t"));
        if (line.starts_with('[')) key = line.substr(1, line.rfind(']') - 1) + '\\';
        if (!line.starts_with('"')) continue;
        const std::size_t end = line.find('"', 1);
        const std::string value = key + line.substr(1, end - 1);
        std::erase(values, value);
        if (line.find("=-", end) == std::string::npos) values.push_back(value);
    }
    return values;
}

} // namespace spm
