#include "pages/attribute_row.h"

#include <gtest/gtest.h>

#include <ctime>

#include "fields/display.h"
#include "fields/edit_simple.h"
#include "fields/field_model.h"
#include "platform/formatter.h"
#include "support/request_reset.h"

namespace {

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

class AttributeRowTest : public lxrtest::RequestTest {
  protected:
    void SetUp() override {
        RequestTest::SetUp();
        Calls.clear();
    }
};

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
        StartRequest();
        Calls.clear();
        lxrtest::CaptureStdout([&] { WriteAttributeRow(c.attribute, c.handlers); });
        EXPECT_EQ(Calls, c.calls) << c.attribute.name << " " << c.calls;
        EXPECT_EQ(Fields(), c.fields) << c.attribute.name << " " << c.calls;
    }
}

TEST_F(AttributeRowTest, StatusPictures) {
    const std::string disabled =
        "<img name=\"%N_IMAGE\" width=\"20\" height=\"20\" hspace=\"0\" vspace=\"0\" "
        "border=\"0\" src=\"../korvelagent/dmspages/Disabled.gif\" title=\"User will not be able "
        "to login\">\n";
    const std::string blank =
        "<img name=\"%N_IMAGE\" width=\"20\" height=\"20\" hspace=\"0\" vspace=\"0\" "
        "border=\"0\" src=\"../korvelagent/dmspages/Blank.gif\" title=\"\">\n";
    const std::string redisable =
        "<img name=\"%N_IMAGE\" width=\"20\" height=\"20\" hspace=\"0\" vspace=\"0\" "
        "border=\"0\" src=\"../korvelagent/dmspages/Redisable.gif\" title=\"Unless reset, this "
        "value may cause the user to be disabled at next login\">\n";
    const std::string none;
    Now = 1700000000;  // 20231114221320Z
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
        std::string out = lxrtest::CaptureStdout([&] {
            WriteAttributeRow(a, {false, nullptr, nullptr});
        });
        std::string picture = c.picture;
        if (!picture.empty()) picture.replace(picture.find("%N"), 2, c.name);
        std::string expected = "<tr>\n<td width=\"1%\" valign=\"top\">\n" + picture + "</td>\n";
        EXPECT_EQ(out.substr(0, expected.size()), expected)
            << c.name << " " << (c.values.empty() ? "(none)" : c.values[0]);
    }
}

}  // namespace
