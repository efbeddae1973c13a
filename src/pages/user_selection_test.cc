#include "pages/user_selection.h"

#include <gtest/gtest.h>

#include "cgi/fields.h"
#include "support/request_reset.h"
#include "support/translators.h"

namespace {

using lxrtest::UseCatalogue;

class UserSelectionTest : public lxrtest::RequestTest {
  protected:
    std::string Page(const char* document) {
        return lxrtest::CaptureStdout([&] { UserSelection(document); });
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

TEST_F(UserSelectionTest, NoDirectoriesIsAnError) {
    const char* documents[] = {
        "<UserDirectories></UserDirectories>",
        "<UserDirectories><UserDirectory name=\"#a\">b</UserDirectory></UserDirectories>",
    };
    for (const char* document : documents) {
        StartRequest();
        std::string page = Page(document);
        EXPECT_EQ(page.rfind("Status: 503 SERVICE UNAVAILABLE\n", 0), 0u) << page;
        EXPECT_NE(page.find("alert(\"[KV-LXR-15001] No User Directories are available.\");"),
                  std::string::npos)
            << page;
        EXPECT_EQ(page.find("<FORM"), std::string::npos);
    }
    StartRequest();
    Args["DIR"] = "nothing";
    EXPECT_NE(Page(kOne).find("Status: 503"), std::string::npos);

    StartRequest();
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
