#include "platform/escape.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Case {
    const char* in;
    const char* want;
};

TEST(EscapeTest, HtmlText) {
    const Case cases[] = {
        {"a<b>&c", "a&lt;b&gt;&amp;c"},
        {"\"quoted\" 'text'", "\"quoted\" 'text'"},
        {"&amp;", "&amp;amp;"},
        {"caf\xc3\xa9", "caf\xc3\xa9"},
        {"", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(HtmlText(c.in), c.want) << c.in;
    EXPECT_EQ(HtmlText(nullptr), "");
}

TEST(EscapeTest, HtmlAttr) {
    const Case cases[] = {
        {"x\" onclick=\"evil()", "x&quot; onclick=&quot;evil()"},
        {"it's", "it&#39;s"},
        {"<&>", "&lt;&amp;&gt;"},
        {"plain", "plain"},
    };
    for (const Case& c : cases) EXPECT_EQ(HtmlAttr(c.in), c.want) << c.in;
    EXPECT_EQ(HtmlAttr(nullptr), "");
}

TEST(EscapeTest, ScriptString) {
    const Case cases[] = {
        {"d'entr\xc3\xa9"
         "e",
         "d\\'entr\xc3\xa9"
         "e"},
        {"say \"hi\"", "say \\\"hi\\\""},
        {"back\\slash", "back\\\\slash"},
        {"</SCRIPT><b>", "\\x3C/SCRIPT\\x3E\\x3Cb\\x3E"},
        {"a&amp;b", "a\\x26amp;b"},
        {"line\nbreak\r\t", "line\\x0Abreak\\x0D\\x09"},
        {"\xe2\x80\xa8|\xe2\x80\xa9|\xe2\x80\x94", "\\u2028|\\u2029|\xe2\x80\x94"},
        {"\xe2", "\xe2"},  // a cut sequence at the end is passed, not overread
        {"", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(ScriptString(c.in), c.want) << c.in;
    EXPECT_EQ(ScriptString(nullptr), "");
}

TEST(EscapeTest, UrlArg) {
    const Case cases[] = {
        {"AZaz09-_.~", "AZaz09-_.~"},
        {"a b&c=d/e?f#g+h%", "a%20b%26c%3Dd%2Fe%3Ff%23g%2Bh%25"},
        {"caf\xc3\xa9", "caf%C3%A9"},
        {"\x01\x7F\xFF", "%01%7F%FF"},
        {"", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(UrlArg(c.in), c.want) << c.in;
    EXPECT_EQ(UrlArg(nullptr), "");
}

}  // namespace
