#include "pages/section_group.h"

#include <gtest/gtest.h>

#include "pages/testing/pages_fixture.h"

namespace {

using pagestest::ResetPageGlobals;
using pagestest::UseCatalogue;

class SectionGroupTest : public pagestest::PagesTest {};

TEST_F(SectionGroupTest, SectionRows) {
    UseCatalogue({{"#Head Default", "Translated Head"}});
    struct Case {
        const char* text;
        const char* html;
    } cases[] = {
        {"name=\"Status\">",
         "<tr><td class=\"SECTIONBOX\" colspan=\"3\">\n"
         "<span class=\"SECTION\">Status</span>\n</td></tr>\n"},
        {"name=\"n\" prompt=\"Account &amp; Co\">",
         "<tr><td class=\"SECTIONBOX\" colspan=\"3\">\n"
         "<span class=\"SECTION\">Account &amp; Co</span>\n</td></tr>\n"},
        {"prompt=\"#Head Default\">",
         "<tr><td class=\"SECTIONBOX\" colspan=\"3\">\n"
         "<span class=\"SECTION\">Translated Head</span>\n</td></tr>\n"},
        // Neither name nor prompt: a plain divider.
        {">",
         "<tr><td class=\"SECTIONBOX\" colspan=\"3\">\n<hr class=\"INTERSECTION\">\n</td></tr>\n"},
    };
    for (const Case& c : cases) {
        bNewSection = false;
        const char* cursor = c.text;
        bool ok = false;
        std::string out = Capture([&] { ok = ProcessSection(cursor); });
        EXPECT_TRUE(ok) << c.text;
        EXPECT_EQ(*cursor, '>') << c.text;
        EXPECT_EQ(out, c.html) << c.text;
        EXPECT_TRUE(bNewSection) << c.text;
    }
}

TEST_F(SectionGroupTest, MalformedElementsWriteNothing) {
    const char* texts[] = {"/>", "name=\"s\" name=\"t\">", "name=\"s\"", "read=\"true\">"};
    for (const char* text : texts) {
        bNewSection = false;
        const char* cursor = text;
        bool ok = true;
        EXPECT_EQ(Capture([&] { ok = ProcessSection(cursor); }), "") << text;
        EXPECT_FALSE(ok) << text;
        EXPECT_FALSE(bNewSection) << text;
    }
    const char* groups[] = {"name=\"g\">", "member=\"maybe\"/>", "read=\"true\" read=\"true\"/>",
                            "name=\"g\""};
    for (const char* text : groups) {
        const char* cursor = text;
        bool ok = true;
        EXPECT_EQ(Capture([&] { ok = ProcessGroup(cursor); }), "") << text;
        EXPECT_FALSE(ok) << text;
    }
    EXPECT_TRUE(OutputFields.empty());
    EXPECT_TRUE(DataMoves.empty());
}

constexpr const char* kCheckedMemberRow = R"(<td width="1" valign="top">
<img name="GROUP-cn=g_IMAGE" width="20" height="20" hspace="0" vspace="0" border="0" src="../korvelagent/dmspages/Disabled.gif" title="DISABLED-TAG">
</td>
<td width="1" valign="top">
<span class="PROMPT">Staff</span>
</td>
<td valign="top">
<INPUT TYPE="CHECKBOX" NAME="GROUP-cn=g" checked onClick="CheckDisabled('cn=g');">
</td>
</tr>
)";

constexpr const char* kPlainCheckboxRow = R"(<td width="1" valign="top">
</td>
<td width="1" valign="top">
<span class="PROMPT">g</span>
</td>
<td valign="top">
<INPUT TYPE="CHECKBOX" NAME="GROUP-g">
</td>
</tr>
)";

