#include "cgi/fields.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/capture.h"

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs ToPairs(const FieldMap& map) {
    return Pairs(map.begin(), map.end());
}

TEST(URLDecodeTest, Table) {
    struct Case {
        const char* in;
        std::string want;
    };
    const Case cases[] = {
        {"a+b%20c", "a b c"},
        {"%zz", "zz"},  // not an escape: "%" dropped, both kept
        {"%4z", "@"},   // second non-digit consumed, adds nothing
        {"%4zq", "@q"},
        {"%e9", "\xe9"},
        {"%E9", "\xe9"},
        {"%C3%A9", "\xc3\xa9"},  // escaped UTF-8, byte by byte
        {"%", ""},               // lone "%" at the end
        {"ab%", "ab"},
        {"%4", "@"},      // text ends after a valid first digit
        {"%%41", "%41"},  // the second "%" is kept as is
        {"%+", "+"},      // the kept character is not decoded again
        {"%g1", "g1"},
        {"%00x", std::string("\0x", 2)},  // any byte, NUL included
        {"\xe9t\xe9", "\xe9t\xe9"},       // raw bytes pass
        {"", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(URLDecode(c.in), c.want) << "input: " << c.in;
    EXPECT_EQ(URLDecode(nullptr), "");
}

TEST(URLEncodeTest, Table) {
    struct Case {
        const char* in;
        std::string want;
    };
    const Case cases[] = {
        {"a b/\xc3\xa9", "a+b%2F%e9"},
        {"AZaz09", "AZaz09"},
        {"-_.~=&%+", "%2D%5F%2E%7E%3D%26%25%2B"},
        {"\t\r\n", "+++"},
        {"\xc2\x80", "%80"},             // U+0080, lowest of the lower-case range
        {"\xc3\xb7", "%f7"},             // U+00F7 (247), highest of it
        {"\xc2\xa0", "%a0"},             // NBSP is in the range, not white space
        {"\xc3\xb8", "\xf8"},            // U+00F8 (248): a letter, one byte
        {"\xce\xa9", "\xa9"},            // U+03A9: a letter cut to its low byte
        {"\xd9\xa3", "c"},               // U+0663 ARABIC-INDIC THREE: digit, 0x63
        {"\xe2\x80\x94", "%2014"},       // U+2014: at least two upper-case digits
        {"\xe3\x80\x80", "+"},           // U+3000 ideographic space
        {"\xf0\x9f\x98\x80", "%1F600"},  // U+1F600
        {"\x01", "%01"},
        {"\xe9", "%e9"},   // a stray byte walks on as its own value
        {"\xff", "\xff"},  // ... 0xFF reads as U+00FF, a letter
        {"", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(URLEncode(c.in), c.want) << "input: " << c.in;
    EXPECT_EQ(URLEncode(nullptr), "");
}

TEST(AddToFieldsTest, Table) {
    struct Case {
        std::string data;
        bool decode;
        Pairs want;
    };
    const std::string longName255 = "ISO-8859-1" + std::string(245, 'X');
    const std::string longName265 = "ISO-8859-1" + std::string(255, 'X');
    const Case cases[] = {
        {"a=1&&b=2", true, {{"a", "1"}, {"b", "2"}}},
        {"&&a=1&", true, {{"a", "1"}}},
        {"Name=x&name=y", true, {{"Name", "y"}}},  // one key, last value wins
        {" user name =v", true, {{"username", "v"}}},
        {"\tx\t=1", false, {{"x", "1"}}},
        {"flag", true, {{"flag", ""}}},
        {"a+b%41=1", true, {{"a+b%41", "1"}}},  // names are not decoded
        {"a=b=c", true, {{"a", "b=c"}}},        // only the first "=" splits
        {"=v", true, {{"", "v"}}},
        {"a=b%20c+d", false, {{"a", "b%20c+d"}}},
        {"a=b%20c+d", true, {{"a", "b c d"}}},
        {"b=2&a=1&C=3", true, {{"a", "1"}, {"b", "2"}, {"C", "3"}}},  // case-blind order
        // A posted character set converts every value, LXRENC's own included.
        {"LXRENC=ISO-8859-1&n=%E9", true, {{"LXRENC", "ISO-8859-1"}, {"n", "\xc3\xa9"}}},
        {"LXRENC=ISO-8859-1&n=\xe9", false, {{"LXRENC", "ISO-8859-1"}, {"n", "\xc3\xa9"}}},
        {"n=%E9&LXRENC=ISO-8859-1&", true, {{"LXRENC", "ISO-8859-1"}, {"n", "\xc3\xa9"}}},
        // ... but only when an "&" follows its name.
        {"n=%E9&LXRENC=ISO-8859-1", true, {{"LXRENC", "ISO-8859-1"}, {"n", "\xe9"}}},
        {"n=%E9&LXRENC", true, {{"LXRENC", ""}, {"n", "\xe9"}}},
        {"n=%E9&LXRENC=", true, {{"LXRENC", ""}, {"n", "\xe9"}}},
        {"LXRENC=NO-SUCH-SET&n=%E9", true, {{"LXRENC", "NO-SUCH-SET"}, {"n", "\xe9"}}},
        {"LXRENC=UTF-8&n=%C3%A9", true, {{"LXRENC", "UTF-8"}, {"n", "\xc3\xa9"}}},
        // The name's length counts modulo 255: 255 bytes leave no name at all,
        // 265 bytes leave its first ten, "ISO-8859-1".
        {"LXRENC=" + longName255 + "&n=%E9", true, {{"LXRENC", longName255}, {"n", "\xe9"}}},
        {"LXRENC=" + longName265 + "&n=%E9", true, {{"LXRENC", longName265}, {"n", "\xc3\xa9"}}},
        {"", true, {}},
    };
    for (const Case& c : cases) {
        FieldMap fields;
        std::string buffer = c.data;
        addToFields(fields, &buffer[0], c.decode);
        EXPECT_EQ(ToPairs(fields), c.want) << "data: " << c.data << " decode: " << c.decode;
    }
}

TEST(AddToFieldsTest, CutsSeparatorsAndRestoresEquals) {
    FieldMap fields;
    std::string buffer = "&a=1&&b=2";
    addToFields(fields, &buffer[0], true);
    // Only the "&"s that end a piece are cut; a piece's "=" is put back.
    EXPECT_EQ(buffer, std::string("&a=1\0&b=2", 9));
}

TEST(ParseQueryStringTest, Table) {
    struct Case {
        const char* query;
        Pairs want;
    };
    const Case cases[] = {
        {"a=b=c", {{"a", "bc"}}},  // further "=" dropped
        {"x=1&y", {{"x", "1"}, {"y", ""}}},
        {"a=%41+b", {{"a", "A b"}}},
        {"a%41=1", {{"a%41", "1"}}},  // names are not decoded
        {"&=v&", {{"", "v"}}},        // empty names are stored at "&"
        {"=v", {}},                   // ... but not at the end
        {"a=1&A=2", {{"a", "2"}}},
        {"LXRAdminARGS=a%3D1%26b%3D2&x=3",
         {{"a", "1"}, {"b", "2"}, {"LXRAdminARGS", "a=1&b=2"}, {"x", "3"}}},
        // The last pair is never expanded.
        {"LXRAdminARGS=a%3D1%26b%3D2", {{"LXRAdminARGS", "a=1&b=2"}}},
        {"lxradminargs=a%3D1&", {{"a", "1"}, {"lxradminargs", "a=1"}}},
        // Expansion nests: the inner pair ends in "&" as well.
        {"LXRAdminARGS=LXRAdminARGS%3Dc%253D3%2526%26&", {{"c", "3"}, {"LXRAdminARGS", "c=3&"}}},
        {"", {}},
    };
    for (const Case& c : cases) {
        Args.clear();
        ParseQueryString(c.query);
        EXPECT_EQ(ToPairs(Args), c.want) << "query: " << c.query;
    }
    Args.clear();
    ParseQueryString(nullptr);
    EXPECT_TRUE(Args.empty());
}

TEST(GetFieldsTest, Table) {
    struct Case {
        const char* name;
        const char* httpLength;
        const char* length;
        const char* httpType;
        const char* type;
        std::string body;
        Pairs want;
    };
    const char* form = "application/x-www-form-urlencoded";
    const Case cases[] = {
        {"plain", nullptr, "7", nullptr, form, "a=1&b=2", {{"a", "1"}, {"b", "2"}}},
        {"HTTP_ length wins", "3", "7", nullptr, form, "a=1&b=2", {{"a", "1"}}},
        {"empty HTTP_ length", "", "7", nullptr, form, "a=1&b=2", {{"a", "1"}, {"b", "2"}}},
        {"no length", nullptr, nullptr, nullptr, form, "a=1", {}},
        {"shorter body", nullptr, "9999", nullptr, form, "a=1", {{"a", "1"}}},
        {"negative length", nullptr, "-5", nullptr, form, "a=1", {}},
        {"non-numeric length", nullptr, "abc", nullptr, form, "a=1", {}},
        {"digits then junk", nullptr, "3xyz", nullptr, form, "a=1&b=2", {{"a", "1"}}},
        {"absurd length", nullptr, "99999999999999999999999", nullptr, form, "a=1", {{"a", "1"}}},
        {"decoded", nullptr, "5", nullptr, form, "a=%41", {{"a", "A"}}},
        {"type any case",
         nullptr,
         "5",
         nullptr,
         "Application/X-WWW-Form-URLEncoded",
         "a=%41",
         {{"a", "A"}}},
        {"type with parameters",
         nullptr,
         "5",
         nullptr,
         "application/x-www-form-urlencoded; "
         "charset=UTF-8",
         "a=%41",
         {{"a", "%41"}}},
        {"HTTP_ type wins", nullptr, "5", "text/plain", form, "a=%41", {{"a", "%41"}}},
        {"empty HTTP_ type", nullptr, "5", "", form, "a=%41", {{"a", "A"}}},
        {"no type", nullptr, "5", nullptr, nullptr, "a=%41", {{"a", "%41"}}},
    };
    for (const Case& c : cases) {
        lxrtest::ScopedEnv e1("HTTP_CONTENT_LENGTH", c.httpLength);
        lxrtest::ScopedEnv e2("CONTENT_LENGTH", c.length);
        lxrtest::ScopedEnv e3("HTTP_CONTENT_TYPE", c.httpType);
        lxrtest::ScopedEnv e4("CONTENT_TYPE", c.type);
        lxrtest::ScopedStdin in(c.body);
        ASSERT_TRUE(in.ok());
        PostData.clear();
        GetFields();
        EXPECT_EQ(ToPairs(PostData), c.want) << c.name;
    }
}

TEST(GetFieldsTest, BodyIsCutAtTheCap) {
    lxrtest::ScopedEnv length("CONTENT_LENGTH", "4194304");
    lxrtest::ScopedEnv httpLength("HTTP_CONTENT_LENGTH", nullptr);
    lxrtest::ScopedEnv type("CONTENT_TYPE", nullptr);
    lxrtest::ScopedEnv httpType("HTTP_CONTENT_TYPE", nullptr);
    lxrtest::ScopedStdin in("v=" + std::string(kMaxBodyLength + 100, 'x'));
    PostData.clear();
    GetFields();
    EXPECT_EQ(PostData["v"].size(), static_cast<size_t>(kMaxBodyLength - 2));
}

}  // namespace
