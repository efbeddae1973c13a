#include "service.h"

#include <gtest/gtest.h>

#include "password.h"
#include "support/user_document.h"
#include "test_support.h"

namespace lxrapi {
namespace {

constexpr const char* kLead = "LDAP://ldap1/uid=lead,ou=admins,o=t";
constexpr const char* kAnn = "uid=ann,ou=people,o=t";

class ServiceTest : public ::testing::Test {
  protected:
    Status Read(const char* role, const char* admin, const char* userPath, int* count = nullptr) {
        int n = -1;
        reply_.clear();
        Status s = ReadUser(f_.config, f_.stores, role, admin, userPath, 65535, &reply_, &n);
        if (count) *count = n;
        if (s.ok()) {
            std::string error;
            EXPECT_TRUE(lxrtest::ReadUserDocument(reply_, user_, error)) << error << reply_;
        }
        return s;
    }
    Status Write(const std::string& body, const char* role = "desk", const char* dn = kAnn,
                 const char* admin = kLead) {
        return WriteUser(f_.config, f_.stores, role, admin,
                         std::string("<User name=\"") + dn + "\">\n" + body + "</User>\n");
    }
    std::vector<AuditRecord> Audit() {
        Store* store = nullptr;
        f_.stores.Open("/mem/people", &store);
        std::vector<AuditRecord> records;
        store->Read([&](StoreReader& r) { return r.ListAudit("", &records); });
        return records;
    }
    const AttributeElement* Attr(const char* name) {
        for (const auto& a : user_.attributes)
            if (a.name == name) return &a;
        return nullptr;
    }

