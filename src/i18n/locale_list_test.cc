#include "i18n/locale_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

TEST(PreferredLocales, TagsAndLists) {
    struct Case {
        const char* text;
        Names want;
    } cases[] = {
        {"", {}},
        {"de", {"de"}},
        {"de-DE", {"de_DE"}},
        {"DE_de", {"de_DE"}},
        {"zh-hant-tw", {"zh_Hant_TW"}},
        {"es-419", {"es_419"}},
        {"de-DE-1996", {"de_DE"}},  // variant dropped
        {"en-US-u-ca-gregory", {"en_US"}},
        {"fr,de;q=0.8,en-US;q=0.001", {"fr", "de", "en_US"}},
        {"en;q=0.5, fr , de;q=0.9", {"fr", "de", "en"}},
        {"a1;q=1,de;q=0.3,fr;q=0.3", {"de", "fr"}},  // equal quality keeps the order
        {"de; b=2", {"de"}},                         // the cookie quirk's tail
        {"de;q=0,fr", {"fr"}},
        {"de;Q=0.000,fr;q=0.2", {"fr"}},
        {"de;q=abc", {"de"}},  // unreadable quality: ignored
        {"de;q=7", {"de"}},
        {"*;q=0.1,de", {"de", "*"}},
        {",,de,,", {"de"}},
        {"ja;q=0.001", {"ja"}},
    };
    for (const Case& c : cases) EXPECT_EQ(PreferredLocales(c.text), c.want) << c.text;
    EXPECT_TRUE(PreferredLocales(nullptr).empty());
}

TEST(PreferredLocales, NothingThatCouldNameAPath) {
    const char* bad[] = {"../de", "de/../../etc", "d",   "deutsch", "de-DE-toolongvariant",
                         "de DE", "1de",          "de-", ".",       "de\xC3\xA9"};
    for (const char* text : bad) EXPECT_TRUE(PreferredLocales(text).empty()) << text;
}

TEST(ParentLocale, Chain) {
    // Traditional Chinese never reaches the Simplified "zh" bundle.
    const char* const cases[][2] = {
        {"zh_Hans_CN", "zh_Hans"}, {"zh_Hans", "zh"}, {"zh", ""}, {"zh_Hant_TW", "zh_Hant"},
        {"zh_TW", "zh_Hant"},      {"zh_Hant", ""},   {"", ""}};
    for (const auto& c : cases) EXPECT_EQ(ParentLocale(c[0]), c[1]) << c[0];
}

}  // namespace
