// The C boundary: buffers, result codes and messages, and many processes
// writing one user at once.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <regex>

#include "lxrapi.h"
#include "sqlite_store.h"
#include "test_support.h"

namespace lxrapi {
namespace {

constexpr const char* kAdmin = "LDAP://ldap1/uid=lead,ou=admins,o=t";
constexpr char kGuard = '\x5a';

class ApiTest : public ::testing::Test {
  protected:
    void SetUp() override {
        store_ = dir_.File("people.db");
        std::unique_ptr<SqliteStore> s;
        ASSERT_TRUE(SqliteStore::Create(store_, &s).ok());
        std::vector<Entry> entries;
        ASSERT_TRUE(ParseLdif(testing::kDirectoryLdif, "fixture", &entries).ok());
        ASSERT_TRUE(s->Write([&](StoreWriter& w) {
                         for (const Entry& e : entries) w.Put(e);
                         return Status::OK();
                     }).ok());
        std::string text = testing::kConfigText;
        text = std::regex_replace(text, std::regex("/mem/(admins|people)"), "people.db");
        WriteConfig(text);
        setenv("LXR_NOW", std::to_string(testing::kNow).c_str(), 1);
    }
    void TearDown() override { unsetenv("LXRAPI_CONFIG"); }

    void WriteConfig(const std::string& text) {
        config_ = dir_.File("api.toml");
        std::ofstream(config_) << text;
        setenv("LXRAPI_CONFIG", config_.c_str(), 1);
    }

    // Calls LXRAdminRead with buffers of the given sizes inside larger ones
    // filled with guard bytes, and checks that nothing past the sizes changed.
    int Read(const char* userPath, int replySize, int messageSize) {
        reply_.assign(replySize + 64, kGuard);
        message_.assign(messageSize + 64, '\0');
        std::fill(message_.begin() + messageSize, message_.end(), kGuard);
        int rc = LXRAdminRead("desk", kAdmin, userPath, reply_.data(), replySize, message_.data(),
                              messageSize, "LXRAdmin=YES", "EN", "US", nullptr);
        for (size_t i = replySize; i < reply_.size(); ++i) EXPECT_EQ(reply_[i], kGuard) << i;
        for (size_t i = messageSize; i < message_.size(); ++i) EXPECT_EQ(message_[i], kGuard) << i;
        return rc;
    }
    int Write(const std::string& body, std::string* message = nullptr) {
        char text[1024] = {};
        std::string doc = "<User name=\"uid=ann,ou=people,o=t\">" + body + "</User>";
        int rc = LXRAdminWrite("desk", kAdmin, doc.c_str(), text, sizeof text, "LXRAdmin=YES", "EN",
                               "US", nullptr);
        if (message) *message = text;
        return rc;
    }
    std::string ReadDocument(const char* userPath = "people/ann", const char* language = "EN") {
        std::vector<char> reply(65536);
        char message[1024] = {};
        int rc = LXRAdminRead("desk", kAdmin, userPath, reply.data(), 65535, message,
                              sizeof message, "LXRAdmin=YES", language, language, nullptr);
        EXPECT_GE(rc, 0) << message;
        return reply.data();
    }

