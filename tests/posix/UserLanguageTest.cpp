#include "platform/win32.h"
#include "tests/support/Support.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>

TEST(UserLanguage, FollowsTheEnvironment) {
    using Locales = std::array<const char*, 3>; // LC_ALL, LC_MESSAGES, LANG
    const std::vector<std::pair<Locales, LANGID>> cases{
        {{"de_DE.UTF-8", "fr_FR", "it_IT"}, 0x0407},
        {{"", "fr_FR", "it_IT"}, 0x040C},
        {{"", "", "it_IT"}, 0x0410},
        {{"", "", ""}, 0x0409}, // US English if none is set
        {{"de_CH@euro", "", ""}, 0x0807},
        {{"de_LI", "", ""}, 0x0407},  // an unknown country falls back to the language's first
        {{"fil_PH", "", ""}, 0x0409}, // not Finnish
    };
    for (const auto& [locales, identifier] : cases) {
        const EnvironmentVariable all("LC_ALL", locales[0]);
        const EnvironmentVariable messages("LC_MESSAGES", locales[1]);
        const EnvironmentVariable language("LANG", locales[2]);
        EXPECT_EQ(GetUserDefaultLangID(), identifier) << locales[0] << locales[1] << locales[2];
    }
}

TEST(UserLanguage, AgreesWithPython) {
    const TempFolder folder;
    const std::string script =
        "import locale; [print(name, identifier) for identifier, name in locale.windows_locale.items()]";
    ASSERT_EQ(run("/usr/bin/python3", {"-c", script}, {folder / "out", folder / "err"}), 0);
    int known = 0;
    for (const std::string& line : linesOf(readFile(folder / "out"))) {
        const std::size_t blank = line.find(' ');
        const EnvironmentVariable variable("LC_ALL", line.substr(0, blank));
        if (GetUserDefaultLangID() == std::stoi(line.substr(blank))) ++known;
    }
    EXPECT_EQ(known, 34) << "the number of locales in UserLanguage.cpp";
}
