// The LDAP store's pieces that need no server: [[ldap]] in the
// configuration, search filters from typed names, group suffixes and the
// modifications a write turns into.
#include "ldap/ldap_text.h"

#include <gtest/gtest.h>

#include "config.h"
#include "message.h"

namespace lxrapi {
namespace {

constexpr const char* kLdapConfig = R"(
[administrators]
store = "ldap://ldap1.example:389/"

[[ldap]]
url = "LDAP://ldap1.example:389"
bind_dn = "cn=lxr,ou=services,o=t"
password_file = "secrets/ldap.pw"
tls = "starttls"
ca_file = "/etc/ssl/ca.pem"
timeout_ms = 2500
audit = "audit.db"

[[ldap]]
url = "ldaps://ldap2.example"
audit = "/var/lib/lxr/audit2.db"
auxiliary_class = ""

[[directory]]
id = "people"
store = "ldap://ldap1.example:389"
base = "ou=people,o=t"

[[directory]]
id = "local"
store = "local.db"
base = "ou=local,o=t"

[[role]]
name = "desk"
administrators = ["uid=lead,o=t"]
)";

TEST(LdapConfigTest, StoresNamedByUrlKeepTheirUrlAndFindTheirServer) {
    Config c;
    Status s = ParseConfig(kLdapConfig, "/etc/lxr/api.toml", &c);
    ASSERT_TRUE(s.ok()) << s.message();
    ASSERT_EQ(c.ldap.size(), 2u);
    const LdapConfig& one = c.ldap[0];
    EXPECT_EQ(one.bindDn, "cn=lxr,ou=services,o=t");
    EXPECT_EQ(one.passwordFile, "/etc/lxr/secrets/ldap.pw");  // beside the configuration
    EXPECT_EQ(one.audit, "/etc/lxr/audit.db");
    EXPECT_TRUE(one.startTls);
    EXPECT_EQ(one.timeoutMs, 2500);
    EXPECT_EQ(one.auxiliaryClass, "kvlxrAccount");
    EXPECT_EQ(c.ldap[1].auxiliaryClass, "");
    EXPECT_TRUE(c.ldap[1].bindDn.empty());  // anonymous
    EXPECT_EQ(c.directories[0].store, "ldap://ldap1.example:389");
    EXPECT_EQ(c.directories[1].store, "/etc/lxr/local.db");
    EXPECT_EQ(c.adminStore, "ldap://ldap1.example:389");
    EXPECT_EQ(c.FindLdap("ldap://LDAP1.example:389/"), &c.ldap[0]);
    EXPECT_EQ(c.FindLdap("ldap://ldap3.example"), nullptr);
    EXPECT_TRUE(IsLdapUrl("LDAPI://%2Frun%2Fslapd%2Fldapi"));
    EXPECT_FALSE(IsLdapUrl("ldap.db"));
}

TEST(LdapConfigTest, FaultsAreNamedWithTheirLine) {
    struct Case {
        const char* ldap;      // the [[ldap]] table's body
        const char* store;     // the directory's store
        const char* expected;  // in the message
    } cases[] = {
        {"url = 'ldap://h'\naudit = 'a.db'\nbind_dn = 'cn=x,o=t'\npassword = 'secret'", "ldap://h",
         "line 5: ldap 1: a password is not written here"},
        {"url = 'ldap://h'\naudit = 'a.db'\nbind_dn = 'cn=x,o=t'", "ldap://h",
         "'bind_dn' needs 'password_file' or 'password_env'"},
        {"url = 'ldap://h'\naudit = 'a.db'\npassword_env = 'PW'", "ldap://h",
         "a password needs a 'bind_dn'"},
        {"url = 'ldap://h'\naudit = 'a.db'\nbind_dn = 'cn=x,o=t'\npassword_env = 'P'\n"
         "password_file = 'f'",
         "ldap://h", "not both"},
        {"url = 'ldap://h'", "ldap://h", "'audit' is missing"},
        {"url = 'ldap://h'\naudit = 'ldap://h'", "ldap://h", "made with lxrdir create"},
        {"url = 'http://h'\naudit = 'a.db'", "ldap://h", "must begin with ldap://"},
        {"url = 'ldaps://h'\naudit = 'a.db'\ntls = 'starttls'", "ldaps://h", "TLS already"},
        {"url = 'ldap://h'\naudit = 'a.db'\ntls = 'yes'", "ldap://h", "'none' or 'starttls'"},
        {"url = 'ldap://h'\naudit = 'a.db'\ntimeout_ms = 5", "ldap://h", "from 100 to 600000"},
        {"url = 'ldap://h'\naudit = 'a.db'\nport = 389", "ldap://h", "unknown key 'port'"},
        {"url = 'ldap://h'\naudit = 'a.db'\npolicy = 'ppolicy'", "ldap://h",
         "needs 'default_policy'"},
        {"url = 'ldap://h'\naudit = 'a.db'\npolicy = 'pwpolicy'", "ldap://h",
         "'ppolicy' or left out"},
        {"url = 'ldap://h'\naudit = 'a.db'\npolicy_base = 'ou=p,o=t'", "ldap://h",
         "need policy = 'ppolicy'"},
        {"url = 'ldap://h'\naudit = 'a.db'\npolicy = 'ppolicy'\ndefault_policy = 'cn=d,o=t'\n"
         "policy_base = 'user-policies'",
         "ldap://h", "'policy_base' is not a distinguished name"},
        {"url = 'ldap://h'\naudit = 'a.db'", "ldap://other:389",
         "directory 'd': no [[ldap]] has the url 'ldap://other:389'"},
    };
    for (const Case& c : cases) {
        std::string text = std::string("[[ldap]]\n") + c.ldap + "\n[[directory]]\nid = 'd'\n" +
                           "store = '" + c.store + "'\nbase = 'o=t'\n" +
                           "[[role]]\nname = 'r'\nadministrators = ['uid=a,o=t']\n";
        Config config;
        Status s = ParseConfig(text, "/etc/api.toml", &config);
        EXPECT_EQ(s.code(), kUnreachable) << c.ldap;
        EXPECT_NE(s.message().find(c.expected), std::string::npos) << s.message();
        EXPECT_TRUE(IsSafeMessage(s.message())) << s.message();
    }
    // Twice the same server, and an administrators' store nobody declared.
    Config config;
    Status s =
        ParseConfig("[[ldap]]\nurl='ldap://h'\naudit='a'\n[[ldap]]\nurl='LDAP://h/'\naudit='b'\n",
                    "/c", &config);
    EXPECT_NE(s.message().find("declared twice"), std::string::npos) << s.message();
    s = ParseConfig(
        "[administrators]\nstore='ldap://x'\n[[directory]]\nid='d'\nstore='d.db'\n"
        "base='o=t'\n[[role]]\nname='r'\nadministrators=['uid=a,o=t']\n",
        "/c", &config);
    EXPECT_NE(s.message().find("[administrators]: no [[ldap]]"), std::string::npos) << s.message();
}

TEST(LdapFilterTest, TypedNamesAreEscapedByTheLibrary) {
    struct Case {
        std::vector<std::string> attributes;
        std::string value;
        const char* filter;
    } cases[] = {
        {{"uid"}, "alice", "(uid=alice)"},
        {{"uid", "cn", "mail"}, "Sam Smith", "(|(uid=Sam Smith)(cn=Sam Smith)(mail=Sam Smith))"},
        {{"cn"}, "*", "(cn=\\2A)"},
        {{"cn"}, "a)(uid=*", "(cn=a\\29\\28uid=\\2A)"},
        {{"cn"}, "back\\slash", "(cn=back\\5Cslash)"},
        {{"cn"}, std::string("nul\0byte", 8), "(cn=nul\\00byte)"},
        // Bytes beyond ASCII are escaped too, which filters allow.
        {{"cn;lang-de", "2.5.4.3"}, "\xc3\xa9", "(|(cn;lang-de=\\C3\\A9)(2.5.4.3=\\C3\\A9))"},
    };
    for (const Case& c : cases) {
        std::string filter;
        Status s = ValueFilter(c.attributes, c.value, &filter);
        ASSERT_TRUE(s.ok()) << s.message();
        EXPECT_EQ(filter, c.filter);
    }
    std::string filter;
    for (const char* bad : {"", "cn=x", "c n", "1.2.", "1..2", "cn;", "-cn", "cn;a;;b"})
        EXPECT_EQ(ValueFilter({bad}, "v", &filter).code(), kBadRequest) << bad;
    EXPECT_EQ(ValueFilter({}, "v", &filter).code(), kBadRequest);
}

TEST(LdapDnTest, GroupsShareTheirCommonSuffix) {
    struct Case {
        std::vector<std::string> dns;
        const char* suffix;
    } cases[] = {
        {{"cn=a,ou=groups,o=example"}, "cn=a,ou=groups,o=example"},
        {{"cn=a,ou=groups,o=example", "CN=b, OU=Groups, O=Example"}, "ou=groups,o=example"},
        {{"cn=a,ou=groups,o=example", "uid=x,ou=admins,o=example"}, "o=example"},
        {{"cn=a,o=one", "cn=a,o=two"}, ""},
        {{"cn=x\\,y,ou=g,o=t", "cn=z,ou=g,o=t"}, "ou=g,o=t"},  // an escaped comma is no separator
        {{"cn=a+uid=b,ou=g,o=t", "cn=c,ou=g,o=t"}, "ou=g,o=t"},
        {{"not a dn", "cn=c,o=t"}, ""},
        {{}, ""},
    };
    for (const Case& c : cases) EXPECT_EQ(CommonSuffix(c.dns), c.suffix);
}

TEST(LdapChangeTest, ManyValuedAttributesChangeByValue) {
    for (const char* a :
         {"member", "kvlxrGenerationalRedirects", "KVLXRLOGINHISTORY", "kvfpsLog", "kvlxrHistory"})
        EXPECT_TRUE(ChangedByValue(a)) << a;
    for (const char* a : {"kvlxrFailureCount", "userPassword", "kvlxrDisableUntil", "cn"})
        EXPECT_FALSE(ChangedByValue(a)) << a;
    EXPECT_TRUE(NeedsAuxiliaryClass("kvfpsLockoutCounter"));
    EXPECT_FALSE(NeedsAuxiliaryClass("userPassword"));
    EXPECT_FALSE(NeedsAuxiliaryClass("member"));

    EXPECT_TRUE(KeepsOrder("kvlxrGenerationalRedirects"));
    EXPECT_TRUE(KeepsOrder("kvfpsLog"));
    EXPECT_FALSE(KeepsOrder("member"));

    struct Case {
        bool keepOrder;
        std::vector<std::string> before, after, removed, added;
    } cases[] = {
        // A redirect replaced: its old value deleted exactly, the new one
        // added; in order, what stood after it moves behind it again.
        {false, {"A=1 x", "B=2 y"}, {"A=9 z", "B=2 y"}, {"A=1 x"}, {"A=9 z"}},
        {true, {"A=1 x", "B=2 y"}, {"A=9 z", "B=2 y"}, {"A=1 x", "B=2 y"}, {"A=9 z", "B=2 y"}},
        {true, {"A=1", "B=2", "C=3"}, {"A=1", "B=9", "C=3"}, {"B=2", "C=3"}, {"B=9", "C=3"}},
        {true, {"P=1", "H=2", "L=3"}, {"P=9", "L=3"}, {"P=1", "H=2", "L=3"}, {"P=9", "L=3"}},
        {true, {"A=1", "B=2", "C=3"}, {"A=1", "C=3"}, {"B=2"}, {}},  // nothing moves
        {true, {"A=1"}, {"A=1", "N=5"}, {}, {"N=5"}},
        // Members: only what changes.
        {false, {"m1", "m2"}, {"m1", "m2", "m3"}, {}, {"m3"}},
        {false, {"m1", "m2", "m3"}, {"m1", "m3"}, {"m2"}, {}},
        {true, {"h1", "h2"}, {}, {"h1", "h2"}, {}},
        {false, {"same"}, {"same"}, {}, {}},
        {false, {"Case"}, {"case"}, {"Case"}, {"case"}},  // values compare exactly
        {false, {}, {"v", "v"}, {}, {"v"}},               // no duplicates reach the server
    };
    for (const Case& c : cases) {
        ValueDelta d = Delta(c.before, c.after, c.keepOrder);
        EXPECT_EQ(d.removed, c.removed);
        EXPECT_EQ(d.added, c.added);
    }
}

TEST(LdapChangeTest, OnlyKeysAddedAfreshAreAssertedAbsent) {
    const char* r = "kvlxrGenerationalRedirects";
    EXPECT_EQ(NewKeysAbsent(r, {"A=1 x"}, {"A=2"}), "");  // replaced: the deletion guards it
    EXPECT_EQ(NewKeysAbsent(r, {"A=1"}, {"B=2 20260101000000Z"}),
              "(!(" + std::string(r) + "=B=*))");
    EXPECT_EQ(NewKeysAbsent(r, {}, {"B=2", "C*=3", "B=4"}),
              "(&(!(kvlxrGenerationalRedirects=B=*))(!(kvlxrGenerationalRedirects=C\\2A=*)))");
    EXPECT_EQ(NewKeysAbsent("member", {}, {"uid=a,o=t"}), "");
}

}  // namespace
}  // namespace lxrapi
