// The lists of users over the embedded store and the memory store (the same
// cases over both, so that the SQL that finds the candidates can neither drop
// a user nor let the page disagree with the user's own page).
#include "user_list.h"

#include <gtest/gtest.h>

#include <regex>

#include "service.h"
#include "sqlite_store.h"
#include "test_support.h"

namespace lxrapi {
namespace {

constexpr const char* kLead = "LDAP://ldap1/uid=lead,ou=admins,o=t";
constexpr const char* kReader = "uid=reader,ou=admins,o=t";

// Now is 2026-06-01 12:00; the policy locks at 5 failures and lets a
// password live 100 days.
constexpr const char* kListLdif = R"(
dn: uid=lock5,ou=people,o=t
uid: lock5
kvlxrFailureCount: 5 20260531000000Z 10.0.0.9

dn: uid=lock9,ou=people,o=t
uid: lock9
kvfpsLockoutCounter: 9

dn: uid=four,ou=people,o=t
uid: four
kvlxrFailureCount: 4

dn: uid=old,ou=people,o=t
uid: old
kvlxrLastPasswordChange: 20260101000000Z LXRAdmin

dn: uid=soon,ou=people,o=t
uid: soon
kvlxrLastPasswordChange: 20260225000000Z LXRAdmin

dn: uid=never,ou=people,o=t
uid: never
kvlxrLastPasswordChange: 20260101000000Z LXRAdmin
kvlxrExpirePasswordDays: 0 service

dn: uid=short,ou=people,o=t
uid: short
kvlxrLastPasswordChange: 20260520000000Z LXRAdmin
kvlxrExpirePasswordDays: 5

dn: uid=idle,ou=people,o=t
uid: idle
kvlxrLastLogin: 20260101000000Z 10.0.0.1

dn: uid=rebased,ou=people,o=t
uid: rebased
kvlxrLastLogin: 20260101000000Z 10.0.0.1
kvlxrBaseDate: 20260530000000Z

dn: uid=must,ou=people,o=t
uid: must
kvlxrImmediateChange: YES
)";

enum class Kind { kMemory, kSqlite };

class UserListTest : public ::testing::TestWithParam<Kind> {
  protected:
    void SetUp() override {
        std::vector<Entry> entries, more;
        ASSERT_TRUE(ParseLdif(testing::kDirectoryLdif, "fixture", &entries).ok());
        ASSERT_TRUE(ParseLdif(kListLdif, "lists", &more).ok());
        entries.insert(entries.end(), more.begin(), more.end());
        if (GetParam() == Kind::kMemory) {
            config_ = f_.config;
            provider_ = &f_.stores;
            Store* store = nullptr;
            f_.stores.Open("/mem/people", &store);
            Load(store, more);
            return;
        }
        std::string path = dir_.File("people.db");
        std::unique_ptr<SqliteStore> created;
        ASSERT_TRUE(SqliteStore::Create(path, &created).ok());
        Load(created.get(), entries);
        created.reset();
        std::string text =
            std::regex_replace(testing::kConfigText, std::regex("/mem/(admins|people)"), path);
        ASSERT_TRUE(ParseConfig(text, "/etc/test.toml", &config_).ok());
        sqlite_ = std::make_unique<SqliteStoreProvider>(1000);
        provider_ = sqlite_.get();
    }
    void TearDown() override { SqliteStoreProvider::CloseAll(); }

    static void Load(Store* store, const std::vector<Entry>& entries) {
        ASSERT_TRUE(store
                        ->Write([&](StoreWriter& w) {
                            for (const Entry& e : entries) w.Put(e);
                            return Status::OK();
                        })
                        .ok());
    }

