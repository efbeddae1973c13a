// The LDAP store against a real slapd loaded with the demo directory, which
// tests/ldap/run.sh starts (ctest -L ldap); skipped when run on its own.
// Reads and writes go through the C API with the LDAP configuration of
// examples/ldap and, where cheap, the same calls against the embedded store
// of examples/lxrapi.toml must answer byte for byte alike.
//
// The directory is loaded once for all tests, so each test changes users of
// its own: judy, dave, frank, mallory, heidi, trent, victor, uma, olivia,
// peggy, grace, bob. The reads compare users nobody changes.
#include "ldap/ldap_store.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <ldap.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <sstream>

#include "lxrapi.h"
#include "message.h"
#include "sqlite_store.h"
#include "test_support.h"

namespace lxrapi {
namespace {

constexpr const char* kExampleUrl = "ldap://127.0.0.1:3890";
constexpr const char* kLead = "LDAP://demo/uid=hd.lead,ou=admins,o=example";

std::string Env(const char* name) {
    const char* v = std::getenv(name);
    return v ? v : "";
}

std::string FileText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void Substitute(std::string* text, const std::string& from, const std::string& to) {
    for (size_t at = text->find(from); at != std::string::npos;
         at = text->find(from, at + to.size()))
        text->replace(at, from.size(), to);
}

std::string Dn(const std::string& uid, const char* ou = "staff") {
    return "uid=" + uid + ",ou=" + ou + ",o=example";
}

struct Call {
    int rc = 0;
    std::string reply, message;
    bool operator==(const Call& o) const {
        return rc == o.rc && reply == o.reply && message == o.message;
    }
};

std::ostream& operator<<(std::ostream& out, const Call& c) {
    return out << c.rc << " [" << c.message << "]\n" << c.reply;
}

// A bind of its own: as the database's root, for what the API may not do
// (adding a test entry, looking at object classes), or as a user.
class Session {
  public:
    Session(const std::string& dn = Env("LXR_LDAP_ROOT_DN"),
            std::string password = FileText(Env("LXR_LDAP_ROOT_PASSWORD_FILE"))) {
        ldap_initialize(&ld_, Env("LXR_LDAP_URL").c_str());
        int version = LDAP_VERSION3;
        ldap_set_option(ld_, LDAP_OPT_PROTOCOL_VERSION, &version);
        berval cred{password.size(), password.data()};
        bound_ = ldap_sasl_bind_s(ld_, dn.c_str(), LDAP_SASL_SIMPLE, &cred, nullptr, nullptr,
                                  nullptr) == LDAP_SUCCESS;
    }
    ~Session() { ldap_unbind_ext_s(ld_, nullptr, nullptr); }
    bool bound() const { return bound_; }
    LDAP* ld() { return ld_; }

    std::vector<std::string> Values(const std::string& dn, const char* attribute) {
        std::vector<std::string> out;
        char* attrs[] = {const_cast<char*>(attribute), nullptr};
        LDAPMessage* result = nullptr;
        if (ldap_search_ext_s(ld_, dn.c_str(), LDAP_SCOPE_BASE, "(objectClass=*)", attrs, 0,
                              nullptr, nullptr, nullptr, 0, &result) == LDAP_SUCCESS) {
            LDAPMessage* e = ldap_first_entry(ld_, result);
            berval** values = e ? ldap_get_values_len(ld_, e, attribute) : nullptr;
            for (int i = 0; values && values[i]; ++i)
                out.emplace_back(values[i]->bv_val, values[i]->bv_len);
            ldap_value_free_len(values);
        }
        ldap_msgfree(result);
        return out;
    }

  private:
    LDAP* ld_ = nullptr;
    bool bound_ = false;
};

class LdapApiTest : public ::testing::Test {
  protected:
    void SetUp() override {
        url_ = Env("LXR_LDAP_URL");
        if (url_.empty()) GTEST_SKIP() << "needs a slapd: run through tests/ldap/run.sh";
        setenv("LXR_NOW", std::to_string(testing::kNow).c_str(), 1);
        audit_ = NewAuditStore("audit.db");
        ldapConfig_ = dir_.File("ldap.toml");
        WriteFile(ldapConfig_, LdapConfigText(audit_));
        // The embedded store with the same demo directory and configuration.
        demo_ = dir_.File("demo.db");
        std::unique_ptr<SqliteStore> s;
        std::vector<Entry> entries;
        ASSERT_TRUE(SqliteStore::Create(demo_, &s).ok());
        ASSERT_TRUE(
            ReadLdifFile(std::string(LXR_SOURCE_DIR) + "/examples/demo.ldif", &entries).ok());
        ASSERT_TRUE(s->Write([&](StoreWriter& w) {
                         for (const Entry& e : entries)
                             if (Status st = w.Put(e); !st.ok()) return st;
                         return Status::OK();
                     }).ok());
        sqliteConfig_ = dir_.File("sqlite.toml");
        std::string text = FileText(std::string(LXR_SOURCE_DIR) + "/examples/lxrapi.toml");
        Substitute(&text, "../var/demo.db", demo_);
        WriteFile(sqliteConfig_, text);
        setenv("LXRAPI_CONFIG", ldapConfig_.c_str(), 1);
    }
    void TearDown() override { unsetenv("LXRAPI_CONFIG"); }

