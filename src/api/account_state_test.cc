#include "account_state.h"

#include <gtest/gtest.h>

#include "test_support.h"

namespace lxrapi {
namespace {

Entry User(std::vector<std::pair<const char*, const char*>> values) {
    Entry e;
    e.dn = "uid=u,o=t";
    for (auto& [name, value] : values) e.Set(name, {value});
    return e;
}

TEST(AccountStateTest, EveryReasonAndItsRedisableFlag) {
    Policy policy;
    policy.maxFailures = 5;
    policy.passwordExpireDays = 100;
    const std::time_t now = testing::kNow;  // 2026-06-01 12:00 UTC
    struct Case {
        std::vector<std::pair<const char*, const char*>> values;
        const char* disabled;
        std::vector<std::string> redisable;
    } cases[] = {
        {{}, "", {}},
        {{{"kvlxrDisableUntil", "FOREVER vacation"}}, "Disabled forever", {}},
        {{{"kvlxrDisableUntil", "20260701000000Z leave"}},
         "Disabled until 2026-07-01 00:00 UTC",
         {}},
        {{{"kvlxrDisableUntil", "20260501000000Z back"}}, "", {}},
        {{{"kvlxrDisableAfter", "20260501000000Z"}},
         "Disabled after 2026-05-01 00:00 UTC",
         {"kvlxrdisableafter"}},
        {{{"kvlxrDisableAfter", "20260701000000Z"}}, "", {}},
        {{{"kvlxrMustLoginBy", "20260515000000Z"}},
         "Did not log in by 2026-05-15 00:00 UTC",
         {"kvlxrmustloginby"}},
        {{{"kvlxrFailureCount", "5 20260601100000Z 10.0.0.1"}},
         "Failure count 5 reached the maximum of 5",
         {"kvlxrfailurecount"}},
        {{{"kvlxrFailureCount", "4 20260601100000Z 10.0.0.1"}}, "", {}},
        {{{"kvfpsLockoutCounter", "9"}},
         "Lockout counter 9 reached the maximum of 5",
         {"kvfpslockoutcounter"}},
        // Expiry: 2026-01-01 plus the policy's 100 days is 2026-04-11.
        {{{"kvlxrLastPasswordChange", "20260101000000Z"}},
         "Password expired 2026-04-11 00:00 UTC",
         {"kvlxrexpirepassworddays", "kvlxrlastpasswordchange"}},
        {{{"kvlxrLastPasswordChange", "20260101000000Z"}, {"kvlxrExpirePasswordDays", "0 never"}},
         "",
         {}},
        {{{"kvlxrLastPasswordChange", "20260101000000Z"}, {"kvlxrExpirePasswordDays", "365"}},
         "",
         {}},
        {{{"kvlxrLastLogin", "20260401000000Z 10.0.0.1"}, {"kvlxrAccountInactivityDays", "30"}},
         "Inactive since 2026-04-01 00:00 UTC",
         {"kvlxraccountinactivitydays"}},
        // A stored base date that is also too old can be reset from the page.
        {{{"kvlxrLastLogin", "20260401000000Z 10.0.0.1"},
          {"kvlxrAccountInactivityDays", "30"},
          {"kvlxrBaseDate", "20260301000000Z migrated"}},
         "Inactive since 2026-04-01 00:00 UTC",
         {"kvlxraccountinactivitydays", "kvlxrbasedate"}},
        // A later base date restarts the inactivity clock.
        {{{"kvlxrLastLogin", "20260401000000Z 10.0.0.1"},
          {"kvlxrAccountInactivityDays", "30"},
          {"kvlxrBaseDate", "20260520000000Z reset"}},
         "",
         {}},
        {{{"kvlxrDisableUntil", "FOREVER x"}, {"kvlxrFailureCount", "6"}},
         "Disabled forever,Failure count 6 reached the maximum of 5",
         {"kvlxrfailurecount"}},
        {{{"kvlxrDisableAfter", "garbage"}}, "", {}},
    };
    for (const Case& c : cases) {
        AccountState state = EvaluateAccount(User(c.values), policy, {}, now);
        EXPECT_EQ(state.DisabledText(), c.disabled) << (c.values.empty() ? "" : c.values[0].second);
        EXPECT_EQ(std::vector<std::string>(state.redisable.begin(), state.redisable.end()),
                  c.redisable)
            << c.disabled;
    }
}

TEST(AccountStateTest, GroupsWithAReasonDisableTheirMembers) {
    GroupConfig locked{"locked", "cn=locked,o=t", "#Locked", "Locked by policy"};
    GroupConfig plain{"vpn", "cn=vpn,o=t", "VPN", ""};
    Policy policy;
    AccountState state =
        EvaluateAccount(User({}), policy, {{&locked, true}, {&plain, true}}, testing::kNow);
    EXPECT_EQ(state.DisabledText(), "Locked by policy");
    state = EvaluateAccount(User({}), policy, {{&locked, false}}, testing::kNow);
    EXPECT_EQ(state.DisabledText(), "");
}

}  // namespace
}  // namespace lxrapi
