// Lifetime and inactivity overrides without a server: which values the
// per-user policy gets, how it is named, and what the page is shown. (That
// the server applies them is proved with real binds in tests/ldap/ppolicy.sh.)
#include "ldap/policy_override.h"

#include <gtest/gtest.h>

namespace lxrapi {
namespace {

const char* kBase = "ou=user-policies,o=t";

Entry Policy(const char* cn, std::vector<EntryAttribute> extra) {
    Entry e{std::string("cn=") + cn + ",o=t",
            {{"objectClass", {"namedPolicy", "pwdPolicy"}},
             {"cn", {cn}},
             {"pwdAttribute", {"userPassword"}},
             {"pwdMaxFailure", {"5"}},
             {"pwdMaxAge", {"15552000"}}}};
    for (EntryAttribute& a : extra) e.Set(a.name, std::move(a.values));
    return e;
}

TEST(PolicyOverrideTest, CopiesAreNamedByWhatTheServerApplies) {
    std::vector<OverrideValue> days30 = {{"kvlxrExpirePasswordDays", 30 * 86400},
                                         {"kvlxrAccountInactivityDays", -1}};
    Entry reference;
    ASSERT_TRUE(CopyPolicy(Policy("default", {}), "cn=default,o=t", days30, kBase,
                           "kvlxrExpirePasswordDays", &reference)
                    .ok());
    EXPECT_EQ(reference.First("pwdMaxAge"), "2592000");
    EXPECT_EQ(reference.First("pwdMaxFailure"), "5");
    EXPECT_EQ(reference.First("pwdMaxIdle"), "");
    EXPECT_EQ(reference.dn.substr(reference.dn.find(',') + 1), kBase);

    struct Case {
        const char* what;
        Entry base;
        std::vector<OverrideValue> overrides;
        bool sameName;
    } cases[] = {
        {"another name and description, same content", Policy("other", {{"description", {"x"}}}),
         days30, true},
        {"the user's state on the policy is not policy",
         Policy("default", {{"pwdChangedTime", {"20260101000000Z"}}}), days30, true},
        {"no override: the base's lifetime",
         Policy("default", {}),
         {{"kvlxrExpirePasswordDays", -1}},
         false},
        {"an inactivity limit too",
         Policy("default", {}),
         {{"kvlxrExpirePasswordDays", 30 * 86400}, {"kvlxrAccountInactivityDays", 0}},
         false},
        {"another failure limit", Policy("default", {{"pwdMaxFailure", {"3"}}}), days30, false},
    };
    for (const Case& c : cases) {
        Entry copy;
        ASSERT_TRUE(
            CopyPolicy(c.base, c.base.dn, c.overrides, kBase, "kvlxrExpirePasswordDays", &copy)
                .ok())
            << c.what;
        EXPECT_EQ(copy.dn == reference.dn, c.sameName) << c.what;
        EXPECT_EQ(SamePolicy(copy, reference), c.sameName) << c.what;
        EXPECT_EQ(copy.First("pwdChangedTime"), "") << c.what;
    }

    Entry copy;
    Status s = CopyPolicy(Policy("slow", {{"pwdMinDelay", {"10"}}}), "cn=slow,o=t", days30, kBase,
                          "kvlxrExpirePasswordDays", &copy);
    EXPECT_EQ(s.code(), kUpdateFailed);
    EXPECT_NE(
        s.message().find("kvlxrExpirePasswordDays: the policy 'cn=slow,o=t' sets pwdMinDelay"),
        std::string::npos)
        << s.message();
}

TEST(PolicyOverrideTest, TheWriteKeepsTheOtherFieldOnlyWhereAPolicyHoldsIt) {
    Entry current = Policy("lxr-1", {{"pwdMaxIdle", {"864000"}}});
    struct Case {
        const char* what;
        Entry user;
        const Entry* policy;
        bool overridden;
        std::vector<std::string> posted;
        long lifetime, idle;
    } cases[] = {
        {"posted lifetime, idle kept from the policy",
         {"u", {{"kvlxrExpirePasswordDays", {"7 x"}}, {"kvlxrAccountInactivityDays", {"10"}}}},
         &current,
         true,
         {"kvlxrExpirePasswordDays"},
         7 * 86400,
         864000},
        {"a stored idle value without a policy is not in force",
         {"u", {{"kvlxrExpirePasswordDays", {"0"}}, {"kvlxrAccountInactivityDays", {"30 old"}}}},
         nullptr,
         false,
         {"kvlxrExpirePasswordDays"},
         0,
         -1},
        {"both removed",
         {"u", {}},
         &current,
         true,
         {"kvlxrExpirePasswordDays", "kvlxrAccountInactivityDays"},
         -1,
         -1},
    };
    for (const Case& c : cases) {
        std::vector<OverrideValue> after = OverridesAfter(c.user, c.policy, c.overridden, c.posted);
        ASSERT_EQ(after.size(), 2u);
        EXPECT_EQ(after[0].seconds, c.lifetime) << c.what;
        EXPECT_EQ(after[1].seconds, c.idle) << c.what;
    }
}

TEST(PolicyOverrideTest, ThePageSeesTheDaysThePolicyHolds) {
    Entry policy = Policy("lxr-1", {{"pwdMaxAge", {"2592000"}}, {"pwdMaxIdle", {"0"}}});
    struct Case {
        const char* stored;
        const Entry* policy;
        const char* shown;
    } cases[] = {
        {"30 finance", &policy, "30 finance"},
        {"45 stale comment", &policy, "30"},  // the policy was changed by hand
        {"90 finance", nullptr, ""},          // no override behind it
        {"", &policy, ""},
    };
    for (const Case& c : cases) {
        Entry e{"u", {{"kvlxrExpirePasswordDays", {c.stored}}}};
        if (!*c.stored) e.Set("kvlxrExpirePasswordDays", {});
        ShowOverrides(c.policy, &e);
        EXPECT_EQ(e.First("kvlxrExpirePasswordDays"), c.shown) << c.stored;
    }
}

}  // namespace
}  // namespace lxrapi
