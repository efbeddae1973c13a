// Which choice an edit handler offers checked for a stored value: the rows'
// whole markup and scripts stand in the golden display pages.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "fields/edit_date.h"
#include "fields/edit_simple.h"
#include "fields/field_model.h"
#include "support/request_reset.h"

namespace {

using lxrtest::CaptureStdout;
using lxrtest::SetZone;

class ChoicesTest : public lxrtest::RequestTest {};

using Lines = std::vector<std::string>;

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

// 2005-07-05 10:20:30 UTC.
constexpr time_t kJuly = 1120558830;

// The current value checked, "now" offered as the other choice
// (broken down in UTC whatever the process's zone), nothing to offer when blank.
TEST_F(ChoicesTest, ResetToNowOffersCurrentValueAndNow) {
    struct Row {
        EditHandler handler;
        const char* zone;
        const char* value;
        Radios radios;
        Lines moves;
    };
    const Row rows[] = {
        {inDateCommentOrNow,
         "UTC",
         " 20050105102030Z two words",
         {{"20050105102030Z two words", true}, {"20050705102030Z", false}},
         {"RadioMove('B', 2);\n"}},
        {inCountDateOrNow,
         "XYZ-3",
         "2 20050105102030Z 10.1.1.1",
         {{"2 20050105102030Z 10.1.1.1", true}, {"0 20050705102030Z", false}},
         {"RadioMove('B', 2);\n"}},
        {inDateCommentOrNow, "UTC", "  ", {}, {}},
        {inCountDateOrNow, "UTC", "", {}, {}},
    };
    for (const Row& row : rows) {
        StartRequest();
        Now = kJuly;
        SetZone(row.zone);
        Finisher result = nullptr;
        std::string out =
            CaptureStdout([&] { result = row.handler("B", row.value, 0, true, true); });
        EXPECT_EQ(ReadRadios(out), row.radios) << row.value;
        if (row.radios.empty()) {
            EXPECT_EQ(out, "Not&nbsp;Set\n");
        }
        EXPECT_EQ(result, nullptr);
        EXPECT_EQ(DataMoves, row.moves) << row.value;
        EXPECT_TRUE(DataEdits.empty());
    }
}

TEST_F(ChoicesTest, ScheduleHandlersCheckTheMatchingChoice) {
    struct Row {
        EditHandler handler;
        const char* name;
        const char* value;
        Radios radios;
        const char* date;
        const char* comment;
    };
    const char* wed = "Wed, 5 Jan 2005 10:20:30 GMT";
    const Row rows[] = {
        {inDisableAfter,
         "A",
         "20050105102030Z on leave",
         {{"20050105102030Z on leave", true}, {"", false}},
         wed,
         "on"},
        {inDisableAfter, "A", "", {{"", false}, {"", true}}, "", ""},
        {inDisableAfter,
         "A",
         " garbage words",
         {{"garbage words", false}, {"", true}},
         "",
         "words"},
        {inMustLoginBy, "M", "20050105102030Z", {{"20050105102030Z", true}, {"", false}}, wed, ""},
        {inDisableUntil,
         "U",
         "20050105102030Z back",
         {{"20050105102030Z back", true}, {"FOREVER", false}, {"", false}},
         wed,
         "back"},
        {inDisableUntil,
         "U",
         "FOREVER vacation time",
         {{"FOREVER vacation time", false}, {"FOREVER", true}, {"", false}},
         "",
         "vacation"},
        {inDisableUntil,
         "U",
         "forever x",
         {{"forever x", false}, {"FOREVER", false}, {"", true}},
         "",
         "x"},
        {inDisableUntil, "U", "", {{"", false}, {"FOREVER", false}, {"", true}}, "", ""},
    };
    for (const Row& row : rows) {
        StartRequest();
        std::string out = CaptureStdout([&] { row.handler(row.name, row.value, 0, true, true); });
        EXPECT_EQ(ReadRadios(out), row.radios) << row.value;
        std::string entry = "    DateEntry('" + std::string(row.name) + "', '";
        EXPECT_EQ(Between(out, entry, "', "), row.date) << row.value;
        EXPECT_EQ(Between(out, "_COMMENT\" VALUE=\"", "\""), row.comment) << row.value;
        EXPECT_EQ(DataEdits.size(), 1u);
        EXPECT_EQ(DataMoves.size(), 1u);
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

TEST_F(ChoicesTest, DaysOverrideSelectsOneOption) {
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

// The options are made once and kept; other units (another language) must
// show in the next list.
TEST_F(ChoicesTest, DaysOverrideFollowsTheUnits) {
    std::string before = CaptureStdout([] { inDaysOverride("D", "14", 0, true, true); });
    tagWeeks = "Wochen";
    std::string after = CaptureStdout([] { inDaysOverride("D", "14", 0, true, true); });
    EXPECT_EQ(SelectedLines(before), Lines{"<OPTION VALUE=\"14\" SELECTED>2 Weeks"});
    EXPECT_EQ(SelectedLines(after), Lines{"<OPTION VALUE=\"14\" SELECTED>2 Wochen"});
    EXPECT_NE(after.find("<OPTION VALUE=\"21\">3 Wochen\n"), std::string::npos);
}

}  // namespace
