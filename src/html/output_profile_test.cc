#include "html/output_profile.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Writer = std::string (*)(const char*);

// The default profile must leave every byte as it is; the strict one must
// escape for each context, and for the two that combine escapings apply them
// in the order the browser undoes them (attribute first, then script;
// script, then markup).
TEST(OutputProfileTest, DefaultKeepsBytesStrictEscapesEveryContext) {
    const char* attack = "x'\"</SCRIPT><b>&";
    const struct {
        Writer writer;
        const char* strict;
    } cases[] = {
        {OutText, "x'\"&lt;/SCRIPT&gt;&lt;b&gt;&amp;"},
        {OutAttr, "x&#39;&quot;&lt;/SCRIPT&gt;&lt;b&gt;&amp;"},
        {OutScript, "x\\'\\\"\\x3C/SCRIPT\\x3E\\x3Cb\\x3E\\x26"},
        // The browser gives the script back "x\'\"\x3C..." once it has read
        // the attribute.
        {OutHandler, "x\\&#39;\\&quot;\\x3C/SCRIPT\\x3E\\x3Cb\\x3E\\x26"},
        // LogEntry writes the string into the document: markup must arrive as
        // entities.
        {OutScriptHtml, "x\\'\\\"\\x26lt;/SCRIPT\\x26gt;\\x26lt;b\\x26gt;\\x26amp;"},
        {OutUrlArg, "x%27%22%3C%2FSCRIPT%3E%3Cb%3E%26"},
    };
    for (const auto& c : cases) {
        SetStrictOutput(false);
        EXPECT_EQ(c.writer(attack), attack);
        EXPECT_EQ(c.writer(nullptr), "");
        SetStrictOutput(true);
        EXPECT_EQ(c.writer(attack), c.strict);
    }
    SetStrictOutput(false);
}

TEST(OutputProfileTest, StrictAddressesAreRelativeOrHttp) {
    struct Case {
        const char* address;
        bool kept;
    };
    const Case cases[] = {
        {"/cgi-bin/LXRAdmin?USER=a", true},
        {"../portal/home.html", true},
        {"?x=1", true},
        {"http://portal.example.org/", true},
        {"HTTPS://portal.example.org/", true},
        {"portal/a:b", true},  // the ":" comes after a "/": a path, not a scheme
        {"javascript:alert(1)", false},
        {"JavaScript:alert(1)", false},
        {"data:text/html,<script>", false},
        {"vbscript:x", false},
        {" javascript:alert(1)", false},   // browsers skip the blank
        {"java\nscript:alert(1)", false},  // and drop the line end
        {"java\tscript:alert(1)", false},
        {"http://x/\r\nSet-Cookie: a", false},
        {"", true},
    };
    SetStrictOutput(true);
    for (const Case& c : cases) {
        EXPECT_EQ(OutAddress(c.address), c.kept ? c.address : "") << c.address;
    }
    SetStrictOutput(false);
    EXPECT_EQ(OutAddress("javascript:alert(1)"), "javascript:alert(1)");
}

}  // namespace
