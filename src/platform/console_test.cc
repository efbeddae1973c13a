#include "platform/console.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

// Runs `read` with standard input fed from `input`. Standard input is made
// unbuffered, so that what one case leaves unread does not reach the next.
template <class F>
void WithStdin(const std::string& input, F read) {
    std::setvbuf(stdin, nullptr, _IONBF, 0);
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    ASSERT_EQ(write(fds[1], input.data(), input.size()), static_cast<ssize_t>(input.size()));
    close(fds[1]);
    int saved = dup(STDIN_FILENO);
    dup2(fds[0], STDIN_FILENO);
    close(fds[0]);
    clearerr(stdin);
    read();
    dup2(saved, STDIN_FILENO);
    close(saved);
    clearerr(stdin);
}

TEST(KvGetStringInputFromConsole, ReadsUpToSizeMinusOne) {
    struct Case {
        std::string input;
        int size;
        int got;
        std::string want;
    } cases[] = {
        {"a=1&b=2", 8, 7, "a=1&b=2"},
        {"a=1&b=2", 4, 3, "a=1"},  // the declared length wins over the body
        {"ab", 10, 2, "ab"},       // a short body gives what there is
        {std::string("a\0b", 3), 4, 3, std::string("a\0b", 3)},
        {"x", 1, 0, ""},
    };
    for (const Case& c : cases) {
        WithStdin(c.input, [&] {
            char buf[16];
            std::memset(buf, 'z', sizeof buf);
            EXPECT_EQ(KvGetStringInputFromConsole(c.size, buf, 0), c.got) << c.input;
            EXPECT_EQ(std::string(buf, static_cast<size_t>(c.got)), c.want);
            EXPECT_EQ(buf[c.got], '\0');
        });
    }
    char one[1];
    EXPECT_EQ(KvGetStringInputFromConsole(0, one, 0), 0);
    EXPECT_EQ(KvGetStringInputFromConsole(5, nullptr, 0), 0);
}

TEST(KvPrintBuffer, LineEndOnlyWithFlagOne) {
    testing::internal::CaptureStdout();
    KvPrintBufferToConsole("out", 1);
    KvPrintBufferToConsole("more", 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "out\nmore");
    testing::internal::CaptureStderr();
    KvPrintBufferToError("usage", 1);
    KvPrintBufferToError("\a", 0);
    KvPrintBufferToError(nullptr, 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "usage\n\a\n");
}

}  // namespace
