#include "platform/posix/win32.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

struct Language {
    std::string_view locale;
    LANGID identifier;
};

constexpr LANGID usEnglish = 0x0409;

/// Locales and their language identifiers. The first entry of a language is also used for countries not listed.
/// Source: "Language identifier constants and strings" in the Windows API reference.
constexpr std::array languages{
    Language{"en_US", usEnglish}, Language{"en_GB", 0x0809}, Language{"en_AU", 0x0C09}, Language{"en_CA", 0x1009},
    Language{"de_DE", 0x0407},    Language{"de_CH", 0x0807}, Language{"de_AT", 0x0C07}, Language{"fr_FR", 0x040C},
    Language{"fr_BE", 0x080C},    Language{"fr_CA", 0x0C0C}, Language{"fr_CH", 0x100C}, Language{"it_IT", 0x0410},
    Language{"it_CH", 0x0810},    Language{"es_ES", 0x0C0A}, Language{"es_MX", 0x080A}, Language{"pt_PT", 0x0816},
    Language{"pt_BR", 0x0416},    Language{"nl_NL", 0x0413}, Language{"nl_BE", 0x0813}, Language{"da_DK", 0x0406},
    Language{"sv_SE", 0x041D},    Language{"nb_NO", 0x0414}, Language{"fi_FI", 0x040B}, Language{"pl_PL", 0x0415},
    Language{"cs_CZ", 0x0405},    Language{"hu_HU", 0x040E}, Language{"tr_TR", 0x041F}, Language{"el_GR", 0x0408},
    Language{"ru_RU", 0x0419},    Language{"uk_UA", 0x0422}, Language{"ja_JP", 0x0411}, Language{"ko_KR", 0x0412},
    Language{"zh_CN", 0x0804},    Language{"zh_TW", 0x0404},
};

std::string_view environmentLocale() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(variable);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

/// Returns the identifier of the first locale with a prefix; 0 if there is none.
LANGID findByPrefix(std::string_view prefix) {
    const auto* const found = std::find_if(languages.begin(), languages.end(), [&](const Language& language) {
        return language.locale.starts_with(prefix);
    });
    return found != languages.end() ? found->identifier : LANGID{0};
}

} // namespace

LANGID GetUserDefaultLangID() {
    const std::string_view environment = environmentLocale();
    const std::string locale(environment.substr(0, environment.find_first_of(".@")));
    if (locale.empty()) return usEnglish;
    if (const LANGID exact = findByPrefix(locale)) return exact;
    const LANGID sameLanguage = findByPrefix(locale.substr(0, locale.find('_')) + '_');
    return sameLanguage != 0 ? sameLanguage : usEnglish;
}