    std::string NewAuditStore(const std::string& name) {
        std::unique_ptr<SqliteStore> s;
        EXPECT_TRUE(SqliteStore::Create(dir_.File(name), &s).ok());
        return dir_.File(name);
    }
    static void WriteFile(const std::string& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    // examples/ldap/lxrapi.toml pointed at this test's server and files.
    std::string LdapConfigText(const std::string& audit, const std::string& url = "") {
        std::string text = FileText(std::string(LXR_SOURCE_DIR) + "/examples/ldap/lxrapi.toml");
        Substitute(&text, kExampleUrl, url.empty() ? url_ : url);
        Substitute(&text, "\"../../var/ldap.secret\"", "\"" + Env("LXR_LDAP_PASSWORD_FILE") + "\"");
        Substitute(&text, "\"../../var/ldap-audit.db\"", "\"" + audit + "\"");
        return text;
    }

    static Call Read(const std::string& userPath, const std::string& role = "helpdesk",
                     const std::string& admin = kLead) {
        Call c;
        std::vector<char> reply(65536), message(1024);
        c.rc = LXRAdminRead(role.c_str(), admin.c_str(), userPath.c_str(), reply.data(), 65535,
                            message.data(), 1024, "LXRAdmin=YES", "EN", "US", nullptr);
        c.reply = c.rc >= 0 ? reply.data() : "";
        c.message = message.data();
        return c;
    }
    static Call Write(const std::string& user, const std::string& body,
                      const std::string& role = "helpdesk", const std::string& admin = kLead) {
        Call c;
        std::string doc = "<User name=\"" + user + "\">" + body + "</User>";
        std::vector<char> message(1024);
        c.rc = LXRAdminWrite(role.c_str(), admin.c_str(), doc.c_str(), message.data(), 1024,
                             "LXRAdmin=YES", "EN", "US", nullptr);
        c.message = message.data();
        return c;
    }
    // Runs `call` against the embedded store, then against LDAP.
    template <typename Fn>
    std::pair<Call, Call> Both(Fn call) {
        setenv("LXRAPI_CONFIG", sqliteConfig_.c_str(), 1);
        Call embedded = call();
        setenv("LXRAPI_CONFIG", ldapConfig_.c_str(), 1);
        return {embedded, call()};
    }
    static std::vector<AuditRecord> Audit(const std::string& store, const std::string& user) {
        std::unique_ptr<SqliteStore> s;
        std::vector<AuditRecord> records;
        EXPECT_TRUE(SqliteStore::Open(store, 1000, &s).ok());
        if (s) s->Read([&](StoreReader& r) { return r.ListAudit(user, &records); });
        return records;
    }

    testing::TempDir dir_;
    std::string url_, audit_, ldapConfig_, demo_, sqliteConfig_;
};

TEST_F(LdapApiTest, ReadsAnswerAsTheEmbeddedStoreDoes) {
    const std::string hdAgent = "uid=hd.agent,ou=admins,o=example";
    struct Case {
        std::string path, role, admin;
    } cases[] = {
        {"staff/alice", "helpdesk", kLead},   // redirects, histories, VPN member
        {"staff/rupert", "helpdesk", kLead},  // three reasons, suspended
        {"staff/niaj", "auditor", "uid=auditor,ou=admins,o=example"},
        {"staff/ALICE", "enroller", "uid=enroller,ou=admins,o=example"},  // restricted groups
        {"staff/Carol Chen", "helpdesk", hdAgent},  // an administrator through a group
        {"staff/uid=ivan,ou=staff,o=example", "helpdesk", kLead},
        {"/walter", "helpdesk", kLead},          // every directory of the role
        {"staff/Sam Smith", "helpdesk", kLead},  // two match
        {"staff/*", "helpdesk", kLead},          // no wildcard
        {"staff/a*)(uid=*", "helpdesk", kLead},  // no filter injection
        {"staff/walter", "helpdesk", kLead},     // below another base
        {"partners/walter", "auditor", "uid=auditor,ou=admins,o=example"},
        {"staff/alice", "helpdesk", "uid=intern,ou=admins,o=example"},
        {"staff/alice", "helpdesk", "uid=ghost,ou=admins,o=example"},
    };
    for (const Case& c : cases) {
        auto [embedded, ldap] = Both([&] { return Read(c.path, c.role, c.admin); });
        EXPECT_EQ(ldap, embedded) << c.path << " as " << c.admin;
    }
    Call rupert = Read("staff/rupert");
    EXPECT_NE(rupert.reply.find("disabled=\"Disabled forever,Failure count 7 reached the maximum "
                                "of 5,Suspended by security\""),
              std::string::npos)
        << rupert;
    EXPECT_NE(rupert.reply.find("<Group name=\"suspended\" prompt=\"#Suspended\" reasoncode="
                                "\"Suspended by security\" read=\"true\" write=\"true\" "
                                "member=\"true\"/>"),
              std::string::npos);
    EXPECT_EQ(Read("staff/Sam Smith").message, "2 users match 'Sam Smith'; name one by its DN");
}

// The server's filters find the same users as the embedded store's SQL, and
// a continuation leads on alike (users nobody changes: LXR_NOW is fixed).
TEST_F(LdapApiTest, ListsAnswerAsTheEmbeddedStoreDoes) {
    auto list = [](const std::string& request) {
        Call c;
        std::vector<char> reply(65536), message(1024);
        c.rc = LXRAdminList("helpdesk", kLead, request.c_str(), reply.data(), 65535, message.data(),
                            1024, "EN", "US", nullptr);
        c.reply = reply.data();
        c.message = message.data();
        return c;
    };
    for (const char* attributes :
         {R"(list="locked")", R"(list="expired")", R"(list="idle" days="60")",
          R"(list="expiring" days="400")", R"(list="mustchange")", R"(list="search" start="s")"}) {
        std::string request =
            std::string("<ListRequest directory=\"partners\" ") + attributes + "/>";
        auto [embedded, ldap] = Both([&] { return list(request); });
        EXPECT_EQ(ldap, embedded) << attributes;
        EXPECT_GE(ldap.rc, 0) << attributes;
    }
    // Page by page through the staff directory's users named "s...".
    std::string continuation;
    int pages = 0, users = 0;
    do {
        std::string request =
            R"(<ListRequest directory="staff" list="search" start="s" size="2" continuation=")" +
            continuation + R"("/>)";
        auto [embedded, ldap] = Both([&] { return list(request); });
        ASSERT_EQ(ldap, embedded) << "page " << pages;
        ASSERT_GE(ldap.rc, 0) << ldap.message;
        users += ldap.rc;
        size_t at = ldap.reply.find("continuation=\"") + 14;
        continuation = ldap.reply.substr(at, ldap.reply.find('"', at) - at);
    } while (!continuation.empty() && ++pages < 10);
    EXPECT_EQ(users, 3);  // sam.smith1, sam.smith2, sybil
    EXPECT_EQ(pages, 1);
}

TEST_F(LdapApiTest, AWriteIsAppliedAuditedAndReadsBackAsTheEmbeddedStoreDoes) {
    const std::string judy = Dn("judy");
    auto [embedded, ldap] = Both([&] {
        return Write(judy,
                     "<Attribute name=\"kvlxrFailureCount\"><Value>0 20260601120000Z</Value>"
                     "</Attribute><Attribute name=\"kvlxrRealmBasedFailureCount\"><Value/>"
                     "</Attribute><Attribute name=\"kvlxrDisableUntil\"><Value>FOREVER "
                     "</Value></Attribute><Attribute name=\"kvfpsLog\"/>");
    });
    EXPECT_EQ(ldap, embedded);
    EXPECT_EQ(ldap.rc, 0) << ldap;
    auto [readEmbedded, readLdap] = Both([] { return Read("staff/judy"); });
    EXPECT_EQ(readLdap, readEmbedded);
    EXPECT_NE(readLdap.reply.find("<Value>FOREVER</Value>"), std::string::npos) << readLdap;

    std::vector<AuditRecord> fromLdap = Audit(audit_, judy), fromFile = Audit(demo_, judy);
    ASSERT_EQ(fromLdap.size(), 1u);
    ASSERT_EQ(fromFile.size(), 1u);
    EXPECT_EQ(fromLdap[0].administrator, "uid=hd.lead,ou=admins,o=example");
    EXPECT_EQ(fromLdap[0].when, testing::kNow);
    ASSERT_EQ(fromLdap[0].changes.size(), fromFile[0].changes.size());
    for (size_t i = 0; i < fromFile[0].changes.size(); ++i) {
        EXPECT_EQ(fromLdap[0].changes[i].attribute, fromFile[0].changes[i].attribute);
        EXPECT_EQ(fromLdap[0].changes[i].oldValue, fromFile[0].changes[i].oldValue);
        EXPECT_EQ(fromLdap[0].changes[i].newValue, fromFile[0].changes[i].newValue);
    }
}

TEST_F(LdapApiTest, RefusedWritesChangeNothing) {
    struct Case {
        std::string user, body, role, admin;
        int rc;
    } cases[] = {
        // One bad value among good ones.
        {Dn("dave"),
         "<Attribute name=\"kvlxrFailureCount\"><Value>0 20260601120000Z</Value></Attribute>"
         "<Attribute name=\"kvlxrDisableUntil\"><Value>20261399000000Z</Value></Attribute>",
         "helpdesk", kLead, kBadRequest},
        // An attribute the page cannot edit, a role that may change nothing,
        // a group the role may only see.
        {Dn("mallory"), "<Attribute name=\"kvlxrTotalLogins\"><Value>1</Value></Attribute>",
         "helpdesk", kLead, kAccessDenied},
        {Dn("mallory"), "<Attribute name=\"kvlxrFailureCount\"><Value>0</Value></Attribute>",
         "auditor", "uid=auditor,ou=admins,o=example", kAccessDenied},
        {Dn("mallory"), "<Group name=\"contractors\" member=\"1\"/>", "helpdesk", kLead,
         kAccessDenied},
        {Dn("nobody"), "<Attribute name=\"kvlxrFailureCount\"><Value>0</Value></Attribute>",
         "helpdesk", kLead, kUserUnreadable},
    };
    for (const Case& c : cases) {
        std::string path = "staff/" + c.user;
        Call before = Read(path);
        auto [embedded, ldap] = Both([&] { return Write(c.user, c.body, c.role, c.admin); });
        EXPECT_EQ(ldap, embedded);
        EXPECT_EQ(ldap.rc, c.rc) << ldap;
        EXPECT_EQ(Read(path), before);
        EXPECT_TRUE(Audit(audit_, c.user).empty());
    }
}

TEST_F(LdapApiTest, GroupMembershipIsAddedAndRemovedByValue) {
    auto member = [](const Call& c, const char* group) {
        std::string tag = std::string("<Group name=\"") + group + "\"";
        size_t at = c.reply.find(tag);
        return at == std::string::npos ? std::string("absent")
                                       : c.reply.substr(c.reply.find("member=", at) + 8, 4);
    };
    EXPECT_EQ(member(Read("staff/frank"), "vpn-users"), "fals");
    EXPECT_EQ(Write(Dn("frank"), "<Group name=\"vpn-users\" member=\"1\"/>").rc, 0);
    EXPECT_EQ(member(Read("staff/frank"), "vpn-users"), "true");
    EXPECT_EQ(member(Read("staff/alice"), "vpn-users"), "true");  // the others stay
    Session root;
    ASSERT_TRUE(root.bound());
    EXPECT_EQ(root.Values("cn=vpn-users,ou=groups,o=example", "member").size(), 4u);
    EXPECT_EQ(Write(Dn("frank"),
                    "<Group name=\"cn=vpn-users,ou=groups,o=example\" "
                    "member=\"0\"/>")
                  .rc,
              0);
    EXPECT_EQ(member(Read("staff/frank"), "vpn-users"), "fals");
    EXPECT_EQ(root.Values("cn=vpn-users,ou=groups,o=example", "member"),
              (std::vector<std::string>{Dn("alice"), Dn("walter", "partners"), Dn("ivan")}));
    std::vector<AuditRecord> records = Audit(audit_, Dn("frank"));
    ASSERT_EQ(records.size(), 2u);
    ASSERT_EQ(records[0].changes.size(), 1u);
    EXPECT_EQ(records[0].changes[0].attribute, "group cn=vpn-users,ou=groups,o=example");
    EXPECT_EQ(records[0].changes[0].newValue, "member");
}

// A user's change is made first; when the server then refuses the group's,
// the user's is taken back and nothing is audited.
TEST_F(LdapApiTest, ARefusedGroupChangeTakesBackTheUserChange) {
    Session root;
    ASSERT_TRUE(root.bound());
    // A "group" whose object class has no member attribute.
    char ocName[] = "objectClass", cnName[] = "cn", oc[] = "organizationalRole", cn[] = "broken";
    char* ocValues[] = {oc, nullptr};
    char* cnValues[] = {cn, nullptr};
    LDAPMod ocMod{LDAP_MOD_ADD, ocName, {ocValues}}, cnMod{LDAP_MOD_ADD, cnName, {cnValues}};
    LDAPMod* mods[] = {&ocMod, &cnMod, nullptr};
    int rc = ldap_add_ext_s(root.ld(), "cn=broken,ou=groups,o=example", mods, nullptr, nullptr);
    ASSERT_TRUE(rc == LDAP_SUCCESS || rc == LDAP_ALREADY_EXISTS) << ldap_err2string(rc);
    std::string text = LdapConfigText(audit_);
    Substitute(&text, "naming = [\"uid\", \"cn\", \"mail\"]\n",
               "naming = [\"uid\", \"cn\", \"mail\"]\n  [[directory.group]]\n  id = \"broken\"\n"
               "  dn = \"cn=broken,ou=groups,o=example\"\n");
    Substitute(&text, "groups_write = [", "groups_write = [\"cn=broken,ou=groups,o=example\", ");
    WriteFile(ldapConfig_, text);

    Call before = Read("staff/heidi");
    ASSERT_NE(before.reply.find("<Value>2 first-week</Value>"), std::string::npos) << before;
    Call refused = Write(Dn("heidi"),
                         "<Attribute name=\"kvlxrGraceLoginsUsed\"><Value>0</Value></Attribute>"
                         "<Group name=\"broken\" member=\"1\"/>");
    EXPECT_EQ(refused.rc, kUpdateFailed) << refused;
    EXPECT_NE(refused.message.find("refused the change of 'cn=broken,ou=groups,o=example'"),
              std::string::npos)
        << refused;
    EXPECT_EQ(Read("staff/heidi"), before);
    EXPECT_TRUE(Audit(audit_, Dn("heidi")).empty());
}

// Another writer gets there first: it replaces the very redirect entry a
// write is about to replace (the server refuses the write's deletion of the
// old value), or adds the key the write is about to add (the write's
// assertion that the key has no entry fails). The write runs again on what is
// there now; the other writer's other change is kept, the key has one entry.
TEST_F(LdapApiTest, AWriteRunsAgainAfterAConcurrentChangeOfItsValue) {
    Config config;
    ASSERT_TRUE(ParseConfig(LdapConfigText(audit_), ldapConfig_, &config).ok());
    LdapConfig other = config.ldap[0];
    other.audit = NewAuditStore("other-host.db");  // another host's audit
    SqliteStoreProvider files(5000);
    std::unique_ptr<LdapStore> mine, theirs;
    ASSERT_TRUE(LdapStore::Connect(config.ldap[0], files, {}, &mine).ok());
    ASSERT_TRUE(LdapStore::Connect(other, files, {}, &theirs).ok());
    const std::string trent = Dn("trent");
    const char* kRedirects = "kvlxrGenerationalRedirects";
    // Sets the entry of `value`'s key as the API does, and adds `extra`;
    // `during` runs inside the write, before its changes are made.
    auto set = [&](StoreWriter& w, const std::string& value, const std::string& extra) {
        Entry e;
        bool found = false;
        Status s = w.Get(trent, &e, &found);
        std::string key = value.substr(0, value.find('=') + 1);
        std::vector<std::string> values;
        bool placed = false;
        for (const std::string& v : e.Values(kRedirects)) {
            bool same = v.rfind(key, 0) == 0;
            values.push_back(same ? value : v);
            placed = placed || same;
        }
        if (!placed) values.push_back(value);
        if (!extra.empty()) values.push_back(extra);
        return s.ok() ? w.Replace(trent, kRedirects, values) : s;
    };
    ASSERT_TRUE(theirs->Write([&](StoreWriter& w) { return set(w, "A=1", "B=2"); }).ok());
    struct Case {
        const char *mine, *theirs, *theirExtra;
        std::vector<std::string> expected;
    } cases[] = {
        {"A=9", "A=5", "C=3", {"A=9", "B=2", "C=3"}},
        {"NEW=1", "NEW=2", "", {"A=9", "B=2", "C=3", "NEW=1"}},
    };
    for (const Case& c : cases) {
        int runs = 0;
        Status s = mine->Write([&](StoreWriter& w) {
            ++runs;
            Status st = set(w, c.mine, "");
            if (st.ok() && runs == 1)
                st =
                    theirs->Write([&](StoreWriter& tw) { return set(tw, c.theirs, c.theirExtra); });
            AuditRecord record;
            record.user = trent;
            return st.ok() ? w.AppendAudit(record) : st;
        });
        ASSERT_TRUE(s.ok()) << s.message();
        EXPECT_EQ(runs, 2) << c.mine;
        Session root;
        std::vector<std::string> values = root.Values(trent, kRedirects);
        std::sort(values.begin(), values.end());
        EXPECT_EQ(values, c.expected);
    }
    EXPECT_EQ(Audit(audit_, trent).size(), 2u);  // once each, though run twice
}

// The store's own lookups: memberships with and without the configured
// groups known (one search for all, or one per group), every DN, the audit
// kept in the file, and the refusal to take whole entries.
TEST_F(LdapApiTest, TheStoreListsEntriesMembersAndItsAudit) {
    Config config;
    ASSERT_TRUE(ParseConfig(LdapConfigText(audit_), ldapConfig_, &config).ok());
    SqliteStoreProvider files(5000);
    const std::string suspended = "cn=suspended,ou=groups,o=example",
                      vpn = "cn=vpn-users,ou=groups,o=example";
    for (bool known : {false, true}) {
        std::unique_ptr<LdapStore> store;
        std::vector<std::string> groups;
        if (known) groups = {suspended, vpn, "cn=contractors,ou=groups,o=example"};
        ASSERT_TRUE(LdapStore::Connect(config.ldap[0], files, groups, &store).ok());
        Status s = store->Read([&](StoreReader& r) {
            struct Case {
                std::string group, member;
                bool expected;
            } cases[] = {
                {suspended, Dn("rupert"), true},
                {"CN=Suspended, OU=Groups, O=Example", "UID=rupert, ou=staff, o=example", true},
                {vpn, Dn("rupert"), false},
                {vpn, Dn("walter", "partners"), true},
                {"cn=nothing,ou=groups,o=example", Dn("rupert"), false},
                {suspended, "not a (dn*", false},
            };
            for (const Case& c : cases) {
                bool member = !c.expected;
                Status st = r.IsMember(c.group, c.member, &member);
                EXPECT_TRUE(st.ok()) << st.message();
                EXPECT_EQ(member, c.expected) << c.group << " " << c.member << " " << known;
            }
            std::vector<std::string> dns;
            Status st = r.ListDns(&dns);
            EXPECT_TRUE(st.ok()) << st.message();
            for (const std::string& dn : {std::string("o=example"), Dn("alice"), vpn})
                EXPECT_NE(std::find(dns.begin(), dns.end(), dn), dns.end()) << dn;
            return st;
        });
        EXPECT_TRUE(s.ok()) << s.message();
    }
    std::unique_ptr<LdapStore> store;
    ASSERT_TRUE(LdapStore::Connect(config.ldap[0], files, {}, &store).ok());
    AuditRecord record;
    record.user = Dn("grace");
    record.changes = {{"kvlxrMustLoginBy", "old", "new"}};
    EXPECT_TRUE(store->Write([&](StoreWriter& w) { return w.AppendAudit(record); }).ok());
    std::vector<AuditRecord> records;
    EXPECT_TRUE(
        store->Read([&](StoreReader& r) { return r.ListAudit(Dn("grace"), &records); }).ok());
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].changes[0].newValue, "new");
    Entry entry;
    entry.dn = "uid=new,ou=staff,o=example";
    EXPECT_EQ(store->Write([&](StoreWriter& w) { return w.Put(entry); }).code(), kUpdateFailed);
}