constexpr const char* kRadioRow = R"(<td width="1" valign="top">
<img name="GROUP-g_IMAGE" width="20" height="20" hspace="0" vspace="0" border="0" src="../korvelagent/dmspages/Unknown.gif" title="">
</td>
<td width="1" valign="top">
<span class="PROMPT">lock</span>
</td>
<td valign="top">
<table width="100%" border="0" cellpadding="0" cellspacing="0"><tr>
<td width="33%">
<span class="GROUPBUTTONS"><INPUT TYPE="RADIO" NAME="GROUP-g" VALUE="" checked onClick="CheckDisabled3('g', 0);">No Change</span></td>
<td width="33%">
<span class="GROUPBUTTONS"><INPUT TYPE="RADIO" NAME="GROUP-g" VALUE="1" onClick="CheckDisabled3('g', 1);">Add</span></td>
<td width="33%">
<span class="GROUPBUTTONS"><INPUT TYPE="RADIO" NAME="GROUP-g" VALUE="0" onClick="CheckDisabled3('g', 2);">Remove</span></td>
</tr></table>
</td>
</tr>
)";

constexpr const char* kPlainRadioRow = R"(<td width="1" valign="top">
</td>
<td colspan="2" valign="top">
<table width="100%" border="0" cellpadding="0" cellspacing="0"><tr>
<td width="33%">
<span class="GROUPBUTTONS"><INPUT TYPE="RADIO" NAME="GROUP-" VALUE="" checked >No Change</span></td>
<td width="33%">
<span class="GROUPBUTTONS"><INPUT TYPE="RADIO" NAME="GROUP-" VALUE="1" >Add</span></td>
<td width="33%">
<span class="GROUPBUTTONS"><INPUT TYPE="RADIO" NAME="GROUP-" VALUE="0" >Remove</span></td>
</tr></table>
</td>
</tr>
)";

// A display row: blank picture (not a member, with a reason), the label, a word.
std::string DisplayRow(const char* image, const char* word) {
    std::string row = "<td width=\"1\" valign=\"top\">\n";
    row += image;
    row +=
        "</td>\n<td width=\"1\" valign=\"top\">\n<span class=\"PROMPT\">G</span>\n</td>\n"
        "<td valign=\"top\">\n<span class=\"GROUPMEMBER\">";
    row += word;
    row += "</span>\n</td>\n</tr>\n";
    return row;
}

TEST_F(SectionGroupTest, GroupRowsByReadWriteAndMember) {
    struct Case {
        const char* text;
        bool readOnly;
        std::string html;
        const char* fields;
        size_t moves;
    } cases[] = {
        {"name=\"cn=g\" prompt=\"Staff\" read=\"true\" write=\"true\" member=\"true\" "
         "reasoncode=\"r\"/>",
         false, kCheckedMemberRow, "GROUP-cn=g=1\n", 1},
        // The label falls back to the name; no reason code, no picture, no onClick.
        {"name=\"g\" read=\"true\" write=\"true\" member=\"false\"/>", false, kPlainCheckboxRow,
         "GROUP-g=0\n", 1},
        // Changeable but unknown: three radio buttons, the label is the reason.
        {"name=\"g\" write=\"true\" reasoncode=\"lock\"/>", false, kRadioRow, "GROUP-g=\n", 1},
        // No name at all is accepted: the field is "GROUP-" alone.
        {"write=\"true\" member=\"true\"/>", false, kPlainRadioRow, "GROUP-=\n", 1},
        {"name=\"x\" prompt=\"G\" read=\"true\" member=\"true\"/>", false, DisplayRow("", "Yes"),
         "", 0},
        {"name=\"x\" prompt=\"G\" read=\"true\" member=\"false\"/>", false, DisplayRow("", "No"),
         "", 0},
        {"name=\"x\" prompt=\"G\" read=\"true\" member=\"restricted\"/>", false,
         DisplayRow("", "Unknown"), "", 0},
        {"name=\"x\" prompt=\"G\" member=\"true\"/>", false, DisplayRow("", "Unknown"), "", 0},
        // A read-only request turns every group into a display row.
        {"name=\"x\" prompt=\"G\" read=\"true\" write=\"true\" member=\"true\"/>", true,
         DisplayRow("", "Yes"), "", 0},
        {"name=\"x\" prompt=\"G\" write=\"true\" member=\"true\"/>", true,
         DisplayRow("", "Unknown"), "", 0},
        {"name=\"x\" prompt=\"G\" reasoncode=\"r\" read=\"true\" member=\"false\"/>", false,
         DisplayRow("<img name=\"GROUP-x_IMAGE\" width=\"20\" height=\"20\" hspace=\"0\" "
                    "vspace=\"0\" border=\"0\" src=\"../korvelagent/dmspages/Blank.gif\" "
                    "title=\"\">\n",
                    "No"),
         "", 0},
    };
    for (const Case& c : cases) {
        ResetPageGlobals();
        if (c.readOnly) Args["ReadOnly"] = "1";
        const char* cursor = c.text;
        bool ok = false;
        std::string out = Capture([&] { ok = ProcessGroup(cursor); });
        EXPECT_TRUE(ok) << c.text;
        EXPECT_STREQ(cursor, ">") << c.text;
        EXPECT_EQ(out, c.html) << c.text;
        EXPECT_EQ(Fields(), c.fields) << c.text;
        EXPECT_EQ(DataMoves.size(), c.moves) << c.text;
    }
}

