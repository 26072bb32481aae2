#include "cap/CAPFileVersionInfo.h"

#include "cap/FormatText.h"
#include "cap/ModuleFileName.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace {

constexpr std::array<const char*, CAPFileVersionInfo::textCount> textNames{
    "CompanyName", "FileDescription", "FileVersion", "InternalName",    "LegalCopyright", "OriginalFileName",
    "ProductName", "ProductVersion",  "Comments",    "LegalTrademarks", "PrivateBuild",   "SpecialBuild",
};

constexpr LANGID primaryLanguage(LANGID language) {
    return language & 0xFF;
}

constexpr LANGID neutral = 0;
constexpr LANGID english = 9;

/// An entry of the resource's translation table.
struct Translation {
    WORD language;
    WORD codePage;
};

/// A file's version data, as GetFileVersionInfoA returns it.
class VersionData {
public:
    /// Empty if the file has no version data or can't be read. Reads into a block of the maximum size: asking for the
    /// size first would read the file twice.
    explicit VersionData(const char* path)
        : block(std::make_unique_for_overwrite<char[]>(maxSize)),
          isEmpty(GetFileVersionInfoA(path, 0, maxSize, block.get()) == FALSE) {}

    bool empty() const { return isEmpty; }

    /// Returns the value at a path, empty if there is none. Its size is in bytes, or in characters for a text.
    std::span<const char> query(const std::string& path) const {
        void* value = nullptr;
        UINT length = 0;
        if (VerQueryValueA(block.get(), path.c_str(), &value, &length) == FALSE) return {};
        return {static_cast<const char*>(value), length};
    }

    std::optional<std::string> text(const std::string& path) const {
        const std::span<const char> value = query(path);
        if (value.data() == nullptr) return std::nullopt;
        return std::string(value.begin(), std::find(value.begin(), value.end(), '\0'));
    }

    std::vector<Translation> translations() const {
        const std::span<const char> value = query("\\VarFileInfo\\Translation");
        std::vector<Translation> table(value.size() / sizeof(Translation));
        if (!table.empty()) std::memcpy(table.data(), value.data(), table.size() * sizeof(Translation));
        return table;
    }

private:
    /// A resource's length is a 16-bit number, and the system appends a buffer of the same size to convert texts in.
    static constexpr DWORD maxSize = 2 * 0x10000;

    std::unique_ptr<char[]> block;
    bool isEmpty;
};

/// Returns the entry that best matches the user's language. In order of preference: the same language, the same primary
/// language, the neutral language, English, the first entry.
std::optional<Translation> bestTranslation(const std::vector<Translation>& table) {
    if (table.empty()) return std::nullopt;
    const LANGID user = GetUserDefaultLangID();
    const auto find = [&](auto matches) {
        return std::find_if(table.begin(), table.end(), [&](Translation entry) { return matches(entry.language); });
    };
    const auto same = [&](LANGID wanted) { return find([=](LANGID language) { return language == wanted; }); };
    const auto samePrimary = [&](LANGID wanted) {
        return find([=](LANGID language) { return primaryLanguage(language) == primaryLanguage(wanted); });
    };
    for (const auto found :
         {same(user), samePrimary(user), same(neutral), samePrimary(neutral), same(english), samePrimary(english)}) {
        if (found != table.end()) return *found;
    }
    return table.front();
}

} // namespace

CAPFileVersionInfo::~CAPFileVersionInfo() = default;

int CAPFileVersionInfo::loadFromModule(HMODULE module) {
    const std::string path = ModuleFileName(module);
    return path.empty() ? 0 : loadFromFile(path.c_str());
}

int CAPFileVersionInfo::loadFromFile(const char* path) {
    std::string newName = path; // copied first: `path` may be one of the texts that clear() frees
    clear();
    fileName = std::move(newName);
    const VersionData data(fileName->c_str());
    if (data.empty()) return 0;

    const std::span<const char> fixedPart = data.query("\\");
    if (fixedPart.size() == sizeof fixedInfo) std::memcpy(&fixedInfo, fixedPart.data(), sizeof fixedInfo);

    if (const std::optional<Translation> best = bestTranslation(data.translations())) {
        const std::string table =
            FormatText("\\StringFileInfo\\%04X%04X\\", unsigned{best->language}, unsigned{best->codePage});
        std::transform(textNames.begin(), textNames.end(), texts.begin(),
                       [&](const char* name) { return data.text(table + name); });
    }
    return 1;
}

void CAPFileVersionInfo::clear() {
    fileName.reset();
    fixedInfo = {};
    texts.fill(std::nullopt);
}

std::uint16_t CAPFileVersionInfo::getFileVersionPart(int index) const {
    if (index < 0 || index > 3) return 0;
    const DWORD half = index < 2 ? fixedInfo.dwFileVersionLS : fixedInfo.dwFileVersionMS;
    return static_cast<std::uint16_t>(index % 2 == 0 ? half & 0xFFFF : half >> 16);
}

const char* CAPFileVersionInfo::getText(Text text) const {
    const std::optional<std::string>& loaded = texts[static_cast<std::size_t>(text)];
    return loaded ? loaded->c_str() : nullptr;
}