TEST_F(LdapApiTest, APasswordSetThroughTheApiLetsTheUserBind) {
    const std::string victor = Dn("victor");
    Session root;
    ASSERT_TRUE(root.bound());
    EXPECT_EQ(root.Values(victor, "objectClass"), std::vector<std::string>{"inetOrgPerson"});
    Call c = Write(victor,
                   "<Attribute name=\"userPassword\"><Value>New-pass42</Value></Attribute>"
                   "<Attribute name=\"kvlxrImmediateChange\"><Value>YES via LXRAdmin</Value>"
                   "</Attribute>");
    ASSERT_EQ(c.rc, 0) << c;
    EXPECT_TRUE(Session(victor, "New-pass42").bound());
    EXPECT_FALSE(Session(victor, "Demo-pass1").bound());
    // The user had none of our attributes: the auxiliary class came with them.
    EXPECT_EQ(root.Values(victor, "objectClass"),
              (std::vector<std::string>{"inetOrgPerson", "kvlxrAccount"}));
    EXPECT_EQ(root.Values(victor, "kvlxrLastPasswordChange"),
              std::vector<std::string>{"20260601120000Z LXRAdmin"});
    std::vector<AuditRecord> records = Audit(audit_, victor);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].changes[0].attribute, "userPassword");
    EXPECT_EQ(records[0].changes[0].newValue, "(redacted)");
}

