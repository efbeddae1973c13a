#include "list/bulk.h"

#include <gtest/gtest.h>

#include "driver/update_document.h"

namespace {

// A user as the display page's document shows it, reduced to what the
// actions look at.
const char kDocument[] =
    "<User name=\"uid=ivan,ou=staff,o=example\" disabled=\"Failure count 5\">\n"
    "<Section name=\"status\" prompt=\"#Status\">\n"
    "<Attribute name=\"kvlxrFailureCount\" read=\"true\" write=\"true\"><Value>5 20260530080000Z "
    "10.0.0.7</Value></Attribute>\n"
    "<Attribute name=\"kvfpsLockoutCounter\" read=\"true\" write=\"true\"></Attribute>\n"
    "<Attribute name=\"kvlxrDisableUntil\" read=\"true\" write=\"false\"><Value>FOREVER "
    "x</Value></Attribute>\n"
    "<Attribute name=\"kvlxrDisableAfter\" read=\"true\" "
    "write=\"true\"><Value>20260501000000Z</Value></Attribute>\n"
    "<Attribute name=\"kvlxrImmediateChange\" read=\"true\" write=\"true\"></Attribute>\n"
    "<Group name=\"suspended\" read=\"true\" write=\"true\" member=\"false\"/>\n"
    "</Section>\n"
    "</User>\n";

TEST(Bulk, WritesTheDocumentTheUserPageWouldPost) {
    std::string dn;
    std::vector<CurrentValue> values;
    ASSERT_TRUE(ReadCurrentValues(kDocument, dn, values));
    EXPECT_EQ(dn, "uid=ivan,ou=staff,o=example");
    const time_t now = 1780315200;  // 2026-06-01 12:00:00 UTC
    struct Case {
        const char* action;
        const char* document;  // "" when nothing changes
    } cases[] = {
        // Only the counter that is set is reset; the lockout counter is unset.
        {"unlock",
         "<User name=\"uid=ivan,ou=staff,o=example\">\n"
         "    <Attribute name=\"kvlxrFailureCount\">\n"
         "        <Value>0 20260601120000Z</Value>\n"
         "    </Attribute>\n"
         "</User>\n"},
        // Disable-until is not writable for this role; disable-after is cleared.
        {"enable",
         "<User name=\"uid=ivan,ou=staff,o=example\">\n"
         "    <Attribute name=\"kvlxrDisableAfter\">\n"
         "        <Value/>\n"
         "    </Attribute>\n"
         "</User>\n"},
        {"mustchange",
         "<User name=\"uid=ivan,ou=staff,o=example\">\n"
         "    <Attribute name=\"kvlxrImmediateChange\">\n"
         "        <Value>YES via LXRAdmin</Value>\n"
         "    </Attribute>\n"
         "</User>\n"},
    };
    for (const Case& c : cases) {
        const BulkAction* action = FindBulkAction(c.action);
        ASSERT_NE(action, nullptr) << c.action;
        FieldMap fields;
        ASSERT_TRUE(BulkFields(*action, dn, values, now, fields)) << c.action;
        std::string document;
        ASSERT_TRUE(BuildUpdateDocument(fields, document));
        EXPECT_EQ(document, c.document) << c.action;
    }
    EXPECT_EQ(FindBulkAction("UNLOCK"), nullptr);
}

TEST(Bulk, NothingToChangeWritesNothing) {
    struct Case {
        const char* action;
        std::vector<CurrentValue> values;
    } cases[] = {
        {"unlock", {{"kvlxrFailureCount", true, " "}, {"kvfpsLockoutCounter", false, "5 x"}}},
        {"unlock",
         {{"kvlxrFailureCount", true, "0 20260601120000Z"}, {"kvfpsLockoutCounter", true, "0"}}},
        {"enable", {{"kvlxrDisableUntil", true, ""}, {"kvlxrTotalLogins", true, "3"}}},
        {"mustchange", {{"kvlxrImmediateChange", true, "YES already"}}},
        {"mustchange", {{"kvlxrImmediateChange", false, ""}}},
    };
    for (const Case& c : cases) {
        FieldMap fields;
        EXPECT_FALSE(BulkFields(*FindBulkAction(c.action), "uid=x", c.values, 0, fields))
            << c.action;
    }
}

}  // namespace
