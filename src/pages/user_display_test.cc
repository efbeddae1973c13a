#include "pages/user_display.h"

#include <gtest/gtest.h>

#include "cgi/fields.h"
#include "support/request_reset.h"
#include "support/translators.h"

namespace {

using lxrtest::UseCatalogue;

class UserDisplayTest : public lxrtest::RequestTest {
  protected:
    std::string Page(const char* document, int readResult = 1) {
        return lxrtest::CaptureStdout([&] { UserDisplay(document, readResult); });
    }
    // From `from` up to (not including) `to`, both searched in order.
    static std::string Between(const std::string& page, const char* from, const char* to) {
        size_t a = page.find(from);
        if (a == std::string::npos) return "(no start)";
        size_t b = page.find(to, a);
        if (b == std::string::npos) return "(no end)";
        return page.substr(a, b - a);
    }
};

constexpr const char* kEmptyUser = "<User name=\"cn=a, o=b\">\n</User>\n";

// The 503 page with the rows after it is a whole-program case; a catalogue
// text that is an address sends the browser there instead.
TEST_F(UserDisplayTest, NothingToShowMayRedirect) {
    UseCatalogue({{"KV-LXR-15002", "http://x/none"}});
    std::string page = Page(kEmptyUser, 0);
    EXPECT_EQ(page.rfind("Status: 302 Moved Temporarily\n", 0), 0u) << page;
    EXPECT_NE(page.find("Location: http://x/none\n\n"), std::string::npos);
}

TEST_F(UserDisplayTest, FaultsFollowTheRowsWrittenBeforeThem) {
    struct Case {
        const char* document;
        const char* rest;  // escaped text from the fault on
        bool rowBefore;    // the section row comes before the error
    } cases[] = {
        {"no root here", "", false},
        {"<User name=\"\">", "&gt;", false},
        {"<User name=\"u\"><Section prompt=\"S\"><Section></Section></User>",
         "&lt;Section&gt;&lt;/Section&gt;&lt;/User&gt;", true},
        {"<User name=\"u\"><Section prompt=\"S\"><Group read=\"maybe\"/></User>",
         "maybe\"/&gt;&lt;/User&gt;", true},
        {"<User name=\"u\"><Section prompt=\"S\"></User>", "&lt;/User&gt;", true},
        {"<User name=\"u\"><Section prompt=\"S\"></Section></User>trailing", "trailing", true},
    };
    for (const Case& c : cases) {
        StartRequest();
        std::string page = Page(c.document);
        EXPECT_EQ(page.rfind("Status: 200 OK\n", 0), 0u) << c.document;
        size_t form = page.find("<FORM METHOD=\"POST\" NAME=\"DisplayForm\"");
        size_t row = page.find("<span class=\"SECTION\">S</span>");
        size_t error = page.find("<h1>XML Parse Error</h1>");
        ASSERT_NE(form, std::string::npos) << c.document;
        ASSERT_NE(error, std::string::npos) << c.document;
        EXPECT_LT(form, error) << c.document;
        EXPECT_EQ(row != std::string::npos, c.rowBefore) << c.document;
        if (c.rowBefore) {
            EXPECT_LT(row, error) << c.document;
        }
        EXPECT_NE(page.find(std::string("</pre><hr><pre>\n") + c.rest + "</pre><hr>\n", error),
                  std::string::npos)
            << c.document << "\n"
            << page.substr(error);
        EXPECT_EQ(page.find("function SubmitForm()"), std::string::npos) << c.document;
    }
}

}  // namespace