// A port with a listener that never answers.
class SilentServer {
  public:
    SilentServer() {
        fd_ = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in a{};
        a.sin_family = AF_INET;
        a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof a;
        bind(fd_, reinterpret_cast<sockaddr*>(&a), sizeof a);
        listen(fd_, 4);
        getsockname(fd_, reinterpret_cast<sockaddr*>(&a), &size);
        port_ = ntohs(a.sin_port);
    }
    ~SilentServer() { close(fd_); }
    int port() const { return port_; }
    void Close() { close(fd_), fd_ = -1; }

  private:
    int fd_ = -1;
    int port_ = 0;
};

TEST_F(LdapApiTest, ServerFaultsGiveMinusSevenNamingTheServer) {
    SilentServer silent, closed;
    closed.Close();  // nobody listens there any more
    std::string wrongPassword = dir_.File("wrong.pw");
    WriteFile(wrongPassword, "not-the-password\n");
    const std::string bindDn = Env("LXR_LDAP_BIND_DN");
    struct Case {
        std::string url, from, to, expected;
    } cases[] = {
        {"ldap://127.0.0.1:" + std::to_string(closed.port()), "", "",
         "cannot be reached: Can't contact LDAP server"},
        {url_, Env("LXR_LDAP_PASSWORD_FILE"), wrongPassword,
         "refused the bind as '" + bindDn + "': Invalid credentials"},
        {url_, Env("LXR_LDAP_PASSWORD_FILE"), dir_.File("missing.pw"),
         "has no bind password: the file"},
        {url_, "password_file = \"" + Env("LXR_LDAP_PASSWORD_FILE") + "\"",
         "password_env = \"LXR_TEST_NO_SUCH_VARIABLE\"", "LXR_TEST_NO_SUCH_VARIABLE is not set"},
        {"ldap://127.0.0.1:" + std::to_string(silent.port()), "timeout_ms = 5000",
         "timeout_ms = 300", "no answer within 300 ms"},
    };
    for (const Case& c : cases) {
        std::string text = LdapConfigText(audit_, c.url);
        if (!c.from.empty()) Substitute(&text, c.from, c.to);
        WriteFile(ldapConfig_, text);
        auto start = std::chrono::steady_clock::now();
        Call read = Read("staff/uma");
        Call write =
            Write(Dn("uma"), "<Attribute name=\"kvlxrFailureCount\"><Value>0</Value></Attribute>");
        double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        for (const Call& call : {read, write}) {
            EXPECT_EQ(call.rc, kUnreachable) << call;
            EXPECT_EQ(call.message.rfind("LDAP directory " + c.url + " ", 0), 0u) << call;
            EXPECT_NE(call.message.find(c.expected), std::string::npos) << call;
            EXPECT_TRUE(IsSafeMessage(call.message)) << call;
        }
        EXPECT_LT(seconds, 3.0) << c.expected;
    }
    WriteFile(ldapConfig_, LdapConfigText(audit_));
    EXPECT_EQ(Read("staff/uma")
                  .reply.find("kvlxrFailureCount\" prompt=\"#Failure Count\" "
                              "read=\"true\" write=\"true\">\n      <Value>"),
              std::string::npos);  // no write got through
}

