#include "platform/utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<int> Walk(const char* text) {
    std::vector<int> out;
    CKvUTF8CharIterator it(text);
    for (int c = it.next(); c != 0; c = it.next()) {
        out.push_back(c);
        if (out.size() > 64) break;  // a walk that does not advance
    }
    return out;
}

TEST(CKvUTF8CharIterator, WellFormedAndMalformed) {
    struct Case {
        const char* text;
        std::vector<int> want;
    } cases[] = {
        {"", {}},
        {"a b", {'a', ' ', 'b'}},
        {"\xC3\xA9\xE2\x80\x94\xF0\x9F\x98\x80", {0xE9, 0x2014, 0x1F600}},
        // A stray byte is returned as its own value and the walk moves on.
        {"a\xE9z", {'a', 0xE9, 'z'}},
        {"\x80\xBF", {0x80, 0xBF}},
        // A truncated sequence gives its bytes one by one.
        {"\xE2\x80", {0xE2, 0x80}},
        {"\xF0\x9F\x98", {0xF0, 0x9F, 0x98}},
        // Overlong forms and encoded surrogates are not code points.
        {"\xC0\xAF", {0xC0, 0xAF}},
        {"\xED\xA0\x80", {0xED, 0xA0, 0x80}},
        {"\xFF\xFEx", {0xFF, 0xFE, 'x'}},
    };
    for (const Case& c : cases) EXPECT_EQ(Walk(c.text), c.want) << c.text;
    EXPECT_TRUE(Walk(nullptr).empty());
}

TEST(CKvUTF8CharIterator, StaysAtEnd) {
    CKvUTF8CharIterator it("x");
    EXPECT_EQ(it.next(), 'x');
    EXPECT_EQ(it.next(), 0);
    EXPECT_EQ(it.next(), 0);
}

TEST(CKvUTF8ToUpper, RootRules) {
    struct Case {
        const char* text;
        const char* want;
    } cases[] = {
        {"utf-8;q=0.5, iso-8859-1", "UTF-8;Q=0.5, ISO-8859-1"},
        {"stra\xC3\x9F"
         "e \xC3\xA9t\xC3\xA9",
         "STRASSE \xC3\x89T\xC3\x89"},
        {"i", "I"},  // root rules, never the Turkish dotted capital
        {"", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(CKvUTF8ToUpper(c.text), c.want) << c.text;
    EXPECT_EQ(CKvUTF8ToUpper(nullptr), "");
    // Malformed bytes do not stop the letters around them from changing.
    std::string odd = CKvUTF8ToUpper("a\xFFz");
    EXPECT_EQ(odd.front(), 'A');
    EXPECT_EQ(odd.back(), 'Z');
}

TEST(CKvToUTF8, Charsets) {
    struct Case {
        const char* text;
        const char* charset;
        const char* want;
    } cases[] = {
        {"caf\xE9", "ISO-8859-1", "caf\xC3\xA9"},
        {"caf\xE9", "iso-8859-1", "caf\xC3\xA9"},
        {"\x80", "windows-1252", "\xE2\x82\xAC"},
        {"\xA4", "ISO-8859-15", "\xE2\x82\xAC"},
        {"caf\xC3\xA9", "UTF-8", "caf\xC3\xA9"},
        {"caf\xC3\xA9", "utf8", "caf\xC3\xA9"},
        {"bad\xFF", "UTF-8", "bad\xFF"},  // UTF-8 is passed through untouched
        {"caf\xE9", "no-such-charset", "caf\xE9"},
        {"caf\xE9", "", "caf\xE9"},
        {"", "ISO-8859-1", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(CKvToUTF8(c.text, c.charset), c.want) << c.charset;
    EXPECT_EQ(CKvToUTF8("x", nullptr), "x");
    EXPECT_EQ(CKvToUTF8(nullptr, "ISO-8859-1"), "");
}

TEST(CharacterClasses, Unicode) {
    struct Case {
        int c;
        bool space, alpha, digit;
    } cases[] = {
        {' ', true, false, false},       {'\t', true, false, false},
        {'\r', true, false, false},      {'\n', true, false, false},
        {0xA0, true, false, false},      {0x3000, true, false, false},
        {'a', false, true, false},       {0xE9, false, true, false},
        {0x4E00, false, true, false},    {'7', false, false, true},
        {0x0663, false, false, true},    {'/', false, false, false},
        {0x2014, false, false, false},   {-1, false, false, false},
        {0x110000, false, false, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(KvIsWhiteSpace(c.c), c.space) << c.c;
        EXPECT_EQ(KvIsAlpha(c.c), c.alpha) << c.c;
        EXPECT_EQ(KvIsDigit(c.c), c.digit) << c.c;
    }
}

}  // namespace
