#include "list/post_token.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

const std::string kSecret(40, 'k');
const TokenSubject kLead{"uid=hd.lead,ou=admins,o=example",
                         "LDAP://h/uid=hd.lead,ou=admins,o=example", "helpdesk"};

TEST(PostToken, AcceptsOnlyItsOwnAdministratorWithinItsLifetime) {
    const time_t issued = 1780315200;
    const std::string token = MakeToken(kSecret, kLead, issued);
    EXPECT_EQ(token.substr(0, 11), "1780315200.");
    EXPECT_EQ(token.size(), 11u + 64u);
    TokenSubject otherRole = kLead, otherDn = kLead, otherPath = kLead, shifted = kLead;
    otherRole.role = "auditor";
    otherDn.dn = "uid=intern,ou=admins,o=example";
    otherPath.path = "LDAP://other/uid=hd.lead,ou=admins,o=example";
    // The parts are kept apart: moving text from one to the next is another subject.
    shifted.dn = kLead.dn + "L";
    shifted.path = kLead.path.substr(1);
    std::string tampered = token;
    tampered.back() = tampered.back() == '0' ? '1' : '0';
    struct Case {
        const char* what;
        std::string secret;
        TokenSubject subject;
        std::string token;
        time_t now;
        bool accepted;
    } cases[] = {
        {"fresh", kSecret, kLead, token, issued + 5, true},
        {"at the end of its life", kSecret, kLead, token, issued + kTokenLifetime, true},
        {"expired", kSecret, kLead, token, issued + kTokenLifetime + 1, false},
        {"from the future", kSecret, kLead, token, issued - 61, false},
        {"other role", kSecret, otherRole, token, issued, false},
        {"other DN", kSecret, otherDn, token, issued, false},
        {"other path", kSecret, otherPath, token, issued, false},
        {"parts shifted", kSecret, shifted, token, issued, false},
        {"other secret", std::string(40, 'j'), kLead, token, issued, false},
        {"short secret", kSecret.substr(0, 31), kLead,
         MakeToken(kSecret.substr(0, 31), kLead, issued), issued, false},
        {"tampered", kSecret, kLead, tampered, issued, false},
        {"time changed", kSecret, kLead, "1780315201" + token.substr(10), issued, false},
        {"no time", kSecret, kLead, token.substr(10), issued, false},
        {"empty", kSecret, kLead, "", issued, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(CheckToken(c.secret, c.subject, c.token, c.now), c.accepted) << c.what;
    }
}

TEST(PostToken, SecretFileMustHoldEnoughBytes) {
    std::string file = ::testing::TempDir() + "/list.secret";
    for (size_t size : {size_t{0}, kMinSecretSize - 1, kMinSecretSize}) {
        FILE* f = std::fopen(file.c_str(), "wb");
        ASSERT_NE(f, nullptr);
        std::fwrite(std::string(size, 's').data(), 1, size, f);
        std::fclose(f);
        std::string secret, problem;
        setenv("LXR_LIST_SECRET", file.c_str(), 1);
        EXPECT_EQ(ReadTokenSecret("/nonexistent", secret, problem), size >= kMinSecretSize) << size;
        EXPECT_EQ(secret.size(), size >= kMinSecretSize ? size : 0u);
    }
    unsetenv("LXR_LIST_SECRET");
    std::string secret, problem;
    EXPECT_FALSE(ReadTokenSecret("/nonexistent/list.secret", secret, problem));
    EXPECT_NE(problem.find("/nonexistent/list.secret"), std::string::npos);
}

}  // namespace