TEST_F(LdapApiTest, StartTlsChecksTheServerCertificate) {
    const std::string ca = Env("LXR_LDAP_CA_FILE");
    if (ca.empty()) GTEST_SKIP() << "no certificate: openssl is missing";
    struct Case {
        std::string settings;
        int rc;  // > 0: read
        const char* expected;
    } cases[] = {
        {"tls = \"starttls\"\nca_file = \"" + ca + "\"", 1, ""},
        {"tls = \"starttls\"\nca_file = \"/dev/null\"", kUnreachable, " cannot start TLS: "},
        {"tls = \"starttls\"\ntls_verify = false", 1, ""},
    };
    for (const Case& c : cases) {
        std::string text = LdapConfigText(audit_);
        Substitute(&text, "tls = \"none\"", c.settings);
        WriteFile(ldapConfig_, text);
        Call read = Read("staff/carol");
        if (c.rc > 0) {
            EXPECT_GT(read.rc, 0) << c.settings << "\n" << read;
        } else {
            EXPECT_EQ(read.rc, c.rc) << read;
            EXPECT_NE(read.message.find(c.expected), std::string::npos) << read;
        }
    }
}

// Processes write one user at once, each as if on a host of its own (its own
// audit file, so that nothing but the LDAP server orders them): different
// attributes, different redirect entries, and two of them the same redirect
// entry again and again; others add their users to one group. Every write
// succeeds and nothing is lost.
TEST_F(LdapApiTest, ConcurrentWritersLoseNothing) {
    const std::string uma = Dn("uma");
    const char* attributes[] = {
        "<Attribute name=\"kvlxrFailureCount\"><Value>%d 20260601120000Z</Value></Attribute>",
        "<Attribute name=\"kvlxrDisableUntil\"><Value>FOREVER round%d</Value></Attribute>",
        "<Attribute name=\"kvlxrAccountInactivityDays\"><Value>%d days</Value></Attribute>",
        "<Attribute name=\"kvlxrGenerationalRedirects\"><Value>K1=https://t/%d</Value>"
        "</Attribute>",
        "<Attribute name=\"kvlxrGenerationalRedirects\"><Value>K2=https://t/%d</Value>"
        "</Attribute>",
        "<Attribute name=\"kvlxrGenerationalRedirects\"><Value>SAME=https://a/%d</Value>"
        "</Attribute>",
        "<Attribute name=\"kvlxrGenerationalRedirects\"><Value>SAME=https://b/%d</Value>"
        "</Attribute>",
    };
    const char* joiners[] = {"olivia", "peggy", "grace", "bob"};
    constexpr int kRounds = 6;
    size_t writers = std::size(attributes) + std::size(joiners);
    std::vector<std::string> configs, audits;
    for (size_t i = 0; i < writers; ++i) {
        audits.push_back(NewAuditStore("host" + std::to_string(i) + ".db"));
        configs.push_back(dir_.File("host" + std::to_string(i) + ".toml"));
        WriteFile(configs.back(), LdapConfigText(audits.back()));
    }
    int gate[2];
    ASSERT_EQ(pipe(gate), 0);
    std::vector<pid_t> children;
    for (size_t i = 0; i < writers; ++i) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid != 0) {
            children.push_back(pid);
            continue;
        }
        close(gate[1]);
        char go;
        if (read(gate[0], &go, 1) < 0) _exit(9);  // all start together
        setenv("LXRAPI_CONFIG", configs[i].c_str(), 1);
        int failures = 0;
        for (int round = 1; round <= (i < std::size(attributes) ? kRounds : 1); ++round) {
            Call c;
            if (i < std::size(attributes)) {
                char body[512];
                std::snprintf(body, sizeof body, attributes[i], round);
                c = Write(uma, body);
            } else {
                c = Write(Dn(joiners[i - std::size(attributes)]),
                          "<Group name=\"vpn-users\" member=\"1\"/>");
            }
            if (c.rc != 0) std::fprintf(stderr, "writer %zu: %s\n", i, c.message.c_str());
            failures += c.rc != 0;
        }
        _exit(failures);
    }
    close(gate[0]);
    close(gate[1]);
    for (pid_t pid : children) {
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    Session root;
    EXPECT_EQ(root.Values(uma, "kvlxrFailureCount"), std::vector<std::string>{"6 20260601120000Z"});
    EXPECT_EQ(root.Values(uma, "kvlxrDisableUntil"), std::vector<std::string>{"FOREVER round6"});
    EXPECT_EQ(root.Values(uma, "kvlxrAccountInactivityDays"), std::vector<std::string>{"6 days"});
    std::vector<std::string> redirects = root.Values(uma, "kvlxrGenerationalRedirects");
    std::sort(redirects.begin(), redirects.end());
    ASSERT_EQ(redirects.size(), 3u);
    EXPECT_EQ(redirects[0], "K1=https://t/6");
    EXPECT_EQ(redirects[1], "K2=https://t/6");
    EXPECT_TRUE(redirects[2] == "SAME=https://a/6" || redirects[2] == "SAME=https://b/6")
        << redirects[2];
    std::vector<std::string> members = root.Values("cn=vpn-users,ou=groups,o=example", "member");
    for (const char* j : joiners)
        EXPECT_NE(std::find(members.begin(), members.end(), Dn(j)), members.end()) << j;
    size_t audited = 0;
    for (const std::string& a : audits) audited += Audit(a, uma).size();
    EXPECT_EQ(audited, kRounds * std::size(attributes));
}

}  // namespace
}  // namespace lxrapi
