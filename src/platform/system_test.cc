#include "platform/system.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include "platform/env.h"

namespace {

TEST(CKvGetEnv, UnsetEmptyAndSet) {
    unsetenv("LXR_TEST_VAR");
    EXPECT_EQ(CKvGetEnv("LXR_TEST_VAR").c_str(), nullptr);
    setenv("LXR_TEST_VAR", "", 1);
    ASSERT_NE(CKvGetEnv("LXR_TEST_VAR").c_str(), nullptr);
    EXPECT_STREQ(CKvGetEnv("LXR_TEST_VAR").c_str(), "");
    CKvGetEnv env;
    setenv("LXR_TEST_VAR", "v", 1);
    EXPECT_STREQ(env.set("LXR_TEST_VAR"), "v");
    EXPECT_STREQ(env.c_str(), "v");
    EXPECT_EQ(env.set(nullptr), nullptr);
    unsetenv("LXR_TEST_VAR");
}

TEST(KvGetAdminLocale, EnvironmentOrEnglish) {
    unsetenv("LXRADMIN_LOCALE");
    EXPECT_STREQ(KvGetAdminLocale(), "en");
    setenv("LXRADMIN_LOCALE", "", 1);
    EXPECT_STREQ(KvGetAdminLocale(), "en");
    setenv("LXRADMIN_LOCALE", "de-DE", 1);
    EXPECT_STREQ(KvGetAdminLocale(), "de-DE");
    unsetenv("LXRADMIN_LOCALE");
}

TEST(KvAccess, ExistingAndMissing) {
    EXPECT_EQ(KvAccess("/", F_OK), 0);
    EXPECT_EQ(KvAccess("/no/such/file/here", F_OK), -1);
    EXPECT_EQ(KvAccess(nullptr, F_OK), -1);
}

}  // namespace
