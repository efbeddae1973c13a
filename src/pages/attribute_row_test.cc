#include "pages/attribute_row.h"

#include <gtest/gtest.h>

#include <ctime>

#include "fields/display.h"
#include "fields/edit_simple.h"
#include "pages/testing/pages_fixture.h"

namespace {

using pagestest::ResetPageGlobals;
using pagestest::UseCatalogue;

// Handlers that say how they were called, in the page and in `Calls`.
std::string Calls;

void Call(const char* kind, const char* value, int index, bool first, bool last) {
    std::string call = prtFormatter.sprintf("%s(%s,%d,%d,%d)", kind, value, index, first, last);
    Calls += call;
    prtFormatter.printf("[%s]", call);
}
void FakeDisplay(const char* value, int index, bool first, bool last) {
    Call("show", value, index, first, last);
}
Finisher FakeEdit(const char*, const char* value, int index, bool first, bool last) {
    Call("edit", value, index, first, last);
    return nullptr;
}
void FakeFinish(const char* name, int count) {
    std::string call = prtFormatter.sprintf("finish(%s,%d)", name, count);
    Calls += call;
    prtFormatter.printf("[%s]", call);
}
// Like the history handler: every value shown, the finisher returned.
Finisher FinishingEdit(const char* name, const char* value, int index, bool first, bool last) {
    FakeEdit(name, value, index, first, last);
    return FakeFinish;
}
// A finisher for the first value only: the last call decides.
Finisher FirstOnlyFinishing(const char* name, const char* value, int index, bool first, bool last) {
    FakeEdit(name, value, index, first, last);
    return first ? FakeFinish : nullptr;
}

AttributeElement Attribute(const char* name, std::vector<std::string> values, bool read,
                           bool write) {
    AttributeElement a;
    a.name = name;
    a.values = std::move(values);
    a.read = read;
    a.write = write;
    return a;
}

class AttributeRowTest : public pagestest::PagesTest {
  protected:
    void SetUp() override {
        PagesTest::SetUp();
        Calls.clear();
    }
    lxrtest::ScopedEnv tz_{"TZ", "UTC"};
};

// The label falls back to the name; an empty label gives one wide cell.
TEST_F(AttributeRowTest, LabelFallsBackToTheName) {
    AttributeElement a = Attribute("kvlxrX", {"1"}, true, false);
    std::string out = Capture([&] { WriteAttributeRow(a, {false, nullptr, nullptr}); });
    EXPECT_NE(out.find("<span class=\"PROMPT\">kvlxrX</span>\n"), std::string::npos) << out;
    a.name.clear();
    out = Capture([&] { WriteAttributeRow(a, {false, nullptr, nullptr}); });
    EXPECT_NE(out.find("</td>\n<td colspan=\"2\" valign=\"top\">\n"), std::string::npos) << out;
    EXPECT_EQ(out.find("PROMPT"), std::string::npos) << out;
}

TEST_F(AttributeRowTest, HandlerChoiceAndHiddenFields) {
    struct Case {
        AttributeElement attribute;
        RowHandlers handlers;
        const char* calls;
        const char* fields;
    } cases[] = {
        // No values: one call with the empty text and index -1.
        {Attribute("a", {}, true, false), {false, FakeDisplay, FakeEdit}, "show(,-1,1,1)", ""},
        {Attribute("a", {}, true, true), {false, FakeDisplay, FakeEdit}, "edit(,-1,1,1)", "a=\n"},
        {Attribute("a", {"x"}, false, false), {false, FakeDisplay, FakeEdit}, "", ""},
        // Writable beats readable; without an edit handler the display one serves.
        {Attribute("a", {"x"}, true, true), {false, FakeDisplay, nullptr}, "show(x,0,1,1)", ""},
        {Attribute("a", {"x"}, false, true), {false, FakeDisplay, nullptr}, "", ""},
        {Attribute("a", {"x"}, true, false), {false, nullptr, FakeEdit}, "", ""},
        // Three values: three hidden fields of one name, in value order.
        {Attribute("a", {"1", " 2", "3 "}, false, true),
         {false, nullptr, FakeEdit},
         "edit(1,0,1,0)edit( 2,1,0,0)edit(3 ,2,0,1)",
         "a=1\na= 2\na=3 \n"},
        // A finisher replaces the fields and is called once with the count.
        {Attribute("h", {"1", "2"}, false, true),
         {false, nullptr, FinishingEdit},
         "edit(1,0,1,0)edit(2,1,0,1)finish(h,2)",
         ""},
        {Attribute("h", {}, false, true),
         {false, nullptr, FinishingEdit},
         "edit(,-1,1,1)finish(h,0)",
         ""},
        {Attribute("h", {"1", "2"}, false, true),
         {false, nullptr, FirstOnlyFinishing},
         "edit(1,0,1,0)edit(2,1,0,1)",
         "h=2\n"},
    };
    for (Case& c : cases) {
        ResetPageGlobals();
        Calls.clear();
        Capture([&] { WriteAttributeRow(c.attribute, c.handlers); });
        EXPECT_EQ(Calls, c.calls) << c.attribute.name << " " << c.calls;
        EXPECT_EQ(Fields(), c.fields) << c.attribute.name << " " << c.calls;
    }
}

TEST_F(AttributeRowTest, StatusPictures) {
    const std::string disabled =
        "<img name=\"%N_IMAGE\" width=\"20\" height=\"20\" hspace=\"0\" vspace=\"0\" "
        "border=\"0\" src=\"../korvelagent/dmspages/Disabled.gif\" title=\"DISABLED-TAG\">\n";
    const std::string blank =
        "<img name=\"%N_IMAGE\" width=\"20\" height=\"20\" hspace=\"0\" vspace=\"0\" "
        "border=\"0\" src=\"../korvelagent/dmspages/Blank.gif\" title=\"\">\n";
    const std::string redisable =
        "<img name=\"%N_IMAGE\" width=\"20\" height=\"20\" hspace=\"0\" vspace=\"0\" "
        "border=\"0\" src=\"../korvelagent/dmspages/Redisable.gif\" title=\"REDISABLE-TAG\">\n";
    const std::string none;
    // Now is 1700000000, that is 20231114221320Z.
    struct Case {
        const char* name;
        std::vector<std::string> values;
        bool redisable;
        const std::string& picture;
    } cases[] = {
        {"kvlxrDisableUntil", {"FOREVER"}, false, disabled},
        {"kvlxrDisableUntil", {"FOREVERMORE x"}, false, disabled},
        {"KVLXRDISABLEUNTIL", {"20991231000000Z"}, false, disabled},
        {"kvlxrDisableUntil", {"20231114221321Z"}, false, disabled},
        {"kvlxrDisableUntil", {"20231114221320Z"}, false, blank},  // now is not later
        {"kvlxrDisableUntil", {"20000101000000Z later"}, false, blank},
        {"kvlxrDisableUntil", {"forever"}, false, blank},
        {"kvlxrDisableUntil", {"garbage"}, false, blank},
        {"kvlxrDisableUntil", {}, true, blank},  // the name decides, not the flag
        {"kvlxrDisableUntil", {"20000101000000Z", "FOREVER"}, false, blank},  // first only
        {"kvlxrDisableAfter", {"20000101000000Z"}, false, disabled},
        {"kvlxrDisableAfter", {"20231114221319Z"}, false, disabled},
        {"kvlxrDisableAfter", {"20231114221320Z"}, false, blank},  // now is not earlier
        {"kvlxrDisableAfter", {"20991231000000Z"}, false, blank},
        {"kvlxrDisableAfter", {}, false, blank},
        {"kvlxrMustLoginBy", {"garbage"}, false, disabled},  // unreadable counts as passed
        {"kvlxrmustloginby", {""}, false, disabled},
        {"kvlxrMustLoginBy", {"20991231000000Z"}, true, blank},
        {"kvlxrFailureCount", {"3"}, true, redisable},
        {"kvlxrFailureCount", {"3"}, false, none},
    };
    for (const Case& c : cases) {
        AttributeElement a = Attribute(c.name, c.values, false, false);
        a.redisable = c.redisable;
        std::string out = Capture([&] { WriteAttributeRow(a, {false, nullptr, nullptr}); });
        std::string picture = c.picture;
        if (!picture.empty()) picture.replace(picture.find("%N"), 2, c.name);
        std::string expected = "<tr>\n<td width=\"1%\" valign=\"top\">\n" + picture + "</td>\n";
        EXPECT_EQ(out.substr(0, expected.size()), expected)
            << c.name << " " << (c.values.empty() ? "(none)" : c.values[0]);
    }
}

// Detail lists go into a frame for MSIE only, and the agent test is
// case-sensitive; the lists' markup is left to the whole-program cases.
TEST_F(AttributeRowTest, DetailListFrameOnlyForMsie) {
    AttributeElement a = Attribute("kvlxrLoginHistory", {"v"}, true, false);
    struct Case {
        const char* agent;
        bool frame;
    } cases[] = {
        {nullptr, false},
        {"Mozilla/5.0 (X11; Linux x86_64)", false},
        {"Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.1)", true},
        {"msie", false},
    };
    for (const Case& c : cases) {
        lxrtest::ScopedEnv agent("HTTP_USER_AGENT", c.agent);
        std::string out = Capture([&] { WriteAttributeRow(a, {true, FakeDisplay, nullptr}); });
        const char* what = c.agent ? c.agent : "(none)";
        EXPECT_NE(out.find("function ShowDetail_kvlxrLoginHistory(W, bDoc)"), std::string::npos)
            << what;
        EXPECT_NE(out.find("[show(v,0,1,1)]"), std::string::npos) << what;
        EXPECT_NE(out.find("    ShowDetail_kvlxrLoginHistory(window, false);\n"), std::string::npos)
            << what;
        EXPECT_EQ(out.find("<IFRAME NAME=\"kvlxrLoginHistory_FRAME\"") != std::string::npos,
                  c.frame)
            << what;
    }
}

TEST_F(AttributeRowTest, FinisherRunsAfterTheDetailScript) {
    AttributeElement a = Attribute("kvfpsLog", {"v"}, false, true);
    std::string out = Capture([&] { WriteAttributeRow(a, {true, nullptr, FinishingEdit}); });
    size_t closeAt = out.find("ShowDetail_kvfpsLog(window, false);");
    size_t finishAt = out.find("[finish(kvfpsLog,1)]");
    ASSERT_NE(closeAt, std::string::npos) << out;
    ASSERT_NE(finishAt, std::string::npos) << out;
    EXPECT_LT(closeAt, finishAt);
    EXPECT_EQ(out.substr(finishAt), "[finish(kvfpsLog,1)]</span></nobr></td>\n</tr>\n");
}

TEST_F(AttributeRowTest, HandlersComeFromTheTable) {
    struct Case {
        const char* name;
        bool detail;
        DisplayHandler display;
        EditHandler edit;
    } cases[] = {
        {"KVLXRTOTALLOGINS", false, outStandard, nullptr},
        {"kvlxrHistory", false, nullptr, nullptr},
        {"kvfpsLog", true, outHistory, FindFuncs("kvfpsLog")->edit},
        {"someOtherAttribute", false, outStandard, inStandard},
        {"", false, outStandard, inStandard},
    };
    for (const Case& c : cases) {
        RowHandlers h = LookupHandlers(c.name);
        EXPECT_EQ(h.detail, c.detail) << c.name;
        EXPECT_EQ(h.display, c.display) << c.name;
        EXPECT_EQ(h.edit, c.edit) << c.name;
    }
}

TEST_F(AttributeRowTest, ProcessAttributeReadsThenWrites) {
    const char* text =
        "name=\"mail\" read=\"true\" write=\"true\">"
        "<Value>a@b</Value><Value>c@d</Value></Attribute>";
    const char* cursor = text;
    bool ok = false;
    std::string out = Capture([&] { ok = ProcessAttribute(cursor); });
    ASSERT_TRUE(ok);
    EXPECT_STREQ(cursor, ">");
    // An unknown attribute is edited with the standard text handler.
    EXPECT_NE(out.find("NAME=\"mail\" VALUE=\"a@b\""), std::string::npos) << out;
    EXPECT_NE(out.find("NAME=\"mail\" VALUE=\"c@d\""), std::string::npos) << out;
    EXPECT_EQ(Fields(), "mail=a@b\nmail=c@d\n");

    // Read-only requests show every attribute through its display handler.
    ResetPageGlobals();
    Args["readonly"] = "";
    cursor = text;
    out = Capture([&] { ok = ProcessAttribute(cursor); });
    ASSERT_TRUE(ok);
    EXPECT_EQ(out.find("<INPUT"), std::string::npos) << out;
    EXPECT_NE(out.find("a@b"), std::string::npos) << out;
    EXPECT_TRUE(OutputFields.empty());
    EXPECT_TRUE(DataMoves.empty());

    // A malformed element writes nothing.
    cursor = "name=\"mail\" read=\"TRUE\"></Attribute>";
    out = Capture([&] { ok = ProcessAttribute(cursor); });
    EXPECT_FALSE(ok);
    EXPECT_EQ(out, "");
    EXPECT_STREQ(cursor, "TRUE\"></Attribute>");
}

}  // namespace
