// Lifetime and inactivity overrides without a server: how a per-user policy
// is named, and what the page is shown when the policy was changed by hand.
// (Which policy a write gives, and that the server applies it, is proved
// with real binds in tests/ldap/ppolicy.sh.)
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
    };
    for (const Case& c : cases) {
        Entry e{"u", {{"kvlxrExpirePasswordDays", {c.stored}}}};
        ShowOverrides(c.policy, &e);
        EXPECT_EQ(e.First("kvlxrExpirePasswordDays"), c.shown) << c.stored;
    }
}

}  // namespace
}  // namespace lxrapi
