#include "pages/section_group.h"

#include <gtest/gtest.h>

#include "cgi/fields.h"
#include "fields/field_model.h"
#include "pages/user_display.h"
#include "support/request_reset.h"

namespace {

class SectionGroupTest : public lxrtest::RequestTest {};

TEST_F(SectionGroupTest, MalformedElementsWriteNothing) {
    const char* texts[] = {"/>", "name=\"s\" name=\"t\">", "name=\"s\"", "read=\"true\">"};
    for (const char* text : texts) {
        bNewSection = false;
        const char* cursor = text;
        bool ok = true;
        EXPECT_EQ(lxrtest::CaptureStdout([&] { ok = ProcessSection(cursor); }), "") << text;
        EXPECT_FALSE(ok) << text;
        EXPECT_FALSE(bNewSection) << text;
    }
    const char* groups[] = {"name=\"g\">", "member=\"maybe\"/>", "read=\"true\" read=\"true\"/>",
                            "name=\"g\""};
    for (const char* text : groups) {
        const char* cursor = text;
        bool ok = true;
        EXPECT_EQ(lxrtest::CaptureStdout([&] { ok = ProcessGroup(cursor); }), "") << text;
        EXPECT_FALSE(ok) << text;
    }
    EXPECT_TRUE(OutputFields.empty());
    EXPECT_TRUE(DataMoves.empty());
}

// Which row a group gets: its picture (null: none), the control that tells the
// row's kind, the hidden field and whether the submit script moves it. The
// rows' whole markup is left to the whole-program cases.
TEST_F(SectionGroupTest, GroupRowsByReadWriteAndMember) {
    const char* yes = "<span class=\"GROUPMEMBER\">Yes</span>";
    const char* unknown = "<span class=\"GROUPMEMBER\">Unknown</span>";
    struct Case {
        const char* text;
        bool readOnly;
        const char* picture;
        const char* control;
        const char* fields;
        size_t moves;
    } cases[] = {
        {"name=\"cn=g\" prompt=\"Staff\" read=\"true\" write=\"true\" member=\"true\" "
         "reasoncode=\"r\"/>",
         false, "Disabled.gif\" title=\"User will not be able to login\"",
         "<INPUT TYPE=\"CHECKBOX\" NAME=\"GROUP-cn=g\" checked onClick=\"CheckDisabled('cn=g');\">",
         "GROUP-cn=g=1\n", 1},
        // The label falls back to the name; no reason code, no picture, no onClick.
        {"name=\"g\" read=\"true\" write=\"true\" member=\"false\"/>", false, nullptr,
         "<span class=\"PROMPT\">g</span>\n</td>\n<td valign=\"top\">\n"
         "<INPUT TYPE=\"CHECKBOX\" NAME=\"GROUP-g\">\n",
         "GROUP-g=0\n", 1},
        // Changeable but unknown: three radio buttons, the label is the reason.
        {"name=\"g\" write=\"true\" reasoncode=\"lock\"/>", false, "Unknown.gif\" title=\"\"",
         "<span class=\"PROMPT\">lock</span>", "GROUP-g=\n", 1},
        {"name=\"g\" write=\"true\"/>", false, nullptr,
         "NAME=\"GROUP-g\" VALUE=\"0\" >Remove</span>", "GROUP-g=\n", 1},
        // No name at all is accepted: the field is "GROUP-" alone, in one wide cell.
        {"write=\"true\" member=\"true\"/>", false, nullptr,
         "<td colspan=\"2\" valign=\"top\">\n<table", "GROUP-=\n", 1},
        {"name=\"x\" prompt=\"G\" read=\"true\" member=\"true\"/>", false, nullptr, yes, "", 0},
        {"name=\"x\" prompt=\"G\" read=\"true\" member=\"false\"/>", false, nullptr,
         "<span class=\"GROUPMEMBER\">No</span>", "", 0},
        {"name=\"x\" prompt=\"G\" read=\"true\" member=\"restricted\"/>", false, nullptr, unknown,
         "", 0},
        {"name=\"x\" prompt=\"G\" member=\"true\"/>", false, nullptr, unknown, "", 0},
        // A read-only request turns every group into a display row.
        {"name=\"x\" prompt=\"G\" read=\"true\" write=\"true\" member=\"true\"/>", true, nullptr,
         yes, "", 0},
        {"name=\"x\" prompt=\"G\" write=\"true\" member=\"true\"/>", true, nullptr, unknown, "", 0},
        {"name=\"x\" prompt=\"G\" reasoncode=\"r\" read=\"true\" member=\"false\"/>", false,
         "Blank.gif\" title=\"\"", "<span class=\"GROUPMEMBER\">No</span>", "", 0},
    };
    for (const Case& c : cases) {
        StartRequest();
        if (c.readOnly) Args["ReadOnly"] = "1";
        const char* cursor = c.text;
        bool ok = false;
        std::string out = lxrtest::CaptureStdout([&] { ok = ProcessGroup(cursor); });
        EXPECT_TRUE(ok) << c.text;
        EXPECT_STREQ(cursor, ">") << c.text;
        if (c.picture) {
            EXPECT_NE(out.find(std::string("/dmspages/") + c.picture), std::string::npos) << out;
        } else {
            EXPECT_EQ(out.find("<img"), std::string::npos) << out;
        }
        EXPECT_NE(out.find(c.control), std::string::npos) << c.control << "\n---\n" << out;
        EXPECT_EQ(out.find("<INPUT") != std::string::npos, c.moves > 0) << out;
        EXPECT_EQ(Fields(), c.fields) << c.text;
        EXPECT_EQ(DataMoves.size(), c.moves) << c.text;
    }
}

}  // namespace
