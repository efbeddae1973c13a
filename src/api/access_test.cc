#include "access.h"

#include <gtest/gtest.h>

#include "test_support.h"

namespace lxrapi {
namespace {

TEST(AccessTest, AdministratorDnFromEveryPathForm) {
    struct Case {
        const char* path;
        const char* dn;
    } cases[] = {
        {"LDAP://ldap1/uid=a,o=org", "uid=a,o=org"},
        {"LDAP://ldap1:389/uid=a,o=org", "uid=a,o=org"},
        {"//ldap1/uid=a,o=org", "uid=a,o=org"},
        {"uid=a,o=org", "uid=a,o=org"},
        {"  uid=a,o=org ", "uid=a,o=org"},
        {"LDAP://ldap1/cn=a/b,o=org", "cn=a/b,o=org"},  // a "/" inside the DN stays
        {"LDAP://ldap1", ""},
        {"", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(AdministratorDn(c.path), c.dn) << c.path;
}

TEST(AccessTest, RolesAreFoundByNameWithoutRegardToCase) {
    testing::Fixture f;
    const Role* role = nullptr;
    EXPECT_TRUE(FindRole(f.config, " Desk ", &role).ok());
    EXPECT_EQ(role->name, "desk");
    EXPECT_EQ(FindRole(f.config, "boss", &role).code(), kAccessDenied);
    EXPECT_EQ(FindRole(f.config, "", &role).code(), kAccessDenied);
}

TEST(AccessTest, AdministratorDecisions) {
    testing::Fixture f;
    struct Case {
        const char* role;
        const char* path;
        int code;
    } cases[] = {
        {"desk", "LDAP://s/uid=lead,ou=admins,o=t", kOk},    // listed directly
        {"desk", "LDAP://s/UID=Lead, OU=admins, O=t", kOk},  // DN compared by key
        {"desk", "uid=agent,ou=admins,o=t", kOk},            // through cn=deskers
        {"desk", "LDAP://s/uid=stranger,ou=admins,o=t", kAccessDenied},
        {"desk", "LDAP://s/uid=ghost,ou=admins,o=t", kAdminUnreadable},
        {"desk", "LDAP://s", kAdminUnreadable},
        {"reader", "uid=agent,ou=admins,o=t", kAccessDenied},
    };
    for (const Case& c : cases) {
        const Role* role = f.config.FindRole(c.role);
        std::string dn;
        Status s = CheckAdministrator(f.config, f.stores, *role, c.path, &dn);
        EXPECT_EQ(s.code(), c.code) << c.role << " " << c.path << ": " << s.message();
        if (c.code != kOk) {
            EXPECT_FALSE(s.message().empty());
        }
    }
}

TEST(AccessTest, AttributeAndGroupGrants) {
    testing::Fixture f;
    const Role& desk = *f.config.FindRole("desk");
    const Role& reader = *f.config.FindRole("reader");
    EXPECT_TRUE(MayRead(desk, "kvlxrTotalLogins"));
    EXPECT_TRUE(MayWrite(desk, "KVLXRFAILURECOUNT"));
    EXPECT_FALSE(MayWrite(desk, "kvlxrLastLogin"));  // granted, but the page cannot edit it
    EXPECT_FALSE(MayWrite(desk, "cn"));              // not a password-services attribute
    EXPECT_TRUE(MayRead(reader, "kvlxrLastLogin"));
    EXPECT_FALSE(MayRead(reader, "kvlxrDisableUntil"));
    EXPECT_FALSE(MayWrite(reader, "kvlxrFailureCount"));
    EXPECT_TRUE(MayWriteGroup(reader, "cn=vpn,ou=groups,o=t"));
    EXPECT_FALSE(MayReadGroup(reader, "cn=vpn,ou=groups,o=t"));
    EXPECT_TRUE(MaySeeDirectory(desk, f.config.directories[1]));
    EXPECT_FALSE(MaySeeDirectory(reader, f.config.directories[1]));
}

}  // namespace
}  // namespace lxrapi
