// The fields the server's password policy keeps, without a server: times as
// the server writes them, its attributes shown as the page's values, and the
// reasons it refuses a login. (Posted values reaching the server's attributes
// are proved with real binds in tests/ldap/ppolicy.sh.)
#include "ldap/server_policy.h"

#include <gtest/gtest.h>

#include "clock.h"

namespace lxrapi {
namespace {

Entry User(std::vector<EntryAttribute> attributes) {
    return Entry{"uid=u,o=t", std::move(attributes)};
}

std::time_t At(const char* stamp) {
    std::time_t t = 0;
    EXPECT_TRUE(ParseStamp(stamp, &t)) << stamp;
    return t;
}

TEST(ServerPolicyTest, ServerTimesInEveryFormTheServerKeeps) {
    struct Case {
        const char* text;
        const char* stamp;  // nullptr: refused
    } cases[] = {
        {"20261123190822Z", "20261123190822Z"},
        {"20261123190822.041758Z", "20261123190822Z"},
        {"202611231908Z", "20261123190800Z"},
        {"20261123190822+0100", "20261123180822Z"},
        {"20261123190822-05", "20261124000822Z"},
        {"20300101000000.5Z", "20300101000000Z"},
        {"000001010000Z", nullptr},  // the administrator's lock, not a time
        {"20261123190822", nullptr},
        {"20261123190822.Z", nullptr},
        {"20261131000000Z", nullptr},
        {"20261123190822+2500", nullptr},
    };
    for (const Case& c : cases) {
        std::time_t when = 0;
        bool ok = ParseGeneralizedTime(c.text, &when);
        EXPECT_EQ(ok, c.stamp != nullptr) << c.text;
        if (ok && c.stamp) {
            EXPECT_EQ(FormatStamp(when), c.stamp) << c.text;
        }
    }
}

TEST(ServerPolicyTest, TheServersStateIsShownInThePagesForms) {
    Entry e = User({
        {"pwdFailureTime", {"20261123190822.041758Z", "20261123190925.000001Z"}},
        {"pwdAccountLockedTime", {kLockedForever}},
        {"kvlxrDisableUntil", {"FOREVER left the firm"}},
        {"pwdEndTime", {"20270101000000Z"}},
        {"kvlxrDisableAfter", {"20260101000000Z stale comment"}},
        {"pwdGraceUseTime", {"20261101000000.000000Z"}},
        {"pwdLastSuccess", {"20261120080000Z"}},
        {"kvlxrImmediateChange", {"YES via LXRAdmin"}},  // no pwdReset: not shown
        {"kvlxrLoginHistory", {"20260101000000Z SUCCESS 10.0.0.1 stored"}},
    });
    std::vector<Entry> log = {
        Entry{"reqStart=2,cn=log",
              {{"reqStart", {"20261123190925.000001Z"}}, {"reqResult", {"49"}}}},
        Entry{"reqStart=1,cn=log",
              {{"reqStart", {"20261123080000.000000Z"}}, {"reqResult", {"0"}}}},
    };
    ShowServerState(log, &e);
    struct Case {
        const char* attribute;
        std::vector<std::string> values;
    } cases[] = {
        {"kvlxrFailureCount", {"2 20261123190925Z"}},
        {"kvlxrDisableUntil", {"FOREVER left the firm"}},
        {"kvlxrDisableAfter", {"20270101000000Z"}},  // a comment for another date is dropped
        {"kvlxrGraceLoginsUsed", {"1"}},
        {"kvlxrLastLogin", {"20261120080000Z"}},
        {"kvlxrImmediateChange", {}},
        {"kvlxrLastPasswordChange", {}},
        {"kvlxrLoginHistory",
         {"20261123190925Z FAILED not-recorded bind-result-49",
          "20261123080000Z SUCCESS not-recorded bind"}},
    };
    for (const Case& c : cases) EXPECT_EQ(e.Values(c.attribute), c.values) << c.attribute;
}

TEST(ServerPolicyTest, ReasonsAreThoseTheServerActsOn) {
    Entry policyEntry{"cn=p,o=t",
                      {{"pwdMaxFailure", {"3"}},
                       {"pwdLockout", {"TRUE"}},
                       {"pwdMaxAge", {"86400"}},
                       {"pwdMaxIdle", {"864000"}},
                       {"pwdGraceAuthNLimit", {"2"}},
                       {"pwdMustChange", {"TRUE"}}}};
    ServerPolicy policy = ReadServerPolicy(&policyEntry, policyEntry.dn);
    ServerPolicy temporary = policy, noLockout = policy;
    temporary.lockoutDuration = 3600;
    noLockout.lockout = false;
    std::time_t now = At("20261124120000Z");
    struct Case {
        const char* name;
        const ServerPolicy* policy;
        std::vector<EntryAttribute> attributes;
        std::vector<std::string> reasons;
    } cases[] = {
        {"administrator's lock",
         &policy,
         {{"pwdAccountLockedTime", {kLockedForever}}},
         {"Locked by an administrator"}},
        {"failure lock",
         &policy,
         {{"pwdAccountLockedTime", {"20261124110000Z"}},
          {"pwdFailureTime", {"20261124105900Z", "20261124105930Z", "20261124110000Z"}}},
         {"Locked after 3 failed logins"}},
        {"temporary lock",
         &temporary,
         {{"pwdAccountLockedTime", {"20261124113000Z"}}, {"pwdFailureTime", {"20261124113000Z"}}},
         {"Locked after 1 failed logins until 2026-11-24 12:30 UTC"}},
        {"temporary lock over", &temporary, {{"pwdAccountLockedTime", {"20261124100000Z"}}}, {}},
        {"lock without lockout", &noLockout, {{"pwdAccountLockedTime", {kLockedForever}}}, {}},
        {"failures at the maximum, not locked",
         &policy,
         {{"pwdFailureTime", {"20261124105900Z", "20261124105930Z", "20261124110000Z"}}},
         {}},
        {"future lock", &policy, {{"pwdAccountLockedTime", {"20261125000000Z"}}}, {}},
        {"not yet valid",
         &policy,
         {{"pwdStartTime", {"20261201000000Z"}}},
         {"Not valid before 2026-12-01 00:00 UTC"}},
        {"start beyond the server's clock", &policy, {{"pwdStartTime", {"99991231235959Z"}}}, {}},
        {"no longer valid",
         &policy,
         {{"pwdEndTime", {"20261101000000Z"}}},
         {"No longer valid since 2026-11-01 00:00 UTC"}},
        {"expired, grace left",
         &policy,
         {{"pwdChangedTime", {"20261120000000Z"}},
          {"pwdLastSuccess", {"20261123000000Z"}},
          {"pwdGraceUseTime", {"20261123000000Z"}}},
         {"Password expired 2026-11-21 00:00 UTC; 1 grace logins left"}},
        {"expired, no grace left",
         &policy,
         {{"pwdChangedTime", {"20261120000000Z"}},
          {"pwdLastSuccess", {"20261123000000Z"}},
          {"pwdGraceUseTime", {"20261123000000Z", "20261123000001Z"}}},
         {"Password expired 2026-11-21 00:00 UTC; no grace logins left"}},
        {"idle", &noLockout, {{"pwdLastSuccess", {"20261001000000Z"}}}, {}},
        {"idle with lockout",
         &temporary,
         {{"pwdLastSuccess", {"20261001000000Z"}}},
         {"Idle since 2026-10-01 00:00 UTC"}},
        {"must change",
         &policy,
         {{"pwdReset", {"TRUE"}}},
         {"Must change the password before anything else"}},
    };
    for (const Case& c : cases) {
        std::vector<std::string> said;
        for (const Text& t : EvaluateServerAccount(User(c.attributes), *c.policy, now).reasons)
            said.push_back(InEnglish(t));
        EXPECT_EQ(said, c.reasons) << c.name;
    }
}

}  // namespace
}  // namespace lxrapi
