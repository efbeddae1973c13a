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

TEST_F(UserDisplayTest, UserWithoutRows) {
    lxrtest::ScopedEnv script("SCRIPT_NAME", "/cgi-bin/LXRAdmin");
    Args["USER"] = "a";
    Args["USERDIR"] = "b";
    Args["Mode"] = "x";
    Args["Flag"] = "";
    std::string page = Page(kEmptyUser);
    EXPECT_EQ(page.rfind("Status: 200 OK\nContent-Type: text/html;charset=UTF-8\n\n<html>", 0), 0u);
    // Everything from the form to the focus script is this page's own.
    EXPECT_EQ(Between(page, "<FORM",
                      "\n<!-- ****************************************"
                      "********************** -->\n<!-- * Set the focus"),
              R"(<FORM METHOD="POST" NAME="DisplayForm" OnSubmit="return SubmitForm();">
<table width="100%" height="75%"><tr><td valign="middle" align="center">
<table class="DIALOGBOX">
<tr><td class="TITLEBOX">
<span class="TITLE">User Information</span>
</td></tr>
<tr><td><table class="DISPLAYINNERBOX">
</table>
</td></tr>
<tr><td valign="middle" align="center">
<INPUT TYPE="BUTTON" VALUE="Cancel" onClick="window.location='/cgi-bin/LXRAdmin?Flag&Mode=x';">
</td></tr>
</table>
</td></tr></table>
</FORM> <!-- DisplayForm -->

<!-- ************************************************************** -->
<!-- * function to handle DisplayForm.OnSubmit                    * -->
<!-- ************************************************************** -->

<SCRIPT LANGUAGE="JavaScript">
<!--
function SubmitForm()
{
    // Perform any required data edits


    // Move data from the DisplayForm to the PostForm

    document.PostForm.submit();

    return false; // We NEVER post DisplayForm
}
//-->
</SCRIPT>
)");
    EXPECT_EQ(page.find("PostForm\">"), std::string::npos);
    EXPECT_EQ(page.substr(page.size() - 16), "</body>\n</html>\n");
}

TEST_F(UserDisplayTest, DisabledReasonsRow) {
    std::string page = Page("<User name=\"u\" disabled=\"Too many failures, Inactivity\"></User>");
    EXPECT_NE(page.find(R"(<tr><td><table class="DISPLAYINNERBOX">
<tr>
<td width="1%" valign="top">
<img src="../korvelagent/dmspages/Disabled.gif" width="20" height="20" hspace="0" vspace="0" border="0" title="User will not be able to login">
</td>
<td width="1" valign="top">
<span class="PROMPT">Disabled For</span>
</td>
<td valign="top">
<span class="DISABLEDISPLAY">Too&nbsp;many&nbsp;failures, <wbr>&nbsp;Inactivity</span>
</td>
</tr>
</table>
)"),
              std::string::npos)
        << page;
    EXPECT_EQ(DisabledReason, "Too many failures, Inactivity");
}

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

constexpr const char* kEditable =
    "<User name=\"uid=u1,o=org\">\n"
    "  <Section name=\"Groups\">\n"
    "    <Group name=\"cn=g1\" read=\"true\" write=\"true\" member=\"true\"/>\n"
    "  </Section>\n"
    "  <Attribute name=\"mail\" read=\"true\" write=\"true\"><Value>a@b</Value></Attribute>\n"
    "</User>";

