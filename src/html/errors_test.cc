#include "html/errors.h"

#include <gtest/gtest.h>

#include <string>

#include "cgi/fields.h"
#include "cgi/response.h"
#include "html/page.h"
#include "i18n/language.h"
#include "support/request_reset.h"
#include "support/translators.h"

namespace {

class ErrorPageTest : public lxrtest::RequestTest {};

// Everything after the page head, which the page tests cover.
std::string AfterHead(const std::string& page) {
    const std::string end = "</SCRIPT>\n</head>\n\n";
    size_t at = page.find(end);
    return at == std::string::npos ? "<no head in: " + page + ">" : page.substr(at + end.size());
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
