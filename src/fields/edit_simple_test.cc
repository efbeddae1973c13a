#include "fields/edit_simple.h"

#include <sstream>
#include <string>
#include <vector>

#include "fields/fields_test_support.h"

namespace fields_test {
namespace {

class EditSimpleTest : public FieldsTest {};

using Lines = std::vector<std::string>;

void NotCalled(const char*, int) {}

struct Row {
    EditHandler handler;
    const char* value;
    std::string output;
    Lines moves;
    Lines edits;
};

const char kImmediateMove[] =
    "if (document.DisplayForm.elements['IC'].checked)\n"
    "        if (document.DisplayForm.elements['IC_COMMENT'].value.length == 0)\n"
    "            document.PostForm.elements['IC'].value = 'YES via LXRAdmin';\n"
    "        else\n"
    "            document.PostForm.elements['IC'].value = \n"
    "                document.DisplayForm.elements['IC_COMMENT'].value;\n"
    "    else\n"
    "        document.PostForm.elements['IC'].value = '';\n";
const char kImmediateEdit[] =
    "CommentChecked(!document.DisplayForm.elements['IC'].checked, "
    "document.DisplayForm.elements['IC_COMMENT'])";

// The count list with option `selected` (0 to 5, or -1 for none) chosen.
std::string CountSelect(int selected) {
    std::string out = "<SELECT NAME=\"IC\" SIZE=\"1\">\n";
    out += selected == 0 ? "<OPTION VALUE=\"\" SELECTED>0\n" : "<OPTION VALUE=\"\">0\n";
    for (int k = 1; k <= 5; ++k) {
        std::string n = std::to_string(k);
        out += "<OPTION VALUE=\"" + n + "\"" + (k == selected ? " SELECTED" : "") + ">" + n + "\n";
    }
    return out + "</SELECT>\n";
}

TEST_F(EditSimpleTest, SingleControlHandlers) {
    const Lines simpleMove = {"SimpleMove('IC');\n"};
    const Row rows[] = {
        {inStandard,
         " v 1",
         "<INPUT TYPE=\"TEXT\" NAME=\"IC\" VALUE=\" v 1\" size=\"30\">",
         simpleMove,
         {}},
        {inStandard,
         "50%",
         "<INPUT TYPE=\"TEXT\" NAME=\"IC\" VALUE=\"50%\" size=\"30\">",
         simpleMove,
         {}},
        {inCount, "", CountSelect(0), simpleMove, {}},
        {inCount, " 3 extra words", CountSelect(3), simpleMove, {}},
        {inCount, "7", CountSelect(-1), simpleMove, {}},
        {inCount, "junk", CountSelect(0), simpleMove, {}},
        {inImmediateChange,
         " reason here",
         "<INPUT TYPE=\"CHECKBOX\" NAME=\"IC\" VALUE=\"YES\" CHECKED>\n"
         "<span class=\"INNERPROMPT\">&nbsp;Comment:&nbsp;</span>"
         "<INPUT TYPE=\"TEXT\" NAME=\"IC_COMMENT\" VALUE=\"reason here\" SIZE=\"30\" "
         "MAXLENGTH=\"30\">\n",
         {kImmediateMove},
         {kImmediateEdit}},
        {inImmediateChange,
         "",
         "<INPUT TYPE=\"CHECKBOX\" NAME=\"IC\" VALUE=\"YES\">\n"
         "<span class=\"INNERPROMPT\">&nbsp;Comment:&nbsp;</span>"
         "<INPUT TYPE=\"TEXT\" NAME=\"IC_COMMENT\" VALUE=\"\" SIZE=\"30\" MAXLENGTH=\"30\">\n",
         {kImmediateMove},
         {kImmediateEdit}},
        {inPassword,
         "secret",
         "<table width=\"100%\" border=\"0\">\n"
         "<tr>\n<td width=\"1\" nowrap>\n"
         "<nobr><span class=\"INNERPROMPT\">New Password&nbsp;</span></nobr>\n</td>\n"
         "<td nowrap>\n<nobr><INPUT TYPE=\"PASSWORD\" NAME=\"IC\" VALUE=\"\" size=\"32\" "
         "maxlength=\"32\"></nobr></td>\n</tr>\n"
         "<tr>\n<td width=\"1\" nowrap>\n"
         "<nobr><span class=\"INNERPROMPT\">Confirm Password&nbsp;</span></nobr>\n</td>\n"
         "<td nowrap>\n<nobr><INPUT TYPE=\"PASSWORD\" NAME=\"IC_CONFIRM\" VALUE=\"\" size=\"32\" "
         "maxlength=\"32\"></nobr></td>\n</tr>\n"
         "</table>\n",
         simpleMove,
         {"PasswordCompare('IC')"}},
    };
    for (const Row& row : rows) {
        ClearLists();
        Finisher result = NotCalled;
        EXPECT_EQ(CaptureStdout([&] { result = row.handler("IC", row.value, 0, true, true); }),
                  row.output)
            << row.value;
        EXPECT_EQ(result, nullptr);
        EXPECT_EQ(DataMoves, row.moves) << row.value;
        EXPECT_EQ(DataEdits, row.edits) << row.value;
        EXPECT_TRUE(OutputFields.empty());  // the caller records the hidden field
    }
}

// The option lines of a captured select list that are marked SELECTED.
Lines SelectedLines(const std::string& out) {
    Lines selected;
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);) {
        if (line.find(" SELECTED") != std::string::npos) selected.push_back(line);
    }
    return selected;
}