TEST_F(UserDisplayTest, SubmitScriptAndPostForm) {
    DataEdits.push_back("NumericCheck(document.DisplayForm.elements['x'])");
    DataEdits.push_back("E2");
    Args["LXRAdminARGS"] = "a=1&b=2 c/";
    std::string page = Page(kEditable);
    EXPECT_NE(page.find("<INPUT TYPE=\"SUBMIT\" VALUE=\"Submit\">\n"
                        "<INPUT TYPE=\"RESET\" VALUE=\"Reset\">\n"),
              std::string::npos);
    std::string script = Between(page, "function SubmitForm()", "    document.PostForm.submit();");
    EXPECT_EQ(script.find("function SubmitForm()\n{\n    // Perform any required data edits\n\n"
                          "    if (NumericCheck(document.DisplayForm.elements['x']))\n"
                          "        return false;\n"
                          "    if (E2)\n        return false;\n"
                          "\n    // Move data from the DisplayForm to the PostForm\n\n"
                          "    if (document.DisplayForm.elements['GROUP-cn=g1'].checked)\n"),
              0u)
        << script;
    EXPECT_NE(script.find("mail"), std::string::npos) << script;  // the text field's move

    EXPECT_NE(page.find(R"(
<!-- ************************************************************** -->
<!-- * This is the REAL form for posting, so only REAL fields in  * -->
<!-- * known format are posted.                                   * -->
<!-- ************************************************************** -->

<FORM METHOD="POST" NAME="PostForm">
    <INPUT TYPE="HIDDEN" NAME="GROUP-cn=g1" VALUE="1">
    <INPUT TYPE="HIDDEN" NAME="mail" VALUE="a@b">
    <INPUT TYPE="HIDDEN" NAME="LXR-USERDN" VALUE="uid=u1,o=org">
    <INPUT TYPE="HIDDEN" NAME="LXRAdminARGS" VALUE="a%3D1%26b%3D2+c%2F">
</FORM>
)"),
              std::string::npos)
        << page;
    EXPECT_FALSE(bNewSection);  // cleared again by the group after the heading
}

TEST_F(UserDisplayTest, NewSectionFlag) {
    Page("<User name=\"u\"><Section name=\"s\"></Section></User>");
    EXPECT_TRUE(bNewSection);
    ResetPageGlobals();
    Page(
        "<User name=\"u\"><Section name=\"s\"><Attribute name=\"a\"></Attribute></Section></User>");
    EXPECT_FALSE(bNewSection);
}

TEST_F(UserDisplayTest, ReadOnlyHasNothingToPost) {
    Args["READONLY"] = "";
    std::string page = Page(kEditable);
    EXPECT_EQ(page.find("TYPE=\"SUBMIT\""), std::string::npos);
    EXPECT_EQ(page.find("NAME=\"PostForm\""), std::string::npos);
    EXPECT_NE(page.find("function SubmitForm()"), std::string::npos);
    EXPECT_TRUE(OutputFields.empty());
}

TEST_F(UserDisplayTest, NothingToShowWritesTheErrorThenThePage) {
    std::string page = Page(kEmptyUser, 0);
    EXPECT_EQ(page.rfind("Status: 503 SERVICE UNAVAILABLE\n", 0), 0u) << page;
    // The plain translator: no key in front of the text.
    size_t error = page.find("alert(\"No user attributes are available for view/edit.\");");
    size_t form = page.find("<FORM METHOD=\"POST\" NAME=\"DisplayForm\"");
    ASSERT_NE(error, std::string::npos);
    ASSERT_NE(form, std::string::npos);
    EXPECT_LT(error, form);
    EXPECT_EQ(page.find("Status: 200"), std::string::npos);
    EXPECT_EQ(page.find("<title>"), page.rfind("<title>"));  // one head only

    ResetPageGlobals();
    UseCatalogue({{"KV-LXR-15002", "http://x/none"}});
    page = Page(kEmptyUser, 0);
    EXPECT_EQ(page.rfind("Status: 302 Moved Temporarily\n", 0), 0u) << page;
    EXPECT_NE(page.find("Location: http://x/none\n\n"), std::string::npos);
}

TEST_F(UserDisplayTest, DumpXml) {
    Args["DumpXML"] = "1";
    std::string page = Page("<User name=\"a\"><b></User>");
    EXPECT_NE(page.find("<h1>XML Dump</h1>"), std::string::npos) << page;
    EXPECT_NE(page.find("&lt;User name=\"a\"&gt;&lt;b&gt;"), std::string::npos) << page;
    EXPECT_EQ(page.find("<FORM"), std::string::npos);
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
