#include "fields/edit_date.h"

#include <string>
#include <utility>
#include <vector>

#include "fields/fields_test_support.h"

namespace fields_test {
namespace {

class EditDateTest : public FieldsTest {};

using Lines = std::vector<std::string>;

// The onClick scripts as the browser receives them, for attributes A
// (disable after), M (must login by) and U (disable until).
const char kClickA[] =
    "if (document.DisplayForm.elements['A'][0].checked)  if (GetDate('A').valueOf() < Now"
    "().valueOf()) {    document.DisplayForm.elements['A_IMAGE'].src='../korvelagent/dmsp"
    "ages/Disabled.gif';     document.DisplayForm.elements['A_IMAGE'].title='User will no"
    "t be able to login';  } else {    document.DisplayForm.elements['A_IMAGE'].src='../k"
    "orvelagent/dmspages/Blank.gif';    document.DisplayForm.elements['A_IMAGE'].title=''"
    "; }else{   document.DisplayForm.elements['A_IMAGE'].src='../korvelagent/dmspages/Bla"
    "nk.gif';   document.DisplayForm.elements['A_IMAGE'].title='';}";
const char kClickM[] =
    "if (document.DisplayForm.elements['M'][0].checked)  if (GetDate('M').valueOf() < Now"
    "().valueOf()) {    document.DisplayForm.elements['M_IMAGE'].src='../korvelagent/dmsp"
    "ages/Disabled.gif';     document.DisplayForm.elements['M_IMAGE'].title='User will no"
    "t be able to login';  } else {    document.DisplayForm.elements['M_IMAGE'].src='../k"
    "orvelagent/dmspages/Blank.gif';    document.DisplayForm.elements['M_IMAGE'].title=''"
    "; }else {   document.DisplayForm.elements['M_IMAGE'].src='../korvelagent/dmspages/Bl"
    "ank.gif';   document.DisplayForm.elements['M_IMAGE'].title=''; }";
const char kClickU[] =
    "if (document.DisplayForm.elements['U'][0].checked)     if (GetDate('U').valueOf() > "
    "Now().valueOf())    {       document.DisplayForm.elements['U_IMAGE'].src='../korvela"
    "gent/dmspages/Disabled.gif';        document.DisplayForm.elements['U_IMAGE'].title='"
    "User will not be able to login';     }    else    {       document.DisplayForm.eleme"
    "nts['U_IMAGE'].src='../korvelagent/dmspages/Blank.gif';        document.DisplayForm."
    "elements['U_IMAGE'].title='';     }else    if (document.DisplayForm.elements['U'][1]"
    ".checked)     {        document.DisplayForm.elements['U_IMAGE'].src='../korvelagent/"
    "dmspages/Disabled.gif';         document.DisplayForm.elements['U_IMAGE'].title='User"
    " will not be able to login';     }    else    {       document.DisplayForm.elements["
    "'U_IMAGE'].src='../korvelagent/dmspages/Blank.gif';       document.DisplayForm.eleme"
    "nts['U_IMAGE'].title='';     } ";

const std::string kLocal =
    "<SCRIPT LANGUAGE=\"JavaScript\">\n<!--\n    document.write(LocalDate('Wed, 5 Jan 2005 "
    "10:20:30 GMT'));\n//-->\n</SCRIPT>\n<span class=\"LOCALLABEL\">(local)</span>";

// 2005-07-05 10:20:30 UTC.
constexpr time_t kJuly = 1120558830;

TEST_F(EditDateTest, ResetToNowOffersCurrentValueAndNow) {
    struct Row {
        EditHandler handler;
        const char* zone;
        const char* value;
        std::string output;
        Lines moves;
    };
    const std::string nowRow =
        "</td>\n<td><span class=\"INNERPROMPT\">Reset&nbsp;to&nbsp;Now</span>\n</td>\n</tr>\n"
        "</table>\n";
    const Row rows[] = {
        {inDateCommentOrNow,
         "UTC",
         " 20050105102030Z two words",
         "<table border=\"0\">\n<tr><td width=\"1\">\n"
         "<INPUT TYPE=\"RADIO\" NAME=\"B\" VALUE=\"20050105102030Z two words\" CHECKED></td>\n"
         "<td><span class=\"INNERPROMPT\">When:&nbsp;</span>\n" +
             kLocal +
             "<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>Comment:&nbsp;</span>two words"
             "</td>\n</tr>\n<tr><td width=\"1\">\n"
             "<INPUT TYPE=\"RADIO\" NAME=\"B\" VALUE=\"20050705102030Z\">" +
             nowRow,
         {"RadioMove('B', 2);\n"}},
        // Now is broken down in UTC whatever the process's zone.
        {inCountDateOrNow,
         "XYZ-3",
         "2 20050105102030Z 10.1.1.1",
         "<table border=\"0\">\n<tr><td width=\"1\">\n"
         "<INPUT TYPE=\"RADIO\" NAME=\"B\" VALUE=\"2 20050105102030Z 10.1.1.1\" CHECKED></td>\n"
         "<td><span class=\"INNERPROMPT\">Count:&nbsp;</span>\n2"
         "<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>When:&nbsp;</span>\n" +
             kLocal +
             "<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>IP:&nbsp;</span>10.1.1.1\n"
             "</td>\n</tr>\n<tr><td width=\"1\">\n"
             "<INPUT TYPE=\"RADIO\" NAME=\"B\" VALUE=\"0 20050705102030Z\">" +
             nowRow,
         {"RadioMove('B', 2);\n"}},
        {inDateCommentOrNow, "UTC", "  ", "Not&nbsp;Set\n", {}},
        {inCountDateOrNow, "UTC", "", "Not&nbsp;Set\n", {}},
    };
    Now = kJuly;
    for (const Row& row : rows) {
        ClearLists();
        SetZone(row.zone);
        Finisher result = nullptr;
        EXPECT_EQ(Captured([&] { result = row.handler("B", row.value, 0, true, true); }),
                  row.output)
            << row.value;
        EXPECT_EQ(result, nullptr);
        EXPECT_EQ(DataMoves, row.moves) << row.value;
        EXPECT_TRUE(DataEdits.empty());
    }
}

TEST_F(EditDateTest, DisableUntilForeverWithComment) {
    const std::string c = kClickU;
    std::string out = Captured([] { inDisableUntil("U", "FOREVER vacation time", 0, true, true); });
    EXPECT_EQ(
        out,
        "<table border=\"0\">\n<tr>"
        "<td width=\"1\"><INPUT TYPE=\"RADIO\" NAME=\"U\" VALUE=\"FOREVER vacation time\" "
        "onClick=\"" +
            c +
            "\"></td>\n"
            "<td>\n<SCRIPT LANGUAGE=\"JavaScript\">\n<!--\n"
            "    DateEntry('U', '', \"" +
            c +
            "\");\n//-->\n</SCRIPT>\n"
            "<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>Comment:</span>"
            "<INPUT TYPE=\"TEXT\" NAME=\"U_COMMENT\" VALUE=\"vacation\" SIZE=\"20\" "
            "MAXLENGTH=\"20\"></td></tr>\n"
            "<tr><td width=\"1\"><INPUT TYPE=\"RADIO\" NAME=\"U\" VALUE=\"FOREVER\" onClick=\"" +
            c +
            "\"  CHECKED></td>\n"
            "<td><span class=\"INNERPROMPT\">Forever</span></td>\n</tr><tr>"
            "<td width=\"1\"><INPUT TYPE=\"RADIO\" NAME=\"U\" VALUE=\"\" onClick=\"" +
            c +
            "\" ></td>\n"
            "<td><span class=\"INNERPROMPT\">Not&nbsp;Set</span></td>\n</tr></table>\n");
    EXPECT_EQ(DataEdits,
              Lines{"(document.DisplayForm.elements['U'][0].checked) && InvalidDate('U')"});
    EXPECT_EQ(DataMoves, Lines{"if (document.DisplayForm.elements['U'][0].checked)\n"
                               "        document.PostForm.elements['U'].value = ConvertDate('U');\n"
                               "    else\n"
                               "    if (document.DisplayForm.elements['U'][1].checked)\n"
                               "        document.PostForm.elements['U'].value = 'FOREVER ' + "
                               "document.DisplayForm.elements['U_COMMENT'].value;\n"
                               "    else\n"
                               "        document.PostForm.elements['U'].value = '';\n"});
}

// Radio VALUEs in page order, each with whether it is checked.
using Radios = std::vector<std::pair<std::string, bool>>;

Radios ReadRadios(const std::string& out) {
    Radios radios;
    const std::string open = "<INPUT TYPE=\"RADIO\"";
    for (size_t at = out.find(open); at != std::string::npos; at = out.find(open, at + 1)) {
        size_t value = out.find("VALUE=\"", at) + 7;
        size_t end = out.find("></td>", at);  // the scripts hold "<" and ">" themselves
        radios.emplace_back(out.substr(value, out.find('"', value) - value),
                            out.compare(end - 8, 8, " CHECKED") == 0);
    }
    return radios;
}

// The text between `before` and the next `after`, or "?" when absent.
std::string Between(const std::string& out, const std::string& before, const std::string& after) {
    size_t at = out.find(before);
    if (at == std::string::npos) return "?";
    at += before.size();
    return out.substr(at, out.find(after, at) - at);
}

TEST_F(EditDateTest, ScheduleHandlersCheckTheMatchingChoice) {
    struct Row {
        EditHandler handler;
        const char* name;
        const char* value;
        Radios radios;
        const char* date;
        const char* comment;
        const char* click;
    };
    const char* wed = "Wed, 5 Jan 2005 10:20:30 GMT";
    const Row rows[] = {
        {inDisableAfter,
         "A",
         "20050105102030Z on leave",
         {{"20050105102030Z on leave", true}, {"", false}},
         wed,
         "on",
         kClickA},
        {inDisableAfter, "A", "", {{"", false}, {"", true}}, "", "", kClickA},
        {inDisableAfter,
         "A",
         " garbage words",
         {{"garbage words", false}, {"", true}},
         "",
         "words",
         kClickA},
        {inMustLoginBy,
         "M",
         "20050105102030Z",
         {{"20050105102030Z", true}, {"", false}},
         wed,
         "",
         kClickM},
        {inDisableUntil,
         "U",
         "20050105102030Z back",
         {{"20050105102030Z back", true}, {"FOREVER", false}, {"", false}},
         wed,
         "back",
         kClickU},
        {inDisableUntil,
         "U",
         "forever x",
         {{"forever x", false}, {"FOREVER", false}, {"", true}},
         "",
         "x",
         kClickU},
        {inDisableUntil, "U", "", {{"", false}, {"FOREVER", false}, {"", true}}, "", "", kClickU},
    };
    for (const Row& row : rows) {
        ClearLists();
        std::string out = Captured([&] { row.handler(row.name, row.value, 0, true, true); });
        EXPECT_EQ(ReadRadios(out), row.radios) << row.value;
        std::string entry = "    DateEntry('" + std::string(row.name) + "', '";
        EXPECT_EQ(Between(out, entry, "', "), row.date) << row.value;
        EXPECT_EQ(Between(out, "_COMMENT\" VALUE=\"", "\""), row.comment) << row.value;
        EXPECT_EQ(Between(out, "onClick=\"", "\""), row.click) << row.value;
        EXPECT_EQ(DataEdits.size(), 1u);
        EXPECT_EQ(DataMoves.size(), 1u);
    }
}

TEST_F(EditDateTest, DisableAfterAndMustLoginByShareTheirCopyStatement) {
    for (EditHandler handler : {inDisableAfter, inMustLoginBy}) {
        ClearLists();
        Captured([&] { handler("A", "", 0, true, true); });
        EXPECT_EQ(DataMoves,
                  Lines{"if (document.DisplayForm.elements['A'][0].checked)\n"
                        "        document.PostForm.elements['A'].value = ConvertDate('A');\n"
                        "    else\n"
                        "        document.PostForm.elements['A'].value = '';\n"});
        EXPECT_EQ(DataEdits,
                  Lines{"(document.DisplayForm.elements['A'][0].checked) && InvalidDate('A')"});
    }
}

}  // namespace
}  // namespace fields_test