    Status List(const std::string& request, const char* role = "desk", size_t room = 65535,
                const char* admin = kLead) {
        reply_.clear();
        count_ = -1;
        return ListUsers(config_, *provider_, role, admin, request, room, &reply_, &count_);
    }
    // The uid of each User element, in order.
    std::vector<std::string> Names() const { return Matches("<User name=\"([^\"]*)\""); }
    std::string Continuation() const {
        std::vector<std::string> c = Matches("continuation=\"([^\"]*)\"");
        return c.empty() ? "?" : c[0];
    }
    std::vector<std::string> Matches(const char* pattern) const {
        std::vector<std::string> out;
        std::regex re(pattern);
        for (auto it = std::sregex_iterator(reply_.begin(), reply_.end(), re);
             it != std::sregex_iterator(); ++it)
            out.push_back((*it)[1]);
        return out;
    }
    // Every user of the list, page by page.
    std::vector<std::string> Walk(const std::string& attributes, size_t room, int* pages) {
        std::vector<std::string> all;
        std::string continuation;
        for (*pages = 0; *pages < 50; ++*pages) {
            Status s = List("<ListRequest directory=\"people\" " + attributes + " continuation=\"" +
                                continuation + "\"/>",
                            "desk", room);
            EXPECT_TRUE(s.ok()) << s.message();
            if (!s.ok()) break;
            for (const std::string& n : Names()) all.push_back(n);
            continuation = Continuation();
            if (continuation.empty()) return all;
        }
        ADD_FAILURE() << "no end after " << *pages << " pages";
        return all;
    }

    testing::Fixture f_;
    testing::TempDir dir_;
    Config config_;
    std::unique_ptr<SqliteStoreProvider> sqlite_;
    StoreProvider* provider_ = nullptr;
    std::string reply_;
    int count_ = -1;
};

using UserNames = std::vector<std::string>;

TEST_P(UserListTest, EachListHoldsItsUsersInDnOrder) {
    const struct {
        const char* request;
        UserNames users;
    } cases[] = {
        {R"(list="locked")", {"lock5", "lock9"}},
        {R"(list="disabled")", {"bo", "lock5", "lock9", "old", "short"}},
        {R"(list="expired")", {"old", "short"}},
        {R"(list="expiring" days="7")", {"soon"}},
        {R"(list="expiring" days="3")", {}},
        {R"(list="idle" days="90")", {"idle"}},
        {R"(list="idle" days="200")", {}},
        {R"(list="mustchange")", {"must"}},
        {R"(list="search" start="LOC")", {"lock5", "lock9"}},
        {R"(list="search" start="twin")", {"bo", "cy"}},  // by cn, the second naming attribute
        {R"(list="search" start="zz")", {}},
    };
    for (const auto& c : cases) {
        Status s = List(std::string("<ListRequest directory=\"people\" ") + c.request + "/>");
        ASSERT_TRUE(s.ok()) << c.request << ": " << s.message();
        EXPECT_EQ(Names(), c.users) << c.request;
        EXPECT_EQ(count_, static_cast<int>(c.users.size())) << c.request;
        EXPECT_EQ(Continuation(), "") << c.request;
    }
}

TEST_P(UserListTest, ReasonsAreThoseOfTheUsersPage) {
    ASSERT_TRUE(List(R"(<ListRequest directory="people" list="disabled"/>)").ok());
    std::string list = reply_;
    std::regex user("<User name=\"[^\"]*\" dn=\"[^\"]*\" userPath=\"([^\"]*)\"[^>]*>(.*)</User>");
    int seen = 0;
    for (auto it = std::sregex_iterator(list.begin(), list.end(), user);
         it != std::sregex_iterator(); ++it, ++seen) {
        std::string reasons =
            std::regex_replace(std::string((*it)[2]), std::regex("</Reason><Reason>"), ",");
        reasons = std::regex_replace(reasons, std::regex("</?Reason>"), "");
        std::string page;
        int attributes = 0;
        Status s = ReadUser(config_, *provider_, "desk", kLead, std::string((*it)[1]), 65535, &page,
                            &attributes);
        ASSERT_TRUE(s.ok()) << (*it)[1] << ": " << s.message();
        EXPECT_NE(page.find("disabled=\"" + reasons + "\""), std::string::npos)
            << (*it)[1] << " lists " << reasons << " but its page says\n"
            << page.substr(0, 200);
    }
    EXPECT_EQ(seen, 5);
    EXPECT_NE(list.find("writable=\"kvlxrDisableUntil kvlxrAccountInactivityDays userPassword "
                        "kvlxrFailureCount kvlxrLoginHistory kvfpsLog "
                        "kvlxrGenerationalRedirects\""),
              std::string::npos)
        << list.substr(0, 300);
    EXPECT_NE(list.find("<User name=\"lock5\" dn=\"uid=lock5,ou=people,o=t\" "
                        "userPath=\"people/uid=lock5,ou=people,o=t\" lastLogin=\"\" "
                        "failures=\"5\"><Reason>Failure count 5 reached the maximum of "
                        "5</Reason></User>\n"),
              std::string::npos);
}

// Paging by size and by the room offered gives every user exactly once.
TEST_P(UserListTest, PagesFollowEachOtherWithoutGapOrRepeat) {
    int pages = 0;
    UserNames all = Walk(R"(list="search" size="1000")", 65535, &pages);
    ASSERT_EQ(pages, 0);
    ASSERT_EQ(all.size(), 13u);
    const struct {
        const char* attributes;
        size_t room;
        int pages;
    } cases[] = {
        {R"(list="search" size="3")", 65535, 4},
        {R"(list="search" size="1")", 65535, 12},  // the last page is full: one empty page more
        {R"(list="search" size="50")", 700, 4},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Walk(c.attributes, c.room, &pages), all) << c.attributes << " in " << c.room;
        EXPECT_EQ(pages, c.pages) << c.attributes << " in " << c.room;
    }
    ASSERT_TRUE(List(R"(<ListRequest directory="people" list="search" size="2"/>)").ok());
    EXPECT_EQ(count_, 2);
    std::string continuation = Continuation();
    EXPECT_TRUE(std::regex_match(continuation, std::regex("[0-9a-f]+"))) << continuation;
}

