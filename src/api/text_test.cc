#include "text.h"

#include <gtest/gtest.h>

namespace lxrapi {
namespace {

TEST(TextTest, DecodePercentTakesOnlyWholeEscapes) {
    struct Case {
        const char* in;
        const char* out;
    } cases[] = {
        {"vpn-users", "vpn-users"},
        {"cn%3Dvpn-users%2Cou%3Dgroups", "cn=vpn-users,ou=groups"},
        {"%3d%2c", "=,"},
        {"a+b", "a+b"},  // "+" is a blank only in form values, and DNs may hold "+"
        {"100%", "100%"},
        {"%4", "%4"},
        {"%zz%41", "%zzA"},
        {"%%41", "%A"},
        {"%25", "%"},
        {"%C3%A9", "\xc3\xa9"},
    };
    for (const Case& c : cases) EXPECT_EQ(DecodePercent(c.in), c.out) << c.in;
}

}  // namespace
}  // namespace lxrapi
