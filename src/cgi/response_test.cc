#include "cgi/response.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cgi/fields.h"
#include "platform/text.h"
#include "support/capture.h"

namespace {

using Strings = std::vector<std::string>;

TEST(SortAcceptHeaderTest, Table) {
    struct Case {
        std::string header;
        Strings want;
    };
    const Case cases[] = {
        {"a;q=0.5,b,c;q=0.5,d;q=0,e;", {"b", "a", "c"}},
        {"x;q=1.5", {}},        // above 1000
        {"x;q=0.0005", {}},     // truncates to 0
        {"x;q=1.0005", {"x"}},  // 1000.5 truncates to 1000
        {"a, b", {"a", " b"}},  // entries are not trimmed
        {"a,b,", {"a", "b"}},   // a trailing comma ends the list
        {"a,,b", {"a", "", "b"}},
        {"a;level,b", {"b"}},                          // a parameter without "="
        {"a;x=0.2,b;level=0.9", {"b", "a"}},           // any name counts as the quality
        {"a;q=0.2;x=1,b;q=0.3", {"b", "a"}},           // the first "=" after ";" is read
        {"a;q=0.7,b;q=0.9,a;q=0.7", {"b", "a", "a"}},  // duplicates kept
        {"a;q=-0.5,b;q=-3", {}},
        {"a;q=abc,b", {"b"}},  // atof gives 0
        {"a;q=1e300,b;q=nan,c;q=inf,d", {"d"}},
        {"ISO-8859-5, ISO-8859-1;q=0.9", {"ISO-8859-5", " ISO-8859-1"}},
    };
    for (const Case& c : cases) {
        std::string header = c.header;
        Strings got;
        EXPECT_EQ(SortAcceptHeader(header, got), 1) << c.header;
        EXPECT_EQ(got, c.want) << c.header;
    }
}

TEST(SetCharSetTest, Table) {
    struct Case {
        const char* accept;
        const char* want;
    };
    const Case cases[] = {
        {nullptr, "UTF-8"},
        {"iso-8859-1,utf-8;q=0.7,*;q=0.7", "UTF-8"},
        {"utf-8;q=0", "UTF-8"},  // named at all is enough
        {"iso-8859-5, iso-8859-1;q=0.9", "ISO-8859-5"},
        {"iso-8859-5;q=0.5, iso-8859-1", " ISO-8859-1"},  // untrimmed, as sorted
        {"iso-8859-1;q=0", "UTF-8"},                      // nothing left
        {"", "UTF-8"},
    };
    for (const Case& c : cases) {
        lxrtest::ScopedEnv env("HTTP_ACCEPT_CHARSET", c.accept);
        charsetUsed.clear();
        SetCharSet();
        EXPECT_EQ(charsetUsed, c.want) << (c.accept ? c.accept : "(unset)");
    }
}

TEST(HTTPHeaderTest, WritesOnce) {
    bOutputHTTPHeader = false;
    charsetUsed = "ISO-8859-1";
    std::string out = lxrtest::CaptureStdout([] {
        HTTPHeader("200 OK");
        HTTPHeader("503 SERVICE UNAVAILABLE");
    });
    EXPECT_EQ(out, "Status: 200 OK\nContent-Type: text/html;charset=ISO-8859-1\n\n");
    EXPECT_TRUE(bOutputHTTPHeader);
}

// The target a redirect sends, read from its Location line.
std::string LocationOf(const char* url, const char* query, bool encode) {
    std::string out = lxrtest::CaptureStdout([&] { Redirect(url, query, encode); });
    const std::string tag = "Location: ";
    size_t at = out.find(tag);
    if (at == std::string::npos || out.size() < 2 || out.compare(out.size() - 2, 2, "\n\n") != 0)
        return "<malformed: " + out + ">";
    return out.substr(at + tag.size(), out.size() - 2 - at - tag.size());
}

TEST(RedirectTest, Table) {
    struct Case {
        const char* url;
        const char* query;
        bool encode;
        std::string want;
    };
    const Case cases[] = {
        {"/p/<USER>/q", nullptr, true, "/p/a+b/q"},     // closed macro: encoded
        {"/p/<user>/q", nullptr, true, "/p/a+b/q"},     // names ignore case
        {"/p/<NOPE>/q", nullptr, true, "/p/<NOPE>/q"},  // unknown: left as written
        {"/p/<USER", nullptr, true, "/p/a b"},          // unclosed: raw value
        {"/p/<NOPE", nullptr, true, "/p/"},             // unclosed unknown: empty
        {"/p/<", nullptr, true, "/p/"},                 // unclosed, no name
        {"/p/<>", nullptr, true, "/p/<>"},              // empty name, not in Args
        {"/<DIR><USER>", nullptr, true, "/o%2Fu%3Dxa+b"},
        {"/x", "b=2 c", true, "/x?b%3D2+c"},
        {"/x", "b=2 c", false, "/x?b=2 c"},
        {"/x?a", "b", true, "/x?a&b"},
        {"/x", "", true, "/x"},
        {nullptr, "q", false, "?q"},
    };
    for (const Case& c : cases) {
        Args.clear();
        Args["User"] = "a b";
        Args["DIR"] = "o/u=x";
        EXPECT_EQ(LocationOf(c.url, c.query, c.encode), c.want) << (c.url ? c.url : "(null)");
    }
}

TEST(RedirectTest, UnclosedMacroEntersItsNameIntoArgs) {
    Args.clear();
    LocationOf("/p/<NOPE", nullptr, false);
    EXPECT_EQ(Args.count("nope"), 1u);
    Args.clear();
    LocationOf("/p/<NOPE>", nullptr, false);
    EXPECT_EQ(Args.count("nope"), 0u);
}

// The header block of `out` (up to the first blank line) as its lines; a
// control character anywhere in it makes the result empty.
Strings HeaderLines(const std::string& out) {
    size_t end = out.find("\n\n");
    if (end == std::string::npos) return {};
    Strings lines;
    std::string line;
    for (char c : out.substr(0, end + 1)) {
        if (c == '\n') {
            lines.push_back(line);
            line.clear();
        } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
            return {};
        } else {
            line += c;
        }
    }
    return lines;
}

