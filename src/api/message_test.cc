#include "message.h"

#include <gtest/gtest.h>

namespace lxrapi {
namespace {

// What the program does with a message: alert("%s") and <h1>%s</h1>, and a
// redirect when it begins with "/", "http:" or "https:".
TEST(MessageTest, SafeMessageLeavesNothingThePagesCannotShow) {
    struct Case {
        const char* in;
        const char* out;
    } cases[] = {
        {"", ""},
        {"No user 'ann' was found", "No user 'ann' was found"},
        {"unknown role \"x\"", "unknown role 'x'"},
        {"a\\b <i>c</i>", "a?b ?i?c?/i?"},
        {"line one\nline two\r\n\tend", "line one line two   end"},
        {"bell\a del\x7f", "bell? del?"},
        {"/etc/lxr/lxrapi.toml:3: bad", "Error: /etc/lxr/lxrapi.toml:3: bad"},
        {"http://x/", "Error: http://x/"},
        {"https:x", "Error: https:x"},
        {"HTTPS://x", "Error: HTTPS://x"},
        {"httpx:", "httpx:"},
        {" /x", " /x"},  // the program does not trim: not an address
        {"\"/x\"", "'/x'"},
        {"\n/x", " /x"},
        {"Größe: 5 €", "Größe: 5 €"},  // UTF-8 passes unchanged
    };
    for (const Case& c : cases) {
        std::string safe = SafeMessage(c.in);
        EXPECT_EQ(safe, c.out) << c.in;
        EXPECT_TRUE(IsSafeMessage(safe)) << safe;
        EXPECT_EQ(SafeMessage(safe), safe) << "not stable: " << safe;
    }
    for (const char* unsafe : {"a\"b", "a\\b", "<", ">", "a\nb", "a\rb", "/x", "http:", "https:"})
        EXPECT_FALSE(IsSafeMessage(unsafe)) << unsafe;
}

TEST(MessageTest, OutsideDataIsShownWithoutMarkupAndCut) {
    struct Case {
        const char* in;
        size_t limit;
        const char* quoted;
    } cases[] = {
        {"ann", 0, "'ann'"},
        {"", 0, "''"},
        {"<b>\"O'Neil\"\\", 0,
         "'?b??O'Neil?"
         "?'"},
        {"tab\there", 0, "'tab?here'"},
        {"abcdef", 4, "'abcd...'"},
        {"abcd", 4, "'abcd'"},
        {"ab\xc3\xa9z", 3, "'ab...'"},  // never half an "é"
        {"ab\xc3\xa9z", 4, "'ab\xc3\xa9...'"},
    };
    for (const Case& c : cases) EXPECT_EQ(Quoted(c.in, c.limit), c.quoted) << c.in;
}

TEST(MessageTest, CutAtCharacterKeepsWholeCharacters) {
    const std::string text =
        "a\xe2\x82\xac"
        "b";  // a € b
    struct Case {
        size_t size;
        const char* cut;
    } cases[] = {{0, ""},           {1, "a"},         {2, "a"}, {3, "a"}, {4, "a\xe2\x82\xac"},
                 {5, text.c_str()}, {9, text.c_str()}};
    for (const Case& c : cases) EXPECT_EQ(CutAtCharacter(text, c.size), c.cut) << c.size;
}

}  // namespace
}  // namespace lxrapi
