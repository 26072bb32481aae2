#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <cstdlib>
#include <random>
#include <sstream>
#include <sys/fsuid.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

const std::string lineEnd = "\n";
const std::string programExtension;

namespace {

const std::string variableName = "SPM_REGISTRY";
const std::string software = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\";

} // namespace

void setVariable(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
        setenv(name.c_str(), value->c_str(), 1);
    } else {
        unsetenv(name.c_str());
    }
    tzset();
}

std::string quoted(const std::string& word) {
    return '\'' + word + '\'';
}

int execute(const std::string& command) {
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Settings::Settings()
    : place(fs::temp_directory_path() / ("spm test " + std::to_string(std::random_device{}()) + ".reg")) {
    setVariable(variableName, place);
}

Settings::~Settings() {
    setVariable(variableName, std::nullopt);
    clear();
}

void Settings::set(const std::string& key, const std::string& name, std::uint32_t type, const std::string& data) {
    std::ostringstream value;
    for (const char byte : data) {
        value << (value.tellp() > 0 ? "," : "") << std::hex << unsigned{static_cast<unsigned char>(byte)};
    }
    const std::string before = readFile(place);
    writeFile(place, (before.empty() ? "REGEDIT4\n" : before) + software + key + "]\n\"" + name + "\"=hex(" +
                         std::to_string(type) + "):" + value.str() + "\n");
}

void Settings::denyWriting() {
    constexpr uid_t nobody = 65534;
    if (!fs::exists(place)) writeFile(place, "");
    fs::permissions(place, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    setfsuid(nobody);
}

void Settings::clear() {
    setfsuid(geteuid());
    fs::remove(place);
}
