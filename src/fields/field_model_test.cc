#include "fields/field_model.h"

#include <string>

#include "fields/display.h"
#include "fields/edit_date.h"
#include "fields/edit_multi.h"
#include "fields/edit_simple.h"
#include "fields/fields_test_support.h"

namespace fields_test {
namespace {

class FieldModelTest : public FieldsTest {};

TEST_F(FieldModelTest, TableHasItsRowsInOrder) {
    int rows = 0;
    while (Funcs[rows].name != nullptr) ++rows;
    EXPECT_EQ(rows, 26);
    EXPECT_STREQ(Funcs[0].name, "kvlxrAccountInactivityDays");
    EXPECT_STREQ(Funcs[25].name, "userPassword");
    EXPECT_EQ(Funcs[26].display, nullptr);
    EXPECT_EQ(Funcs[26].edit, nullptr);
}

TEST_F(FieldModelTest, LookupIgnoresCaseAndBindsHandlers) {
    struct Row {
        const char* name;
        int detail;
        DisplayHandler display;
        EditHandler edit;
    };
    const Row rows[] = {
        {"KVLXRFAILURECOUNT", 0, outCountDateIP, inCountDateOrNow},
        {"kvlxraccountinactivitydays", 0, outDaysOverride, inDaysOverride},
        {"kvlxrBaseDate", 0, outDateComment, inDateCommentOrNow},
        {"kvlxrDisableAfter", 0, outDateComment, inDisableAfter},
        {"kvlxrDisableUntil", 0, outDateComment, inDisableUntil},
        {"kvlxrMustLoginBy", 0, outDateComment, inMustLoginBy},
        {"kvlxrFailuresSinceLastLogin", 0, outCountDateIP, nullptr},
        {"kvlxrGenerationalRedirects", 0, outGenRedirect, inGenRedirect},
        {"kvlxrGraceLoginsUsed", 0, outCountComment, inCount},
        {"kvlxrHistory", 0, nullptr, nullptr},
        {"kvlxrImmediateChange", 0, outImmediateChange, inImmediateChange},
        {"kvlxrLastLogin", 0, outDateIP, nullptr},
        {"kvlxrLoginHistory", 1, outHistory, inHistory},
        {"KvFpsLog", 1, outHistory, inHistory},
        {"kvfpsLockoutCounter", 0, outCountDateIP, inCountDateOrNow},
        {"kvlxrTotalLogins", 0, outStandard, nullptr},
        {"userpassword", 0, nullptr, inPassword},
    };
    for (const Row& row : rows) {
        const FUNCS* found = FindFuncs(row.name);
        ASSERT_NE(found, nullptr) << row.name;
        EXPECT_EQ(found->detail, row.detail) << row.name;
        EXPECT_EQ(found->display, row.display) << row.name;
        EXPECT_EQ(found->edit, row.edit) << row.name;
    }
    EXPECT_EQ(FindFuncs("cn"), nullptr);
    EXPECT_EQ(FindFuncs("kvlxrFailureCountX"), nullptr);
    EXPECT_EQ(FindFuncs(nullptr), nullptr);
}

TEST_F(FieldModelTest, TagsComeFromTheirKeys) {
    // A translator that shows its keys reveals which entry fed which label.
    Lang = GetLanguage("LXRAdmin", "", nullptr, true);
    FillTags();
    delete Lang;
    Lang = nullptr;
    struct Row {
        const std::string& tag;
        const char* expected;
    };
    const Row rows[] = {
        {tagLocal, "[KV-LXR-12025] (local)"},
        {tagComment, "[KV-LXR-12017] Comment:"},
        {tagWhen, "[KV-LXR-12026] When:"},
        {tagTimes, "[KV-LXR-12027] Count:"},
        {tagDays, "[KV-LXR-12028] Days"},
        {tagDay, "[KV-LXR-12029] Day"},
        {tagWeeks, "[KV-LXR-12030] Weeks"},
        {tagWeek, "[KV-LXR-12031] Week"},
        {tagIP, "[KV-LXR-12032] IP:"},
        {tagClear, "[KV-LXR-12033] Clear"},
        {tagNotSet, "[KV-LXR-12024] Not&nbsp;Set"},
        {tagNow, "[KV-LXR-12034] Reset&nbsp;to&nbsp;Now"},
        {tagStatus, "[KV-LXR-12035] Status:"},
        {tagYES, "[KV-LXR-12036] Yes"},
        {tagNO, "[KV-LXR-12037] No"},
        {tagUseConfig, "[KV-LXR-12038] &lt;default&gt;"},
        {tagNever, "[KV-LXR-12039] &lt;never&gt;"},
        {tagForever, "[KV-LXR-12040] Forever"},
        {tagDisabled, "[KV-LXR-12041] User will not be able to login"},
        {tagRedisable,
         "[KV-LXR-12042] Unless reset, this value may cause the user to be "
         "disabled at next login"},
    };
    for (const Row& row : rows) EXPECT_EQ(row.tag, row.expected);
    // Without a translator the English defaults stand.
    FillTags();
    EXPECT_EQ(tagNotSet, "Not&nbsp;Set");
}

TEST_F(FieldModelTest, NowHonoursFixedClock) {
    struct Row {
        const char* env;  // null: unset
        bool fixed;
        time_t expected;
    };
    const Row rows[] = {
        {"1104920430", true, 1104920430},
        {"0", true, 0},
        {"12abc", false, 0},
        {"-5", false, 0},
        {"", false, 0},
        {"99999999999999999999999", false, 0},
        {nullptr, false, 0},
    };
    for (const Row& row : rows) {
        if (row.env) {
            setenv("LXR_NOW", row.env, 1);
        } else {
            unsetenv("LXR_NOW");
        }
        time_t before = time(nullptr);
        InitNow();
        if (row.fixed) {
            EXPECT_EQ(Now, row.expected) << row.env;
        } else {
            EXPECT_GE(Now, before) << (row.env ? row.env : "(unset)");
            EXPECT_LE(Now, time(nullptr));
        }
    }
    unsetenv("LXR_NOW");
}

}  // namespace
}  // namespace fields_test