TEST_F(EditSimpleTest, DaysOverrideSelectsOneOption) {
    struct DaysRow {
        const char* value;
        Lines selected;
        const char* comment;
    };
    const DaysRow rows[] = {
        {"", {"<OPTION VALUE=\"\" SELECTED>&lt;default&gt;"}, ""},
        {"0", {"<OPTION VALUE=\"0\" SELECTED>&lt;never&gt;"}, ""},
        {"abc", {"<OPTION VALUE=\"0\" SELECTED>&lt;never&gt;"}, ""},
        {" 14   test  case", {"<OPTION VALUE=\"14\" SELECTED>2 Weeks"}, "test  case"},
        {"1", {"<OPTION VALUE=\"1\" SELECTED>1 Day"}, ""},
        {"7", {"<OPTION VALUE=\"7\" SELECTED>1 Week"}, ""},
        {"365", {"<OPTION VALUE=\"365\" SELECTED>365 Days"}, ""},
        {"400 long", {}, "long"},
    };
    for (const DaysRow& row : rows) {
        std::string out = CaptureStdout([&] { inDaysOverride("D", row.value, 0, true, true); });
        EXPECT_EQ(SelectedLines(out), row.selected) << row.value;
        std::string tail =
            "</SELECT>\n<span class=\"INNERPROMPT\">&nbsp;&nbsp;Comment:&nbsp;</span>"
            "<INPUT TYPE=\"TEXT\" NAME=\"D_COMMENT\" VALUE=\"" +
            std::string(row.comment) + "\" SIZE=\"20\" MAXLENGTH=\"20\">\n";
        ASSERT_GE(out.size(), tail.size());
        EXPECT_EQ(out.substr(out.size() - tail.size()), tail) << row.value;
    }
}

TEST_F(EditSimpleTest, DaysOverrideListsDaysAndWeeks) {
    std::string out = CaptureStdout([] { inDaysOverride("D", "", 0, true, true); });
    EXPECT_EQ(out.rfind("<SELECT NAME=\"D_DAYS\" SIZE=\"1\">\n<OPTION VALUE=\"\" SELECTED>", 0),
              0u);
    size_t options = 0;
    for (size_t at = out.find("<OPTION"); at != std::string::npos; at = out.find("<OPTION", at + 1))
        ++options;
    EXPECT_EQ(options, 367u);
    for (const char* line : {"<OPTION VALUE=\"0\">&lt;never&gt;\n", "<OPTION VALUE=\"1\">1 Day\n",
                             "<OPTION VALUE=\"6\">6 Days\n<OPTION VALUE=\"7\">1 Week\n"
                             "<OPTION VALUE=\"8\">8 Days\n",
                             "<OPTION VALUE=\"14\">2 Weeks\n",
                             "<OPTION VALUE=\"364\">52 Weeks\n<OPTION VALUE=\"365\">365 Days\n"
                             "</SELECT>\n"}) {
        EXPECT_NE(out.find(line), std::string::npos) << line;
    }
    EXPECT_EQ(DataMoves, Lines{"if (document.DisplayForm.elements['D_DAYS'].value == '')\n"
                               "        document.PostForm.elements['D'].value = '';\n"
                               "    else\n"
                               "    if (document.DisplayForm.elements['D_COMMENT'].value == '')\n"
                               "        document.PostForm.elements['D'].value = \n"
                               "           document.DisplayForm.elements['D_DAYS'].value;\n"
                               "    else\n"
                               "        document.PostForm.elements['D'].value = \n"
                               "           document.DisplayForm.elements['D_DAYS'].value + ' ' +\n"
                               "           document.DisplayForm.elements['D_COMMENT'].value;\n"});
    EXPECT_EQ(DataEdits, Lines{"CommentChecked((document.DisplayForm.elements['D_DAYS'].value."
                               "length == 0), document.DisplayForm.elements['D_COMMENT'])"});
}

}  // namespace
}  // namespace fields_test
