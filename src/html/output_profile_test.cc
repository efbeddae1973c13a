#include "html/output_profile.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Writer = std::string (*)(const char*);

// One attack text through each context writer: unchanged by default, and in
// the strict profile without anything that could end its context.
TEST(OutputProfileTest, DefaultKeepsBytesStrictEscapesForTheContext) {
    const char* attack = "x'\"</SCRIPT><b>&";
    struct Case {
        const char* context;
        Writer writer;
        const char* strict;
    };
    const Case cases[] = {
        {"text", OutText, "x'\"&lt;/SCRIPT&gt;&lt;b&gt;&amp;"},
        {"attribute", OutAttr, "x&#39;&quot;&lt;/SCRIPT&gt;&lt;b&gt;&amp;"},
        {"script", OutScript, "x\\'\\\"\\x3C/SCRIPT\\x3E\\x3Cb\\x3E\\x26"},
        // The attribute escaping over the script escaping: the browser gives
        // the script back "x\'\"\x3C..." once it has read the attribute.
        {"handler", OutHandler, "x\\&#39;\\&quot;\\x3C/SCRIPT\\x3E\\x3Cb\\x3E\\x26"},
        {"script html", OutScriptHtml, "x\\'\\\"\\x26lt;/SCRIPT\\x26gt;\\x26lt;b\\x26gt;\\x26amp;"},
        {"url argument", OutUrlArg, "x%27%22%3C%2FSCRIPT%3E%3Cb%3E%26"},
    };
    for (const Case& c : cases) {
        SetStrictOutput(false);
        EXPECT_EQ(c.writer(attack), attack) << c.context;
        EXPECT_EQ(c.writer(nullptr), "") << c.context;
        SetStrictOutput(true);
        EXPECT_EQ(c.writer(attack), c.strict) << c.context;
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
