#include "attributes.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "config.h"
#include "i18n/locale_list.h"
#include "message.h"

namespace lxrapi {
namespace {

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
        {"kvlxrImmediateChange", "a & b", true},
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

// The pages show values unescaped in HTML text, attribute values and
// single-quoted script strings: a value that is otherwise well formed is
// refused for the one character that could end any of them, wherever in the
// value it stands.
TEST(AttributesTest, CharactersThatEndPageTextAreRefusedInEveryForm) {
    struct Case {
        const char* attribute;
        const char* value;
        const char* named;
    } cases[] = {
        {"kvlxrDisableAfter", "20260901000000Z <svg/onload=x>", "U+003C"},
        {"kvlxrDisableUntil", "FOREVER \">", "U+0022"},
        {"kvlxrDisableUntil", "20260601120000Z end\\", "U+005C"},
        {"kvlxrAccountInactivityDays", "30 x>y", "U+003E"},
        {"kvlxrGraceLoginsUsed", "5 tab\there", "U+0009"},
        {"kvlxrFailureCount", "3 20260530101010Z 10.0.0.5\r", "U+000D"},
        {"kvlxrImmediateChange", "YES'", "U+0027"},  // a flag has no comment
        {"kvlxrLoginHistory", "20260530101010Z SUCCESS 10.0.0.5 it's", "U+0027"},
        {"kvlxrGenerationalRedirects", "KEY=https://t/?a='b'", "U+0027"},
        {"kvlxrGenerationalRedirects", "KEY=javascript:alert(\"x\")", "U+0022"},
        {"kvlxrGenerationalRedirects", "KEY=https://t/ 20260101000000Z 10.1.1.1 <b>", "U+003C"},
        {"kvlxrGenerationalRedirects", "KEY=t 20260101000000Z 10.1.1.1 del\x7f", "U+007F"},
    };
    for (const Case& c : cases) {
        Status s = ValidateValue(*FindAttribute(c.attribute), c.value);
        EXPECT_EQ(s.code(), kBadRequest) << c.value;
        EXPECT_EQ(s.message().rfind(std::string("Attribute ") + c.attribute + ":", 0), 0u)
            << s.message();
        EXPECT_NE(s.message().find(std::string("holds the character ") + c.named),
                  std::string::npos)
            << s.message();
        EXPECT_TRUE(IsSafeMessage(s.message())) << s.message();
    }
}

// An apostrophe typed in a comment is stored as the typographic one; in any
// other place it is left as typed, for ValidateValue to refuse.
TEST(AttributesTest, ApostrophesInCommentsBecomeTypographic) {
    struct Case {
        const char* attribute;
        const char* value;
        const char* stored;
    } cases[] = {
        {"kvlxrDisableUntil", "FOREVER don't", "FOREVER don\u2019t"},
        {"kvlxrDisableAfter", "20260601120000Z  'a' b'", "20260601120000Z  \u2019a\u2019 b\u2019"},
        {"kvlxrAccountInactivityDays", "30 'temp'", "30 \u2019temp\u2019"},
        {"kvlxrGraceLoginsUsed", "2 it's", "2 it\u2019s"},
        {"kvlxrGenerationalRedirects", "K=https://t/ 20260101000000Z 10.1.1.1 don't",
         "K=https://t/ 20260101000000Z 10.1.1.1 don\u2019t"},
        {"kvlxrGenerationalRedirects", "K=https://t/?a='b'", "K=https://t/?a='b'"},
        {"kvlxrGenerationalRedirects", "K=t 20260101000000Z", "K=t 20260101000000Z"},
        {"kvlxrDisableUntil", "don't", "don't"},  // where the stamp belongs
        {"kvlxrLoginHistory", "20260530101010Z SUCCESS 10.0.0.5 it's",
         "20260530101010Z SUCCESS 10.0.0.5 it's"},
        {"kvlxrImmediateChange", "it's", "it's"},
    };
    for (const Case& c : cases) {
        const AttributeInfo& info = *FindAttribute(c.attribute);
        std::string stored = StoredForm(info, c.value);
        EXPECT_EQ(stored, c.stored) << c.value;
        // What a comment keeps is then accepted; what is left is refused.
        bool typed = stored.find('\'') == std::string::npos;
        EXPECT_EQ(ValidateValue(info, stored).ok(), typed) << stored;
    }
}

}  // namespace
}  // namespace lxrapi
