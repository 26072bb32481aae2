#include "common/Environment.h"
#include "tests/support/System.h"

#include <array>
#include <cstdlib>
#include <random>
#include <regex>
#include <sddl.h>

namespace fs = std::filesystem;

const std::string lineEnd = "\r\n";
const std::string programExtension = ".exe";

namespace {

const std::string variableName = "SPM_TEST_KEY";

/// An open registry key.
class Key {
public:
    Key(HKEY parent, const std::string& path) { RegCreateKeyA(parent, path.c_str(), &key); }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() { RegCloseKey(key); }
    HKEY get() const { return key; }

private:
    HKEY key = nullptr;
};

/// Sets everyone's rights to the key SOFTWARE, given in the security descriptor definition language.
void allow(const char* rights) {
    const std::string text = std::string("D:(A;;") + rights + ";;;WD)";
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorA(text.c_str(), SDDL_REVISION_1, &descriptor, nullptr);
    HKEY software = nullptr;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, WRITE_DAC, &software);
    RegSetKeySecurity(software, DACL_SECURITY_INFORMATION, descriptor);
    RegCloseKey(software);
    LocalFree(descriptor);
}

} // namespace

void setVariable(const std::string& name, const std::optional<std::string>& value) {
    _putenv_s(name.c_str(), value.value_or("").c_str());
    _tzset();
}

std::string quoted(const std::string& word) {
    return '"' + std::regex_replace(word, std::regex("\""), "\\\"") + '"';
}

int execute(const std::string& command) {
    const std::string inQuotes = '"' + command + '"'; // the command interpreter removes the outer quotes
    return _wsystem(fs::path(std::u8string(inQuotes.begin(), inQuotes.end())).c_str());
}

Settings::Settings() : place("Software\\spm test " + std::to_string(std::random_device{}())) {
    setVariable(variableName, place);
    const Key key(HKEY_CURRENT_USER, place);
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, key.get());
    const Key software(HKEY_LOCAL_MACHINE, "SOFTWARE");
}

Settings::~Settings() {
    clear();
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    setVariable(variableName, std::nullopt);
    RegDeleteTreeA(HKEY_CURRENT_USER, place.c_str());
}

void Settings::set(const std::string& key, const std::string& name, std::uint32_t type, const std::string& data) {
    const Key opened(HKEY_LOCAL_MACHINE, "SOFTWARE\\" + key);
    // If the byte behind a text were 0, the system would include it as the terminating NUL.
    const std::string guarded = data + 'x';
    RegSetValueExA(opened.get(), name.c_str(), 0, type, reinterpret_cast<const BYTE*>(guarded.data()),
                   static_cast<DWORD>(data.size()));
}

void Settings::denyWriting() {
    allow("KRWD");
}

void Settings::clear() {
    allow("KA");
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, "SOFTWARE");
    const Key software(HKEY_LOCAL_MACHINE, "SOFTWARE");
}
