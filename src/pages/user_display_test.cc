#include "pages/user_display.h"

#include <gtest/gtest.h>

#include "pages/testing/pages_fixture.h"

namespace {

using pagestest::ResetPageGlobals;
using pagestest::UseCatalogue;

class UserDisplayTest : public pagestest::PagesTest {
  protected:
    std::string Page(const char* document, int readResult = 1) {
        return Capture([&] { UserDisplay(document, readResult); });
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

TEST_F(UserDisplayTest, Buttons) {
    const char* cancel = "<INPUT TYPE=\"BUTTON\" VALUE=\"Cancel\" onClick=\"window.location='";
    const char* close = "<INPUT TYPE=\"BUTTON\" VALUE=\"Close\" onClick=\"window.close();\">\n";
    const char* help =
        "<INPUT TYPE=\"BUTTON\" VALUE=\"Help\" onClick=\"window.open('/h', "
        "'LXRADMINHELP', '', true);\">\n";
    struct Case {
        pagestest::FieldMapInit args;
        const char* returnTo;
        const char* helpUrl;
        pagestest::Catalogue texts;
        std::string buttons;
    } cases[] = {
        {{}, nullptr, nullptr, {}, std::string(cancel) + "';\">\n"},  // no script name
        // An argument without a value goes back without "=".
        {{{"Flag", ""}, {"Mode", "x"}},
         nullptr,
         nullptr,
         {},
         std::string(cancel) + "?Flag&Mode=x';\">\n"},
        {{{"CLOSE", ""}, {"CancelTo", "/c"}}, "/r", "/h", {}, std::string(close) + help},
        {{{"CancelTo", "/c"}}, "/r", nullptr, {}, std::string(cancel) + "/c';\">\n"},
        {{}, "/r", nullptr, {}, std::string(cancel) + "/r';\">\n"},
        // An empty label: the caller's address is still offered, our own is not.
        {{},
         "/r",
         nullptr,
         {{"KV-LXR-12009", ""}},
         "<INPUT TYPE=\"BUTTON\" VALUE=\"\" onClick=\"window.location='/r';\">\n"},
        {{}, nullptr, nullptr, {{"KV-LXR-12009", ""}}, ""},
        {{{"USER", "u"}, {"userdir", "d"}, {"a", "1"}},
         nullptr,
         "/h",
         {},
         std::string(cancel) + "?a=1';\">\n" + help},
    };
    for (const Case& c : cases) {
        ResetPageGlobals();
        UseCatalogue(c.texts);
        for (const auto& arg : c.args) Args[arg.first] = arg.second;
        lxrtest::ScopedEnv returnTo("HTTP_RETURNTO", c.returnTo);
        lxrtest::ScopedEnv helpUrl("HTTP_HELPURL", c.helpUrl);
        std::string page = Page(kEmptyUser);
        const char* row = "</td></tr>\n<tr><td valign=\"middle\" align=\"center\">\n";
        EXPECT_EQ(Between(page, row, "</td></tr>\n</table>\n"), row + c.buttons) << c.buttons;
    }
}

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
        ResetPageGlobals();
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
