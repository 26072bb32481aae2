#include "cap/CAPFileVersionInfo.h"

#include "cap/BestTranslation.h"
#include "cap/FormatText.h"
#include "cap/ModuleFileName.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <vector>

namespace {

constexpr std::array textNames{
    "CompanyName", "FileDescription", "FileVersion", "InternalName",    "LegalCopyright", "OriginalFileName",
    "ProductName", "ProductVersion",  "Comments",    "LegalTrademarks", "PrivateBuild",   "SpecialBuild",
};
constexpr std::size_t comments = 8;

using Block = std::vector<char>;

/// Returns a file's version data, empty if it has none or can't be read.
Block readVersionData(const char* path) {
    Block block(GetFileVersionInfoSizeA(path, nullptr));
    const auto size = static_cast<DWORD>(block.size());
    if (size > 0 && GetFileVersionInfoA(path, 0, size, block.data()) != FALSE) return block;
    return {};
}

/// Returns the value at a path, empty if there is none. Its size is in bytes, or in characters for a text.
std::span<const char> query(const Block& block, const std::string& path) {
    void* value = nullptr;
    UINT length = 0;
    if (VerQueryValueA(block.data(), path.c_str(), &value, &length) == FALSE) return {};
    return {static_cast<const char*>(value), length};
}

std::optional<std::string> queryText(const Block& block, const std::string& path) {
    const std::span<const char> value = query(block, path);
    if (value.data() == nullptr) return std::nullopt;
    return std::string(value.begin(), std::find(value.begin(), value.end(), '\0'));
}

std::vector<Translation> queryTranslations(const Block& block) {
    const std::span<const char> value = query(block, "\\VarFileInfo\\Translation");
    std::vector<Translation> table(value.size() / sizeof(Translation));
    if (!table.empty()) std::memcpy(table.data(), value.data(), table.size() * sizeof(Translation));
    return table;
}

} // namespace

int CAPFileVersionInfo::loadFromModule(HMODULE module) {
    const std::string path = ModuleFileName(module);
    return path.empty() ? 0 : loadFromFile(path.c_str());
}

int CAPFileVersionInfo::loadFromFile(const char* path) {
    clear();
    fileName = path;
    const Block block = readVersionData(path);
    if (block.empty()) return 0;

    const std::span<const char> fixedPart = query(block, "\\");
    if (fixedPart.size() == sizeof fixedInfo) std::memcpy(&fixedInfo, fixedPart.data(), sizeof fixedInfo);

    const std::vector<Translation> table = queryTranslations(block);
    if (const Translation* const best = bestTranslation(table, GetUserDefaultLangID())) {
        const std::string prefix =
            FormatText("\\StringFileInfo\\%04X%04X\\", unsigned{best->language}, unsigned{best->codePage});
        std::transform(textNames.begin(), textNames.end(), texts.begin(),
                       [&](const char* name) { return queryText(block, prefix + name); });
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

const char* CAPFileVersionInfo::getComments() const {
    return texts[comments] ? texts[comments]->c_str() : nullptr;
}
