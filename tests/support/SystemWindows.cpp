#include "host/System.h"
#include "tests/support/System.h"

#include <aclapi.h>
#include <array>
#include <cstdlib>
#include <random>

namespace fs = std::filesystem;

const std::string lineEnd = "\r\n";
const std::string programExtension = ".exe";

namespace {

const std::string variableName = "SPM_TEST_KEY";

std::string inQuotes(const std::string& text) {
    return '"' + text + '"';
}

/// An open key of the registry.
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

/// Sets what everyone may do with the key SOFTWARE.
void allow(DWORD rights) {
    std::array<BYTE, SECURITY_MAX_SID_SIZE> everyone{};
    DWORD size = everyone.size();
    CreateWellKnownSid(WinWorldSid, nullptr, everyone.data(), &size);
    EXPLICIT_ACCESSA entry{};
    entry.grfAccessPermissions = rights;
    entry.grfAccessMode = SET_ACCESS;
    entry.Trustee.TrusteeForm = TRUSTEE_IS_SID;
    entry.Trustee.ptstrName = reinterpret_cast<char*>(everyone.data());
    PACL list = nullptr;
    SetEntriesInAclA(1, &entry, nullptr, &list);
    SECURITY_DESCRIPTOR descriptor{};
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE);
    HKEY software = nullptr;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, WRITE_DAC, &software);
    RegSetKeySecurity(software, DACL_SECURITY_INFORMATION, &descriptor);
    RegCloseKey(software);
    LocalFree(list);
}

/// The keys below one, each followed by its own.
std::vector<std::string> keysBelow(HKEY parent) {
    std::vector<std::string> keys;
    std::array<char, 256> name{};
    for (DWORD i = 0; RegEnumKeyA(parent, i, name.data(), static_cast<DWORD>(name.size())) == ERROR_SUCCESS; ++i) {
        keys.emplace_back(name.data());
        const Key key(parent, name.data());
        for (const std::string& below : keysBelow(key.get())) {
            keys.push_back(std::string(name.data()) + '\\' + below);
        }
    }
    return keys;
}

} // namespace

void setVariable(const std::string& name, const std::optional<std::string>& value) {
    _putenv_s(name.c_str(), value.value_or("").c_str());
    _tzset();
}

int run(const fs::path& program, const std::vector<std::string>& arguments, const Output& output) {
    std::string command = inQuotes(program.string());
    for (const std::string& argument : arguments) {
        command += " " + inQuotes(argument);
    }
    command += " >" + inQuotes(output.out.string()) + " 2>" + inQuotes(output.err.string());
    const std::string quoted = inQuotes(command);
    return _wsystem(fs::path(std::u8string(quoted.begin(), quoted.end()))
                        .c_str()); // the command interpreter takes away the outer quotes
}

bool isLoaded(const fs::path& library) {
    return GetModuleHandleW(library.c_str()) != nullptr;
}

void writeLibrary(const fs::path& path, const version_block::Block& resource) {
    fs::copy_file(host::programFolder() / "plain.dll", path, fs::copy_options::overwrite_existing);
    const HANDLE update = BeginUpdateResourceW(path.c_str(), TRUE);
    std::vector<char> bytes(resource.begin(), resource.end());
    constexpr WORD version = 16; // RT_VERSION
    UpdateResourceA(update, MAKEINTRESOURCEA(version), MAKEINTRESOURCEA(VS_VERSION_INFO), 0, bytes.data(),
                    static_cast<DWORD>(bytes.size()));
    EndUpdateResourceW(update, FALSE);
}

Settings::Settings() : place("Software\\spm test " + std::to_string(std::random_device{}())) {
    setVariable(variableName, place);
    adoptSettings();
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
    // A byte that is not 0 behind the data: the system would count a NUL as a text's own.
    const std::string guarded = data + 'x';
    RegSetValueExA(opened.get(), name.c_str(), 0, type, reinterpret_cast<const BYTE*>(guarded.data()),
                   static_cast<DWORD>(data.size()));
}

void Settings::forbid() {
    allow(KEY_READ | WRITE_DAC);
}

void Settings::clear() {
    allow(KEY_ALL_ACCESS);
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, "SOFTWARE");
    const Key software(HKEY_LOCAL_MACHINE, "SOFTWARE");
}

std::vector<std::string> Settings::keys() const {
    HKEY software = nullptr;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE", 0, KEY_READ, &software);
    const std::vector<std::string> keys = keysBelow(software);
    RegCloseKey(software);
    return keys;
}

bool Settings::hasValues() const {
    for (const std::string& name : keys()) {
        const Key key(HKEY_LOCAL_MACHINE, "SOFTWARE\\" + name);
        DWORD values = 0;
        RegQueryInfoKeyA(key.get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values, nullptr, nullptr,
                         nullptr, nullptr);
        if (values > 0) return true;
    }
    return false;
}

void adoptSettings() {
    const Key key(HKEY_CURRENT_USER, std::getenv(variableName.c_str()));
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, key.get());
}