TEST_P(UserListTest, BadRequestsAndRefusals) {
    ASSERT_TRUE(
        List(R"(<ListRequest directory="people" list="search" start="lo" size="1"/>)").ok());
    std::string other = Continuation();
    const struct {
        std::string request;
        int code = kBadRequest;
        const char* role = "desk";
        size_t room = 65535;
    } cases[] = {
        {""},
        {R"(<ListRequest directory="people" list="locked">)"},
        {R"(<ListRequest directory="people" list="locked"/> x)"},
        {R"(<ListRequest directory="people" list="locked" list="idle"/>)"},
        {R"(<ListRequest directory="people" list="locked" colour="red"/>)"},
        {R"(<ListRequest directory="people" list="search" start="a&b"/>)"},
        {R"(<ListRequest directory="people" list="everyone"/>)"},
        {R"(<ListRequest list="locked"/>)"},
        {R"(<ListRequest directory="people" list="idle"/>)"},
        {R"(<ListRequest directory="people" list="locked" days="3"/>)"},
        {R"(<ListRequest directory="people" list="idle" days="0"/>)"},
        {R"(<ListRequest directory="people" list="locked" start="a"/>)"},
        {R"(<ListRequest directory="people" list="locked" size="0"/>)"},
        {R"(<ListRequest directory="people" list="locked" size="1001"/>)"},
        {R"(<ListRequest directory="people" list="search" start="bo" continuation=")" + other +
         R"("/>)"},
        {R"(<ListRequest directory="people" list="search" start="lo" continuation="zz"/>)"},
        {R"(<ListRequest directory="other" list="locked"/>)", kAccessDenied, "reader"},
        {R"(<ListRequest directory="nowhere" list="locked"/>)", kAccessDenied},
        {R"(<ListRequest directory="people" list="locked"/>)", kAccessDenied, "boss"},
        {R"(<ListRequest directory="people" list="locked"/>)", kBufferTooSmall, "desk", 120},
    };
    for (const auto& c : cases) {
        Status s =
            List(c.request, c.role, c.room, std::string(c.role) == "reader" ? kReader : kLead);
        EXPECT_EQ(s.code(), c.code) << c.request << ": " << s.message();
        EXPECT_TRUE(reply_.empty()) << c.request;
    }
    // An escaped value is read as what it stands for; a reader sees the
    // writable set of its own role (none: it may change only a group).
    ASSERT_TRUE(List(R"(<ListRequest directory = "people"  list="search" start="&apos;&amp;"
                         />)",
                     "reader", 65535, kReader)
                    .ok());
    EXPECT_EQ(count_, 0);
    EXPECT_NE(reply_.find("writable=\"\""), std::string::npos) << reply_;
}

INSTANTIATE_TEST_SUITE_P(Stores, UserListTest, ::testing::Values(Kind::kMemory, Kind::kSqlite),
                         [](const auto& info) {
                             return info.param == Kind::kMemory ? "Memory" : "Sqlite";
                         });

}  // namespace
}  // namespace lxrapi
