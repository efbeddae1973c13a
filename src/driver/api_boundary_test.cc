#include "driver/api_boundary.h"

#include <gtest/gtest.h>

#include <cstring>

#include "i18n/language.h"

namespace {

// Translators for an application that has no catalogue, so every text is
// its English default.
class GetMsgTest : public ::testing::Test {
  protected:
    void SetUp() override {
        plain_ = GetLanguage("LXRAdminNoCatalogue", "en", nullptr, false);
        withId_ = GetLanguage("LXRAdminNoCatalogue", "en", nullptr, true);
    }
    void TearDown() override {
        Lang = nullptr;
        LangWithID = nullptr;
        delete plain_;
        delete withId_;
    }
    void Use(bool plain, bool withId) {
        Lang = plain ? plain_ : nullptr;
        LangWithID = withId ? withId_ : nullptr;
    }

    CLanguage* plain_ = nullptr;
    CLanguage* withId_ = nullptr;
};

struct KnownCase {
    int result;
    const char* text;
};

const KnownCase kKnown[] = {
    {-7, "Communications Error"},
    {-6, "INTERNAL ERROR: Comm buffer too small."},
    {-5, "User update failed."},
    {-4, "INTERNAL ERROR: Bad request format."},
    {-3, "Unable to read User Entry."},
    {-2, "Unable to read Administrator Entry."},
    {-1, "Access Denied"},
    {0, "Operation Successful"},
};

TEST_F(GetMsgTest, KnownResultsWithoutTheKey) {
    // Through Lang when it exists, copied when it does not; LangWithID never
    // serves known results, so no key is shown either way.
    for (bool plain : {true, false}) {
        Use(plain, true);
        for (const KnownCase& c : kKnown) {
            char buffer[8192] = {};
            GetMsg(c.result, buffer, sizeof buffer);
            EXPECT_STREQ(buffer, c.text) << c.result << " plain=" << plain;
        }
    }
}

TEST_F(GetMsgTest, KnownResultCutToSize) {
    Use(true, true);
    char buffer[16];
    std::memset(buffer, 'x', sizeof buffer);
    GetMsg(-3, buffer, 8);
    EXPECT_STREQ(buffer, "Unable ");
    EXPECT_EQ(buffer[8], 'x');
}

TEST_F(GetMsgTest, UnknownResultsLeaveTheBufferAsItWas) {
    Use(true, true);
    for (int result : {-8, 1, 7, 12345, -2147483647 - 1, 2147483647}) {
        char buffer[64] = {};
        GetMsg(result, buffer, sizeof buffer);
        EXPECT_STREQ(buffer, "") << result;
        std::strcpy(buffer, "before");
        GetMsg(result, buffer, sizeof buffer);
        EXPECT_STREQ(buffer, "before") << result;
    }
}

TEST_F(GetMsgTest, UnknownResultsWithoutCatalogueUseTheFallback) {
    // Lang alone does not serve unknown results.
    for (bool plain : {true, false}) {
        Use(plain, false);
        char buffer[1024] = {};
        GetMsg(-8, buffer, sizeof buffer);
        EXPECT_STREQ(buffer, "Unknown return from API (-8)");
        GetMsg(1, buffer, sizeof buffer);
        EXPECT_STREQ(buffer, "Unknown return from API (1)");
    }
}

}  // namespace
