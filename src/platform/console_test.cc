#include "platform/console.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/capture.h"

namespace {

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
        lxrtest::ScopedStdin in(c.input);
        char buf[16];
        std::memset(buf, 'z', sizeof buf);
        EXPECT_EQ(KvGetStringInputFromConsole(c.size, buf, 0), c.got) << c.input;
        EXPECT_EQ(std::string(buf, static_cast<size_t>(c.got)), c.want);
        EXPECT_EQ(buf[c.got], '\0');
    }
    char one[1];
    EXPECT_EQ(KvGetStringInputFromConsole(0, one, 0), 0);
    EXPECT_EQ(KvGetStringInputFromConsole(5, nullptr, 0), 0);
}

}  // namespace