TEST_F(SectionGroupTest, CopyStatements) {
    const char* cursor = "name=\"a\" read=\"true\" write=\"true\"/>";
    Capture([&] { ProcessGroup(cursor); });
    cursor = "name=\"b\" write=\"true\"/>";
    Capture([&] { ProcessGroup(cursor); });
    ASSERT_EQ(DataMoves.size(), 2u);
    EXPECT_EQ(DataMoves[0],
              "if (document.DisplayForm.elements['GROUP-a'].checked)\n"
              "        document.PostForm.elements['GROUP-a'].value = '1';\n"
              "    else\n"
              "        document.PostForm.elements['GROUP-a'].value = '0';\n");
    EXPECT_EQ(DataMoves[1],
              "if (document.DisplayForm.elements['GROUP-b'][1].checked)\n"
              "        document.PostForm.elements['GROUP-b'].value = \"1\";\n"
              "    else\n"
              "    if (document.DisplayForm.elements['GROUP-b'][2].checked)\n"
              "        document.PostForm.elements['GROUP-b'].value = \"0\";\n"
              "    else\n"
              "        document.PostForm.elements['GROUP-b'].value = \"\";\n");
    EXPECT_EQ(Fields(), "GROUP-a=0\nGROUP-b=\n");
}

TEST_F(SectionGroupTest, LabelsComeFromTheCatalogue) {
    UseCatalogue(
        {{"#Staff members", "Personnel"}, {"KV-LXR-12071", "Oui"}, {"KV-LXR-12074", "Ajouter"}});
    const char* cursor = "name=\"g\" prompt=\"#Staff members\" read=\"true\" member=\"true\"/>";
    std::string out = Capture([&] { ProcessGroup(cursor); });
    EXPECT_NE(out.find("<span class=\"PROMPT\">Personnel</span>\n"), std::string::npos) << out;
    EXPECT_NE(out.find("<span class=\"GROUPMEMBER\">Oui</span>\n"), std::string::npos) << out;

    // A "#" reason code stands in for a missing prompt, translated too.
    cursor = "name=\"g\" reasoncode=\"#Locked out\" write=\"true\"/>";
    out = Capture([&] { ProcessGroup(cursor); });
    EXPECT_NE(out.find("<span class=\"PROMPT\">Locked out</span>\n"), std::string::npos) << out;
    EXPECT_NE(out.find(">Ajouter</span>"), std::string::npos) << out;
    EXPECT_NE(out.find(">No Change</span>"), std::string::npos) << out;
}

}  // namespace