// A decoded argument, a catalogue text or an accept header may hold CR, LF or
// another control character; none of them may end a header line early.
TEST(HeaderValueTest, NoControlCharacterReachesAHeaderLine) {
    // The unclosed macro takes its value raw; LXRAdminARGS decodes twice, so
    // "%250d%250a" arrives as CR LF.
    Args.clear();
    ParseQueryString("LXRAdminARGS=X%3D%250d%250aSet-Cookie%3A%2520a%26&");
    ASSERT_EQ(Args["X"], "\r\nSet-Cookie: a");
    charsetUsed = "UTF-8\nX-Evil: 1";
    Strings lines = HeaderLines(lxrtest::CaptureStdout([] { Redirect("/p/<X", nullptr, false); }));
    EXPECT_EQ(
        lines,
        (Strings{"Status: 302 Moved Temporarily", "Content-Type: text/html;charset=UTF-8X-Evil: 1",
                 "Expires: Mon, 10 Apr 2000 00:00:01 GMT", "Location: /p/Set-Cookie: a"}));

    bOutputHTTPHeader = false;
    lines =
        HeaderLines(lxrtest::CaptureStdout([] { HTTPHeader("200 OK\r\nSet-Cookie: a=b\t\x7f"); }));
    EXPECT_EQ(lines, (Strings{"Status: 200 OKSet-Cookie: a=b",
                              "Content-Type: text/html;charset=UTF-8X-Evil: 1"}));
    charsetUsed = "UTF-8";
    Args.clear();
}

TEST(IsURLTest, Table) {
    struct Case {
        const char* text;
        bool want;
    };
    const Case cases[] = {
        {nullptr, false},           {"", false},        {"/", true},
        {"/errors/bad.html", true}, {"http:", true},    {"https://x", true},
        {"HTTP://x", false},        {"ftp://x", false}, {"[KV-LXR-15000] /x", false},
    };
    for (const Case& c : cases) EXPECT_EQ(IsURL(c.text), c.want) << (c.text ? c.text : "(null)");
}

}  // namespace