    testing::Fixture f_;
    lxrtest::UserDocument user_;
    std::string reply_;
};

// Values that another client, an LDIF import or the login services wrote
// reach the pages in a form they can show, whatever they hold.
TEST_F(ServiceTest, ValuesFromElsewhereAreHandedOutNeutralised) {
    Store* store = nullptr;
    ASSERT_TRUE(f_.stores.Open("/mem/people", &store).ok());
    const std::vector<std::pair<const char*, std::string>> stored = {
        {"kvlxrDisableAfter", "20260901000000Z <svg/onload=alert(1)>"},
        {"kvlxrLoginHistory",
         "20260530101010Z SUCCESS 10.0.0.5 x</Value></Attribute><Attribute name=\"cn\"><Value>y"},
        {"kvlxrGenerationalRedirects", "A=https://a/?q='x' 20260101000000Z 10.1.1.1 don't\\"},
    };
    ASSERT_TRUE(store
                    ->Write([&](StoreWriter& w) {
                        for (const auto& [name, value] : stored) {
                            Status s = w.Replace(kAnn, name, {value});
                            if (!s.ok()) return s;
                        }
                        return Status::OK();
                    })
                    .ok());
    ASSERT_TRUE(Read("desk", kLead, "people/ann").ok());
    EXPECT_EQ(Attr("kvlxrDisableAfter")->values,
              std::vector<std::string>{"20260901000000Z \u2039svg/onload=alert(1)\u203a"});
    EXPECT_EQ(Attr("kvlxrLoginHistory")->values,
              std::vector<std::string>{"20260530101010Z SUCCESS 10.0.0.5 x\u2039/Value\u203a"
                                       "\u2039/Attribute\u203a\u2039Attribute name=\u201dcn"
                                       "\u201d\u203a\u2039Value\u203ay"});
    EXPECT_EQ(Attr("kvlxrGenerationalRedirects")->values,
              std::vector<std::string>{
                  "A=https://a/?q=\u2019x\u2019 20260101000000Z 10.1.1.1 don\u2019t\uff3c"});
    EXPECT_EQ(reply_.find('\''), std::string::npos);
    EXPECT_EQ(reply_.find('\\'), std::string::npos);
    EXPECT_EQ(reply_.find("<svg"), std::string::npos);
}

TEST_F(ServiceTest, UsersAreFoundByDnOrByName) {
    struct Case {
        const char* path;
        int code;
        const char* dnOrMessage;
    } cases[] = {
        {"people/ann", kOk, kAnn},
        {"people/ANN LEE", kOk, kAnn},
        {"people/UID=Ann, OU=People, O=t", kOk, kAnn},
        {"/dee", kOk, "uid=dee,ou=other,o=t"},  // no directory: all of the role's
        {"dee", kOk, "uid=dee,ou=other,o=t"},
        {"people/Twin", kUserUnreadable, "2 users match 'Twin'"},
        {"people/zed", kUserUnreadable, "No user 'zed'"},
        {"people/uid=zed,ou=people,o=t", kUserUnreadable, "uid=zed"},
        {"other/ann", kUserUnreadable, "No user 'ann'"},
        {"people/", kUserUnreadable, "No user was named"},
        {"secret/ann", kAccessDenied, "'secret'"},
        // What the administrator typed comes back without what the page
        // cannot show.
        {"people/<b>\"x\"\\", kUserUnreadable,
         "No user '?b??x?"
         "?' was found"},
    };
    for (const Case& c : cases) {
        Status s = Read("desk", kLead, c.path);
        EXPECT_EQ(s.code(), c.code) << c.path << ": " << s.message();
        if (s.ok()) {
            EXPECT_EQ(user_.user.name, c.dnOrMessage);
        } else {
            EXPECT_NE(s.message().find(c.dnOrMessage), std::string::npos) << s.message();
        }
    }
}

TEST_F(ServiceTest, AccessIsCheckedBeforeTheUser) {
    EXPECT_EQ(Read("boss", kLead, "people/ann").code(), kAccessDenied);
    EXPECT_EQ(Read("desk", "LDAP://x/uid=ghost,ou=admins,o=t", "people/ann").code(),
              kAdminUnreadable);
    EXPECT_EQ(Read("desk", "LDAP://x/uid=stranger,ou=admins,o=t", "people/ann").code(),
              kAccessDenied);
    EXPECT_EQ(Read("reader", "uid=reader,ou=admins,o=t", "other/dee").code(), kAccessDenied);
}

TEST_F(ServiceTest, NarrowRolesSeeLess) {
    int count = -1;
    ASSERT_TRUE(Read("reader", "uid=reader,ou=admins,o=t", "people/ann", &count).ok());
    EXPECT_EQ(count, 2);
    ASSERT_EQ(user_.attributes.size(), 2u);
    EXPECT_FALSE(user_.attributes[0].write);
    ASSERT_EQ(user_.groups.size(), 1u);  // vpn: may change, may not see
    EXPECT_EQ(user_.groups[0].member, ::Membership::kUnknown);
    EXPECT_TRUE(user_.groups[0].write);
    EXPECT_FALSE(user_.groups[0].read);
    ASSERT_TRUE(Read("blind", "uid=reader,ou=admins,o=t", "people/ann", &count).ok());
    EXPECT_EQ(count, 0);
}

TEST_F(ServiceTest, DisabledReasonsAndRedisable) {
    ASSERT_TRUE(Read("desk", kLead, "people/bo").ok());
    EXPECT_EQ(user_.user.disabled, "Disabled forever,Locked by policy");
    ASSERT_TRUE(Write("<Attribute name=\"kvlxrFailureCount\"><Value>7 20260601110000Z 10.9.9.9"
                      "</Value></Attribute>")
                    .ok());
    ASSERT_TRUE(Read("desk", kLead, "people/ann").ok());
    EXPECT_EQ(user_.user.disabled, "Failure count 7 reached the maximum of 5");
    EXPECT_TRUE(Attr("kvlxrFailureCount")->redisable);
    EXPECT_FALSE(Attr("kvlxrLoginHistory")->redisable);
}

TEST_F(ServiceTest, WriteReplacesRemovesAndClears) {
    Status s = Write(
        "<Attribute name=\"kvlxrLoginHistory\"/>\n"
        "<Attribute name=\"kvlxrFailureCount\"><Value/></Attribute>\n"
        "<Attribute name=\"KVLXRDISABLEUNTIL\"><Value>FOREVER </Value></Attribute>\n"
        "<Attribute name=\"kvlxrAccountInactivityDays\"><Value>30 a&b don't</Value>"
        "</Attribute>\n");
    ASSERT_TRUE(s.ok()) << s.message();
    Entry ann = f_.Get(kAnn);
    EXPECT_TRUE(ann.Values("kvlxrLoginHistory").empty());
    EXPECT_TRUE(ann.Values("kvlxrFailureCount").empty());
    EXPECT_EQ(ann.Values("kvlxrDisableUntil"), std::vector<std::string>{"FOREVER"});
    EXPECT_EQ(ann.First("kvlxrAccountInactivityDays"), "30 a&b don\u2019t");
    EXPECT_EQ(ann.First("kvlxrLastLogin"), "20260530101010Z 10.0.0.5");  // untouched
    // And the next read shows it, still well formed.
    ASSERT_TRUE(Read("desk", kLead, "people/ann").ok());
    EXPECT_EQ(Attr("kvlxrAccountInactivityDays")->values[0], "30 a&b don\u2019t");
}

// The page posts the identifier; a hand-written file may name the DN; either
// may arrive percent-encoded (a browser encodes form field names).
TEST_F(ServiceTest, GroupsAreNamedByIdentifierOrDn) {
    struct Case {
        const char* name;
        int code;
        const char* message;
    } cases[] = {
        {"locked-out", kOk, ""},
        {"LOCKED-OUT", kOk, ""},
        {"cn=locked,ou=groups,o=t", kOk, ""},
        {"CN=Locked, OU=groups, o=t", kOk, ""},
        {"locked%2Dout", kOk, ""},
        {"cn%3Dlocked%2Cou%3Dgroups%2Co%3Dt", kOk, ""},
        {"cn%3dlocked%2cou%3dgroups%2co%3dt", kOk, ""},
        {"locked", kAccessDenied, "The directory 'people' shows no group 'locked'"},
        {"cn=other,o=t", kAccessDenied, "shows no group 'cn=other,o=t'"},
        {"locked-out%", kAccessDenied, "shows no group 'locked-out%'"},
        {"locked%2", kAccessDenied, "shows no group 'locked%2'"},
        {"cn%3Dlocked+out", kAccessDenied, "shows no group 'cn%3Dlocked+out'"},
        {"a&amp;", kAccessDenied, "shows no group 'a&amp;'"},
        {"a<b>", kBadRequest, "the group name 'a?b?' holds a less-than sign"},
    };
    for (const Case& c : cases) {
        for (const char* member : {"1", "0"}) {
            std::string body =
                std::string("<Group name=\"") + c.name + "\" member=\"" + member + "\"/>";
            Status s = Write(body);
            EXPECT_EQ(s.code(), c.code) << body << ": " << s.message();
            EXPECT_NE(s.message().find(c.message), std::string::npos) << s.message();
            if (c.code != kOk) continue;
            ASSERT_TRUE(Read("desk", kLead, "people/ann").ok());
            EXPECT_EQ(user_.groups[0].member,
                      *member == '1' ? ::Membership::kMember : ::Membership::kNotMember)
                << body;
        }
    }
    // A group the role may not change is refused by its identifier.
    Status s = Write("<Group name=\"cn=locked,ou=groups,o=t\" member=\"1\"/>", "reader", kAnn,
                     "uid=reader,ou=admins,o=t");
    EXPECT_EQ(s.code(), kAccessDenied);
    EXPECT_EQ(s.message(),
              "The membership of the group 'locked-out' may not be changed in the role 'reader'");
    EXPECT_TRUE(
        Write("<Group name=\"vpn\" member=\"0\"/>", "reader", kAnn, "uid=reader,ou=admins,o=t")
            .ok());
}

TEST_F(ServiceTest, ForbiddenOrBadWritesChangeNothing) {
    const Entry before = f_.Get(kAnn);
    const std::string good =
        "<Attribute name=\"kvlxrFailureCount\"><Value>0 20260601120000Z</Value></Attribute>\n";
    struct Case {
        std::string body;
        const char* role;
        const char* dn;
        int code;
        const char* named;
    } cases[] = {
        {good + "<Attribute name=\"kvlxrMustLoginBy\"><Value/></Attribute>", "desk", kAnn,
         kAccessDenied, "kvlxrMustLoginBy"},
        {good + "<Attribute name=\"kvlxrLastLogin\"><Value/></Attribute>", "desk", kAnn,
         kAccessDenied, "kvlxrLastLogin"},
        {good + "<Attribute name=\"cn\"><Value>x</Value></Attribute>", "desk", kAnn, kAccessDenied,
         "cn"},
        {good + "<Group name=\"cn=other,o=t\" member=\"1\"/>", "desk", kAnn, kAccessDenied,
         "cn=other,o=t"},
        {good, "reader", kAnn, kAccessDenied, "'reader'"},  // lead is not a reader
        {good, "desk", "uid=x,ou=elsewhere,o=t", kAccessDenied, "uid=x,ou=elsewhere,o=t"},
        {good + "<Attribute name=\"kvlxrDisableUntil\"><Value>tomorrow</Value></Attribute>", "desk",
         kAnn, kBadRequest, "tomorrow"},
        {good + "<Attribute name=\"kvlxrGenerationalRedirects\"><Value>noequals</Value>"
                "</Attribute>",
         "desk", kAnn, kBadRequest, "noequals"},
        {good +
             "<Attribute name=\"userPassword\">\n<Value>x</Value>\n<Value>y</Value>\n</Attribute>",
         "desk", kAnn, kBadRequest, "userPassword"},
        {good, "desk", "uid=zed,ou=people,o=t", kUserUnreadable, "uid=zed"},
        {good + "<Bogus/>", "desk", kAnn, kBadRequest, "offset"},
        // A posted value that closes its element to add a login-history entry.
        {good + "<Attribute name=\"kvlxrAccountInactivityDays\">\n<Value>30 x</Value></Attribute>"
                "<Attribute name=\"kvlxrLoginHistory\"><Value>20260601000000Z SUCCESS 10.6.6.6"
                "</Value>\n</Attribute>\n",
         "desk", kAnn, kBadRequest, "kvlxrAccountInactivityDays: the value '30 x?/Value?"},
        {good + "<Attribute name=\"kvlxrGenerationalRedirects\"><Value>A=x' 20260101000000Z"
                "</Value></Attribute>",
         "desk", kAnn, kBadRequest, "holds the character U+0027"},
    };
    for (const Case& c : cases) {
        Status s = Write(c.body, c.role, c.dn);
        EXPECT_EQ(s.code(), c.code) << c.body << ": " << s.message();
        EXPECT_NE(s.message().find(c.named), std::string::npos) << s.message();
        Entry after = f_.Get(kAnn);
        EXPECT_EQ(after.attributes.size(), before.attributes.size());
        for (const EntryAttribute& a : before.attributes)
            EXPECT_EQ(after.Values(a.name), a.values) << a.name;
    }
    EXPECT_TRUE(Audit().empty());
}

}  // namespace
}  // namespace lxrapi
