#include "pages/user_selection.h"

#include <gtest/gtest.h>

#include "pages/testing/pages_fixture.h"

namespace {

using pagestest::ResetPageGlobals;
using pagestest::UseCatalogue;

class UserSelectionTest : public pagestest::PagesTest {
  protected:
    std::string Page(const char* document) {
        return Capture([&] { UserSelection(document); });
    }
    // The page's own form, "<FORM" to "</FORM>\n" inclusive.
    static std::string Form(const std::string& page) {
        size_t from = page.find("<FORM METHOD=\"GET\">");
        size_t to = page.find("</FORM>\n");
        if (from == std::string::npos || to == std::string::npos) return "(no form)";
        return page.substr(from, to + 8 - from);
    }
};

constexpr const char* kOne =
    "<UserDirectories><UserDirectory name=\"Main\">dir:main</UserDirectory></UserDirectories>";
constexpr const char* kThree =
    "<?xml version=\"1.0\"?>\n<UserDirectories>\n"
    "  <UserDirectory name=\"people\">ou=people</UserDirectory>\n"
    "  <UserDirectory name=\"#hidden\">ou=hidden</UserDirectory>\n"
    "  <UserDirectory name=\"Admins\">ou=admins</UserDirectory>\n"
    "  <UserDirectory name=\"Partners\">#ou=partners</UserDirectory>\n"
    "  <UserDirectory name=\"abc\">ab=xyz</UserDirectory>\n"
    "</UserDirectories>\n";

TEST_F(UserSelectionTest, DirectoryFilter) {
    // The filter is the DIR argument in any case; the reader tests cover its rules.
    Args["dir"] = "ou=";
    EXPECT_NE(Form(Page(kThree))
                  .find("size=\"1\">\n<option value=\"ou=admins\">Admins\n"
                        "<option value=\"ou=people\">people\n</select>"),
              std::string::npos);
    ResetPageGlobals();
    Args["DIR"] = "ADMINS";
    EXPECT_NE(Page(kThree).find("<INPUT TYPE=\"HIDDEN\" NAME=\"USERDIR\" VALUE=\"ou=admins\">"),
              std::string::npos);
}

TEST_F(UserSelectionTest, Buttons) {
    const char* submit = "<INPUT TYPE=\"SUBMIT\" VALUE=\"Submit\">\n";
    const char* reset = "<INPUT TYPE=\"RESET\" VALUE=\"Reset\">\n";
    struct Case {
        const char* cancelTo;  // the CancelTo argument, null for none
        const char* returnTo;
        const char* help;
        pagestest::Catalogue texts;
        std::string buttons;
    } cases[] = {
        {nullptr, nullptr, nullptr, {}, std::string(submit) + reset},
        {nullptr, "", "", {}, std::string(submit) + reset},  // empty variables count as unset
        {nullptr,
         "/from",
         nullptr,
         {},
         std::string(submit) + reset +
             "<INPUT TYPE=\"BUTTON\" VALUE=\"Cancel\" onClick=\"window.location='/from';\">\n"},
        {"/arg",
         "/from",
         nullptr,
         {},
         std::string(submit) + reset +
             "<INPUT TYPE=\"BUTTON\" VALUE=\"Cancel\" onClick=\"window.location='/arg';\">\n"},
        {"",
         nullptr,
         "/help.html",
         {},
         std::string(submit) + reset +
             "<INPUT TYPE=\"BUTTON\" VALUE=\"Cancel\" onClick=\"window.location='';\">\n"
             "<INPUT TYPE=\"BUTTON\" VALUE=\"Help\" onClick=\"window.open('/help.html', "
             "'LXRADMINHELP', '', true);\">\n"},
        // An empty Reset label removes the button; an empty Cancel label does not.
        {nullptr,
         "/from",
         nullptr,
         {{"KV-LXR-12004", ""}, {"KV-LXR-12005", ""}},
         std::string(submit) +
             "<INPUT TYPE=\"BUTTON\" VALUE=\"\" onClick=\"window.location='/from';\">\n"},
    };
    for (const Case& c : cases) {
        ResetPageGlobals();
        UseCatalogue(c.texts);
        if (c.cancelTo) Args["CancelTo"] = c.cancelTo;
        lxrtest::ScopedEnv returnTo("HTTP_RETURNTO", c.returnTo);
        lxrtest::ScopedEnv help("HTTP_HELPURL", c.help);
        std::string form = Form(Page(kOne));
        std::string expected = "<tr><td colspan=\"2\" valign=\"middle\" align=\"center\">\n" +
                               c.buttons + "</td></tr>\n</table>\n";
        EXPECT_NE(form.find(expected), std::string::npos) << expected << "\n---\n" << form;
    }
}

TEST_F(UserSelectionTest, NoDirectoriesIsAnError) {
    const char* documents[] = {
        "<UserDirectories></UserDirectories>",
        "<UserDirectories><UserDirectory name=\"#a\">b</UserDirectory></UserDirectories>",
    };
    for (const char* document : documents) {
        ResetPageGlobals();
        std::string page = Page(document);
        EXPECT_EQ(page.rfind("Status: 503 SERVICE UNAVAILABLE\n", 0), 0u) << page;
        EXPECT_NE(page.find("alert(\"[KV-LXR-15001] No User Directories are available.\");"),
                  std::string::npos)
            << page;
        EXPECT_EQ(page.find("<FORM"), std::string::npos);
    }
    ResetPageGlobals();
    Args["DIR"] = "nothing";
    EXPECT_NE(Page(kOne).find("Status: 503"), std::string::npos);

    ResetPageGlobals();
    UseCatalogue({{"KV-LXR-15001", "/nodirs.html"}});
    std::string page = Page(documents[0]);
    EXPECT_EQ(page.rfind("Status: 302 Moved Temporarily\n", 0), 0u) << page;
    EXPECT_NE(page.find("Location: /nodirs.html\n\n"), std::string::npos) << page;
    EXPECT_EQ(page.find("<html>"), std::string::npos);
}

TEST_F(UserSelectionTest, MalformedListStopsAtTheFault) {
    const char* bad = "<UserDirectories><UserDirectory name=\"a\" >x</UserDirectory>";
    std::string page = Page(bad);
    EXPECT_EQ(page.rfind("Status: 503 SERVICE UNAVAILABLE\n", 0), 0u) << page;
    EXPECT_NE(page.find("<h1>XML Parse Error</h1>"), std::string::npos) << page;
    EXPECT_NE(page.find("</pre><hr><pre>\n &gt;x&lt;/UserDirectory&gt;</pre><hr>\n"),
              std::string::npos)
        << page;
    EXPECT_EQ(page.find("<FORM"), std::string::npos);
}

}  // namespace
