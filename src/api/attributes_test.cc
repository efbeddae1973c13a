#include "attributes.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "config.h"
#include "i18n/locale_list.h"
#include "message.h"

namespace lxrapi {
namespace {

TEST(AttributesTest, TableHoldsEveryAttributeOnceInSectionOrder) {
    const auto& table = AttributeTable();
    EXPECT_EQ(table.size(), 26u);
    for (size_t i = 1; i < table.size(); ++i)
        EXPECT_LE(static_cast<int>(table[i - 1].section), static_cast<int>(table[i].section));
    for (const AttributeInfo& info : table) {
        EXPECT_EQ(FindAttribute(info.name), &info);
        EXPECT_EQ(info.prompt[0], '#') << info.name;
    }
    EXPECT_EQ(FindAttribute("KVFPSLOG")->name, std::string("kvfpsLog"));
    EXPECT_EQ(FindAttribute("cn"), nullptr);
    EXPECT_TRUE(IsHistory(*FindAttribute("kvlxrLoginHistory")));
    EXPECT_FALSE(IsHistory(*FindAttribute("kvlxrGenerationalRedirects")));
}

// The values the page posts and the forms the directory stores.
TEST(AttributesTest, ValuesAreCheckedAgainstTheirForm) {
    struct Case {
        const char* attribute;
        const char* value;
        bool ok;
    } cases[] = {
        {"kvlxrDisableUntil", "FOREVER vacation", true},
        {"kvlxrDisableUntil", "FOREVER ", true},  // the page always posts the blank
        {"kvlxrDisableUntil", "20260601120000Z back in June", true},
        {"kvlxrDisableUntil", "forever", false},
        {"kvlxrDisableUntil", "20260631120000Z", false},  // no 31 June
        {"kvlxrDisableAfter", "20260601120000Z", true},
        {"kvlxrDisableAfter", "2026060112000Z", false},
        {"kvlxrDisableAfter", "20260601120000", false},
        {"kvlxrMustLoginBy", "FOREVER", false},
        {"kvlxrBaseDate", "20240229000000Z", true},
        {"kvlxrBaseDate", "20250229000000Z", false},
        {"kvlxrFailureCount", "0 20260601120000Z", true},  // reset to now
        {"kvlxrFailureCount", "3 20260530101010Z 10.0.0.5", true},
        {"kvlxrFailureCount", "3 20260530101010Z fe80::1", true},
        {"kvlxrFailureCount", "3", true},
        {"kvlxrFailureCount", "-1 20260530101010Z", false},
        {"kvlxrFailureCount", "3 garbage 10.0.0.5", false},
        {"kvlxrFailureCount", "3 20260530101010Z 10.0.0.5 extra", false},
        {"kvfpsLockoutCounter", "x", false},
        {"kvlxrAccountInactivityDays", "30 temporary", true},
        {"kvlxrAccountInactivityDays", "0", true},
        {"kvlxrAccountInactivityDays", "thirty", false},
        {"kvlxrExpirePasswordDays", "14 test", true},
        {"kvlxrGraceLoginsUsed", "5", true},
        {"kvlxrGraceLoginsUsed", "1.5", false},
        {"kvlxrImmediateChange", "YES via LXRAdmin", true},
        {"kvlxrImmediateChange", "<b>x</b> & \"y\"", true},  // raw text is allowed
        {"kvlxrLoginHistory", "20260530101010Z SUCCESS 10.0.0.5 browser", true},
        {"kvlxrLoginHistory", "20260530101010Z SUCCESS 10.0.0.5", true},
        {"kvlxrLoginHistory", "20260530101010Z SUCCESS", false},
        {"kvlxrLoginHistory", "20260530101010Z <b> 10.0.0.5", false},
        {"kvlxrGenerationalRedirects", "KEY=0", true},
        {"kvlxrGenerationalRedirects", "KEY=https://t/ 20260101000000Z 10.1.1.1 comment", true},
        {"kvlxrGenerationalRedirects", "KEY=https://t/", true},
        {"kvlxrGenerationalRedirects", "=target", false},
        {"kvlxrGenerationalRedirects", "KEY", false},
        {"kvlxrGenerationalRedirects", "KEY=t notadate", false},
        {"kvlxrGenerationalRedirects", "K'Y=t", false},
        {"kvlxrTotalLogins", "412", true},
        {"kvlxrTotalLogins", "412 logins", false},
        {"kvlxrLastLogin", "20260530101010Z 10.0.0.5", true},
        {"kvlxrLastLogin", "20260530101010Z two words", false},
        {"kvlxrImmediateChange", "a</Value>b", false},
        {"kvlxrImmediateChange", "line\nbreak", false},
        {"kvlxrImmediateChange", "   ", false},
    };
    for (const Case& c : cases) {
        Status s = ValidateValue(*FindAttribute(c.attribute), c.value);
        EXPECT_EQ(s.ok(), c.ok) << c.attribute << " \"" << c.value << "\": " << s.message();
        if (!c.ok) {
            EXPECT_EQ(s.code(), kBadRequest);
            EXPECT_NE(s.message().find(c.attribute), std::string::npos) << s.message();
            // The rejected value is named, without what the program's pages
            // cannot show.
            EXPECT_NE(s.message().find(Quoted(c.value)), std::string::npos) << s.message();
        }
    }
    EXPECT_FALSE(
        ValidateValue(*FindAttribute("kvlxrImmediateChange"), std::string(2000, 'x')).ok());
}

// Every prompt the API sends is a catalogue key; the German web catalogue
// must translate each (the demo's group prompts included).
TEST(AttributesTest, EveryPromptHasAGermanText) {
    std::ifstream in(std::string(LXR_SOURCE_DIR) + "/catalogue/LXRAdmin/de.txt");
    ASSERT_TRUE(in) << "no catalogue/LXRAdmin/de.txt";
    std::stringstream text;
    text << in.rdbuf();
    std::vector<std::string> prompts = {"#Groups"};
    for (Section s :
         {Section::kStatus, Section::kPassword, Section::kActivity, Section::kRedirects})
        prompts.push_back(SectionPrompt(s));
    for (const AttributeInfo& info : AttributeTable()) prompts.push_back(info.prompt);
    Config demo;
    Status s = LoadConfig(std::string(LXR_SOURCE_DIR) + "/examples/lxrapi.toml", &demo);
    ASSERT_TRUE(s.ok()) << s.message();
    for (const DirectoryConfig& d : demo.directories)
        for (const GroupConfig& g : d.groups) prompts.push_back(g.prompt);
    for (const std::string& prompt : prompts) {
        ASSERT_EQ(prompt[0], '#') << prompt;
        EXPECT_NE(text.str().find("\n    " + CatalogueKey(prompt.c_str()) + "{\""),
                  std::string::npos)
            << prompt << " (" << CatalogueKey(prompt.c_str()) << ") has no German text";
    }
}

}  // namespace
}  // namespace lxrapi