    testing::TempDir dir_;
    std::string store_, config_;
    std::vector<char> reply_, message_;
};

TEST_F(ApiTest, ReplyBufferLimits) {
    const std::string full = ReadDocument();
    const std::string oldest = "20260529101010Z FAILED";
    ASSERT_NE(full.find(oldest), std::string::npos);
    int exact = static_cast<int>(full.size()) + 1;
    EXPECT_EQ(Read("people/ann", exact, 256), 26);
    EXPECT_EQ(message_[0], '\0');
    EXPECT_EQ(std::string(reply_.data()), full);
    // One byte short: the oldest login is left out, and nothing else.
    EXPECT_EQ(Read("people/ann", exact - 1, 256), 26);
    EXPECT_EQ(message_[0], '\0');
    size_t at = full.rfind("      <Value>", full.find(oldest));
    size_t end = full.find('\n', at) + 1;
    EXPECT_EQ(std::string(reply_.data()), full.substr(0, at) + full.substr(end));
    EXPECT_EQ(Read("people/ann", 1000, 256), kBufferTooSmall);
    EXPECT_EQ(reply_[0], '\0');
    EXPECT_NE(std::string(message_.data()).find("does not fit the buffer"), std::string::npos);
    EXPECT_EQ(Read("people/ann", 1, 256), kBufferTooSmall);
    EXPECT_EQ(Read("people/ann", 0, 256), kBufferTooSmall);

    char message[64] = {};
    EXPECT_EQ(LXRAdminRead("desk", kAdmin, "people/ann", nullptr, 100, message, sizeof message, "",
                           "", "", nullptr),
              kBufferTooSmall);
    std::vector<char> reply(100, kGuard);
    EXPECT_EQ(
        LXRAdminGetDirectory("desk", reply.data(), 20, message, sizeof message, "", "", nullptr),
        kBufferTooSmall);
    for (size_t i = 20; i < reply.size(); ++i) EXPECT_EQ(reply[i], kGuard);
}

// The list call keeps the boundary's rules: its count as the result, nothing
// past either buffer, an empty reply on failure, messages in the caller's
// language.
TEST_F(ApiTest, ListCallKeepsTheBoundaryRules) {
    const struct {
        const char* request;
        int replySize;
        const char* language;
        int result;
        const char* message;
    } cases[] = {
        {R"(<ListRequest directory="people" list="disabled"/>)", 4096, "EN", 1, ""},
        {R"(<ListRequest directory="people" list="disabled"/>)", 150, "EN", kBufferTooSmall,
         "The reply of "},
        {R"(<ListRequest directory="people" list="idle"/>)", 4096, "de", kBadRequest,
         "Die Listenanfrage braucht das Attribut days"},
        {nullptr, 4096, "EN", kBadRequest, "No list request was given"},
    };
    for (const auto& c : cases) {
        std::vector<char> reply(c.replySize + 64, kGuard);
        std::vector<char> message(256 + 64, kGuard);
        std::fill(message.begin(), message.begin() + 256, '\0');
        int rc = LXRAdminList("desk", kAdmin, c.request, reply.data(), c.replySize, message.data(),
                              256, c.language, "", nullptr);
        EXPECT_EQ(rc, c.result) << (c.request ? c.request : "null");
        EXPECT_EQ(std::string(message.data()).rfind(c.message, 0), 0u) << message.data();
        if (rc < 0) {
            EXPECT_EQ(reply[0], '\0');
        } else {
            EXPECT_NE(std::string(reply.data()).find("<User name=\"bo\""), std::string::npos);
        }
        for (size_t i = c.replySize; i < reply.size(); ++i) EXPECT_EQ(reply[i], kGuard) << i;
        for (size_t i = 256; i < message.size(); ++i) EXPECT_EQ(message[i], kGuard) << i;
    }
}

TEST_F(ApiTest, MessagesAreCutToTheirBuffer) {
    EXPECT_EQ(Read("people/nobody-at-all", 4096, 10), kUserUnreadable);
    EXPECT_EQ(std::strlen(message_.data()), 9u);
    EXPECT_EQ(std::string(message_.data()), "No user '");
    // A cut never leaves half a character behind.
    EXPECT_EQ(Read("people/\xc3\xa9", 4096, 11), kUserUnreadable);
    EXPECT_EQ(std::string(message_.data()), "No user '");
    EXPECT_EQ(Read("people/nobody-at-all", 4096, 1), kUserUnreadable);
    EXPECT_EQ(message_[0], '\0');
    EXPECT_EQ(Read("people/nobody-at-all", 4096, 0), kUserUnreadable);
    EXPECT_EQ(LXRAdminRead("desk", kAdmin, "people/x", nullptr, 0, nullptr, 0, nullptr, nullptr,
                           nullptr, nullptr),
              kUserUnreadable);
    EXPECT_EQ(LXRAdminRead(nullptr, nullptr, nullptr, nullptr, 0, nullptr, 0, nullptr, nullptr,
                           nullptr, nullptr),
              kAccessDenied);
}

TEST_F(ApiTest, ConfigurationAndStoreFaultsAreCommunicationErrors) {
    WriteConfig("[[directory]]\nid = \"d\"\nstore = \"people.db\"\nbase = \"o=t\"\ncolour = 1\n");
    EXPECT_EQ(Read("people/ann", 4096, 1024), kUnreachable);
    EXPECT_EQ(std::string(message_.data()),
              "Configuration file " + config_ + " line 5: unknown key 'colour' in directory 1");
    char message[512] = {};
    EXPECT_EQ(LXRAdminWrite("desk", kAdmin, "<User name=\"x\"></User>", message, sizeof message, "",
                            "", "", nullptr),
              kUnreachable);
    std::vector<char> reply(4096);
    EXPECT_EQ(
        LXRAdminGetDirectory("desk", reply.data(), 4096, message, sizeof message, "", "", nullptr),
        kUnreachable);

    setenv("LXRAPI_CONFIG", dir_.File("absent.toml").c_str(), 1);
    EXPECT_EQ(Read("people/ann", 4096, 1024), kUnreachable);
    EXPECT_NE(std::string(message_.data()).find("absent.toml"), std::string::npos);

    std::string text = testing::kConfigText;
    WriteConfig(std::regex_replace(text, std::regex("/mem/(admins|people)"), "gone.db"));
    EXPECT_EQ(Read("people/ann", 4096, 1024), kUnreachable);
    EXPECT_NE(std::string(message_.data()).find(dir_.File("gone.db")), std::string::npos)
        << message_.data();
}

// The program shows a message unescaped in alert("...") and <h1>...</h1>,
// and redirects to one that begins like an address: whatever the caller sent,
// no message may carry markup, quotation marks, line ends or such a beginning.
// In the caller's language too: the guard applies after translation.
TEST_F(ApiTest, EveryMessageIsSafeForThePages) {
    struct Case {
        const char* role;
        const char* user;  // read this user, or
        const char* body;  // write this body
        const char* config;
        int code;
        const char* says;
        const char* language = "EN";
    } cases[] = {
        {"d\"e<s>k", "people/ann", nullptr, nullptr, kAccessDenied,
         "Unknown administrator role 'd?e?s?k'"},
        {"desk", "people/a\\b\nc", nullptr, nullptr, kUserUnreadable, "No user 'a?b?c'"},
        {"desk", "people/a\\b\nc", nullptr, nullptr, kUserUnreadable, "Kein Benutzer 'a?b?c'",
         "de"},
        {"desk", "d<\"x\">/ann", nullptr, nullptr, kAccessDenied,
         "The directory 'd??x?"
         "?' is not open to the role 'desk'"},
        {"desk", nullptr,
         "<Attribute name=\"kvlxrDisableUntil\"><Value>\"soon\" <b>\\</Value></Attribute>", nullptr,
         kBadRequest,
         "Attribute kvlxrDisableUntil: the value '?soon? ?b?"
         "?' holds the character U+0022"},
        {"desk", nullptr,
         "<Attribute name=\"kvlxrDisableUntil\"><Value>\"soon\" <b>\\</Value></Attribute>", nullptr,
         kBadRequest,
         "属性 kvlxrDisableUntil: 値 '?soon? ?b?"
         "?' に文字 U+0022 が含まれています",
         "ja"},
        {"desk", "people/ann", nullptr, "http://x/\"q\".toml", kUnreachable,
         "Configuration file http://x/?q?.toml cannot be opened"},
    };
    for (const Case& c : cases) {
        if (c.config) setenv("LXRAPI_CONFIG", c.config, 1);
        char message[8192] = {};
        int rc;
        if (c.user) {
            std::vector<char> reply(65536);
            rc = LXRAdminRead(c.role, kAdmin, c.user, reply.data(), 65535, message, sizeof message,
                              "LXRAdmin=YES", c.language, c.language, nullptr);
        } else {
            std::string doc =
                std::string("<User name=\"uid=ann,ou=people,o=t\">") + c.body + "</User>";
            rc = LXRAdminWrite(c.role, kAdmin, doc.c_str(), message, sizeof message, "LXRAdmin=YES",
                               c.language, c.language, nullptr);
        }
        setenv("LXRAPI_CONFIG", config_.c_str(), 1);
        std::string text = message;
        EXPECT_EQ(rc, c.code) << text;
        EXPECT_NE(text.find(c.says), std::string::npos) << text << "\nwanted " << c.says;
        for (const char* bad : {"\"", "\\", "<", ">", "\n", "\r"})
            EXPECT_EQ(text.find(bad), std::string::npos) << text;
        for (const char* start : {"/", "http:", "https:"})
            EXPECT_NE(text.rfind(start, 0), 0u) << text;
    }
}

// What a write changes and refuses is the service tests' matter; here the
// C boundary: the message buffer emptied on success, a missing document.
TEST_F(ApiTest, WriteClearsTheMessageOnSuccess) {
    char message[64];
    std::memset(message, 'x', sizeof message);
    EXPECT_EQ(LXRAdminWrite("desk", kAdmin,
                            "<User name=\"uid=ann,ou=people,o=t\"><Attribute "
                            "name=\"kvlxrDisableUntil\"><Value>FOREVER</Value></Attribute></User>",
                            message, sizeof message, "LXRAdmin=YES", "EN", "US", nullptr),
              0);
    EXPECT_EQ(message[0], '\0');
    EXPECT_NE(ReadDocument().find("disabled=\"Disabled forever\""), std::string::npos);
    EXPECT_NE(ReadDocument("people/ann", "zh-CN").find("disabled=\"永久禁用\""), std::string::npos);
    EXPECT_EQ(LXRAdminWrite("desk", kAdmin, nullptr, nullptr, 0, "", "", "", nullptr), kBadRequest);
}

// Several processes write different attributes (and different redirect
// entries) of one user at once; every last write of each must be there.
TEST_F(ApiTest, ConcurrentWritersLoseNothing) {
    EXPECT_GE(Read("people/ann", 65535, 1024), 0);  // the parent has a connection open too
    const char* bodies[] = {
        "<Attribute name=\"kvlxrFailureCount\"><Value>%d 20260601120000Z</Value></Attribute>",
        "<Attribute name=\"kvlxrDisableUntil\"><Value>FOREVER round%d</Value></Attribute>",
        "<Attribute name=\"kvlxrAccountInactivityDays\"><Value>%d days</Value></Attribute>",
        "<Attribute name=\"kvlxrGenerationalRedirects\"><Value>K3=https://t/%d</Value>"
        "</Attribute>",
        "<Attribute name=\"kvlxrGenerationalRedirects\"><Value>K4=https://t/%d</Value>"
        "</Attribute>",
        "<Attribute name=\"kvlxrGenerationalRedirects\"><Value>K5=https://t/%d</Value>"
        "</Attribute>",
    };
    constexpr int kRounds = 8;
    std::vector<pid_t> children;
    for (const char* body : bodies) {
        pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            int failures = 0;
            for (int round = 1; round <= kRounds; ++round) {
                char text[512];
                std::snprintf(text, sizeof text, body, round);
                std::string message;
                if (Write(text, &message) != 0) {
                    ++failures;
                    std::fprintf(stderr, "writer %d: %s\n", round, message.c_str());
                }
            }
            _exit(failures);
        }
        children.push_back(pid);
    }
    for (pid_t pid : children) {
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "a writer failed";
    }
    std::string doc = ReadDocument();
    for (const char* want :
         {"<Value>8 20260601120000Z</Value>", "<Value>FOREVER round8</Value>",
          "<Value>8 days</Value>", "<Value>K3=https://t/8</Value>", "<Value>K4=https://t/8</Value>",
          "<Value>K5=https://t/8</Value>", "<Value>A=https://a.example/"})
        EXPECT_NE(doc.find(want), std::string::npos) << want << "\n" << doc;
    std::unique_ptr<SqliteStore> s;
    ASSERT_TRUE(SqliteStore::Open(store_, 1000, &s).ok());
    std::vector<AuditRecord> audit;
    s->Read([&](StoreReader& r) { return r.ListAudit("", &audit); });
    EXPECT_EQ(audit.size(), 6u * kRounds);
    EXPECT_EQ(s->Read([](StoreReader&) { return Status::OK(); }).code(), kOk);
}

}  // namespace
}  // namespace lxrapi
