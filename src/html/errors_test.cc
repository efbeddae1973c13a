#include "html/errors.h"

#include <gtest/gtest.h>

#include <string>

#include "cgi/fields.h"
#include "cgi/response.h"
#include "html/page.h"
#include "html/testing/capture.h"
#include "html/testing/translators.h"

namespace {

class ErrorPageTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ResetRequestState();
        lxrtest::UseDefaultTranslators();
        charsetUsed = "UTF-8";
    }
};

// Everything after the page head, which the page tests cover.
std::string AfterHead(const std::string& page) {
    const std::string end = "</SCRIPT>\n</head>\n\n";
    size_t at = page.find(end);
    return at == std::string::npos ? "<no head in: " + page + ">" : page.substr(at + end.size());
}

TEST_F(ErrorPageTest, DoErrorWithAndWithoutReturnLink) {
    const std::string script =
        "<SCRIPT LANGUAGE=\"JavaScript\">\n<!--\n"
        "      alert(\"Can't \"read\" <user>\");\n"
        "      window.history.back()\n"
        "//-->\n</SCRIPT>\n"
        "<noscript>\n<span align=\"center\">\n"
        "<h1>Can't \"read\" <user></h1><br>\n";
    EXPECT_EQ(lxrtest::CaptureStdout([] { DoError("Can't \"read\" <user>", nullptr); }),
              script + "</span>\n</noscript>\n");
    EXPECT_EQ(lxrtest::CaptureStdout([] { DoError("Can't \"read\" <user>", "/back?x=1"); }),
              script +
                  "<a href=\"/back?x=1\">[KV-LXR-12013] Click here to return.</a>\n"
                  "</span>\n</noscript>\n");
    EXPECT_FALSE(bOutputHTTPHeader);  // a fragment only
    EXPECT_FALSE(bOutputHTMLHeader);
}

TEST_F(ErrorPageTest, DumpXMLEscapesOnlyAngleBrackets) {
    std::string page = lxrtest::CaptureStdout([] { DumpXML("a<b>&c"); });
    EXPECT_EQ(page.rfind("Status: 200 OK\nContent-Type: text/html;charset=UTF-8\n\n<html>\n", 0),
              0u);
    EXPECT_NE(page.find("<title>LXR Administration Service</title>\n"
                        "<meta name=\"Description\" content=\"LXR Administration Service\">\n"),
              std::string::npos);
    EXPECT_EQ(AfterHead(page),
              "<h1>XML Dump</h1>\n<hr><pre>\na&lt;b&gt;&c</pre><hr>\n</body>\n</html>\n");
}

TEST_F(ErrorPageTest, DumpXMLUsesTheStatusKeyWithItsBlank) {
    lxrtest::UseCatalogue({{"KV-LXR-12200 ", "200 D'ACCORD"}, {"KV-LXR-12200", "wrong key"}});
    std::string page = lxrtest::CaptureStdout([] { DumpXML(""); });
    EXPECT_EQ(page.rfind("Status: 200 D'ACCORD\n", 0), 0u);
}

TEST_F(ErrorPageTest, DumpXMLAfterOutputAddsNoSecondHead) {
    std::string page = lxrtest::CaptureStdout([] {
        HTTPHeader("200 OK");
        HTMLHeader("KV-LXR-12060", "a", "KV-LXR-12060", "b", false);
        DumpXML("<x/>");
    });
    EXPECT_EQ(page.find("Status:", 1), std::string::npos);
    EXPECT_EQ(page.find("<html>\n", page.find("<html>\n") + 1), std::string::npos);
    EXPECT_EQ(AfterHead(page),
              "<h1>XML Dump</h1>\n<hr><pre>\n&lt;x/&gt;</pre><hr>\n</body>\n</html>\n");
}

TEST_F(ErrorPageTest, InvalidXMLShowsDocumentAndWhereReadingStopped) {
    struct Case {
        const char* xml;
        size_t stop;  // offset of the error position
        const char* tail;
    };
    const Case cases[] = {
        {"<User name=\"a\"><Bad/></User>", 15, "&lt;Bad/&gt;&lt;/User&gt;"},
        {"<User>", 6, ""},  // stopped at the end: an empty second block
        {"a&b", 0, "a&b"},
    };
    for (const Case& c : cases) {
        bOutputHTTPHeader = false;
        bOutputHTMLHeader = false;
        std::string page = lxrtest::CaptureStdout([&] { InvalidXML(c.xml, c.xml + c.stop); });
        EXPECT_EQ(page.rfind("Status: 503 SERVICE UNAVAILABLE\n", 0), 0u) << c.xml;
        std::string shown;
        for (const char* p = c.xml; *p; ++p) {
            shown += *p == '<' ? "&lt;" : *p == '>' ? "&gt;" : std::string(1, *p);
        }
        EXPECT_EQ(AfterHead(page), "<h1>XML Parse Error</h1>\n<hr><pre>\n" + shown +
                                       "</pre><hr><pre>\n" + c.tail +
                                       "</pre><hr>\n</body>\n</html>\n")
            << c.xml;
        // The message itself is not shown.
        EXPECT_EQ(page.find("Invalid data from LXR API."), std::string::npos);
    }
}

TEST_F(ErrorPageTest, InvalidXMLRedirectsWhenTheMessageIsAURL) {
    lxrtest::UseCatalogue({{"KV-LXR-15000", "/errors/bad.html"}});
    std::string page = lxrtest::CaptureStdout([] { InvalidXML("<x", "<x"); });
    EXPECT_EQ(page,
              "Status: 302 Moved Temporarily\n"
              "Content-Type: text/html;charset=UTF-8\n"
              "Expires: Mon, 10 Apr 2000 00:00:01 GMT\n"
              "Location: /errors/bad.html\n\n");
    EXPECT_FALSE(bOutputHTTPHeader);
    EXPECT_FALSE(bOutputHTMLHeader);
}

TEST_F(ErrorPageTest, InvalidXMLWithoutTranslatorsUsesDefaults) {
    Lang = nullptr;
    LangWithID = nullptr;
    std::string page = lxrtest::CaptureStdout([] { InvalidXML("<x", nullptr); });
    EXPECT_EQ(page.rfind("Status: 503 SERVICE UNAVAILABLE\n", 0), 0u);
    EXPECT_NE(page.find("&lt;x</pre><hr><pre>\n</pre><hr>\n"), std::string::npos);
}

}  // namespace
