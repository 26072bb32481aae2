#include "platform/win32.h"
#include "tests/support/Support.h"

#include <gtest/gtest.h>

TEST(UserLanguage, IsThatOfTheEnvironment) {
    struct Case {
        const char* locale;
        LANGID language;
    };
    const std::vector<Case> cases{
        {"de_DE.UTF-8", 0x0407},
        {"de_DE", 0x0407},
        {"de_CH@euro", 0x0807}, // a country of its own
        {"en_GB", 0x0809},
        {"de_LI", 0x0407},  // a country that is not known
        {"C", 0x0409},      // no language is US English
        {"", 0x0409},       // and so is none at all
        {"xx_XX", 0x0409},  // and one that is not known
        {"fil_PH", 0x0409}, // which is not Finnish
    };
    const EnvironmentVariable messages("LC_MESSAGES", "");
    const EnvironmentVariable language("LANG", "");
    for (const Case& each : cases) {
        const EnvironmentVariable variable("LC_ALL", each.locale);
        EXPECT_EQ(GetUserDefaultLangID(), each.language) << each.locale;
    }
    const EnvironmentVariable all("LC_ALL", "");
    const EnvironmentVariable french("LC_MESSAGES", "fr_FR");
    EXPECT_EQ(GetUserDefaultLangID(), 0x040C);
}
