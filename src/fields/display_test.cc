#include "fields/display.h"

#include <string>

#include "fields/fields_test_support.h"

namespace fields_test {
namespace {

class DisplayTest : public FieldsTest {};

const std::string kLocal =
    "<SCRIPT LANGUAGE=\"JavaScript\">\n<!--\n    document.write(LocalDate('Wed, 5 Jan 2005 "
    "10:20:30 GMT'));\n//-->\n</SCRIPT>\n<span class=\"LOCALLABEL\">(local)</span>";
const std::string kWhen = "<span class=\"INNERPROMPT\">When:&nbsp;</span>\n";
const std::string kRoComment =
    "<span class=\"INNERPROMPTRO\">&nbsp;&nbsp;<wbr>Comment:&nbsp;</span>";
const std::string kIP = "<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>IP:&nbsp;</span>";
const std::string kStatus = "<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>Status:&nbsp;</span>";

struct Row {
    DisplayHandler handler;
    const char* value;
    std::string expected;
};

void Check(const Row* begin, const Row* end) {
    for (const Row* row = begin; row != end; ++row) {
        EXPECT_EQ(CaptureStdout([&] { row->handler(row->value, 0, true, true); }), row->expected)
            << row->value;
    }
}

TEST_F(DisplayTest, TextFlagAndDateForms) {
    const Row rows[] = {
        {outStandard, "abc", "abc\n"},
        {outStandard, "  two words", "two words\n"},
        {outStandard, "", "Not&nbsp;Set\n"},
        {outImmediateChange, "x", "Yes - x\n"},
        {outImmediateChange, " ", "No\n"},
        {outDateComment, "20050105102030Z on leave",
         kWhen + kLocal +
             "<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>Comment:&nbsp;</span>on leave"},
        {outDateComment, "", "Not&nbsp;Set\n"},
        {outDateIP, "20050105102030Z 10.0.0.1", kWhen + kLocal + kIP + "10.0.0.1"},
        {outCountDateIP, "3", "<span class=\"INNERPROMPT\">Count:&nbsp;</span>\n3"},
        {outCountDateIP, "3 garbage 10.1.1.1",
         "<span class=\"INNERPROMPT\">Count:&nbsp;</span>\n3" + kIP + "garbage 10.1.1.1\n"},
        {outSomethingDateIP, "w 20050105102030Z 1.2.3.4",
         "w<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>When:&nbsp;</span>\n" + kLocal + kIP +
             "1.2.3.4\n"},
    };
    Check(std::begin(rows), std::end(rows));
}

TEST_F(DisplayTest, CountAndDaysForms) {
    const std::string count = "<span class=\"INNERPROMPTRO\">Count:&nbsp;</span>";
    const std::string days = "<span class=\"INNERPROMPTRO\">Days&nbsp;</span>";
    const Row rows[] = {
        {outCountComment, "2 grace used", count + "2" + kRoComment + "grace used"},
        {outCountComment, "2", count + "2"},
        {outCountComment, "", "Not&nbsp;Set"},
        {outDaysOverride, "0", "&lt;never&gt;"},
        {outDaysOverride, "000 why", "&lt;never&gt;" + kRoComment + "why"},
        {outDaysOverride, "30 temporary", days + "30" + kRoComment + "temporary"},
        {outDaysOverride, "007", days + "7"},
        {outDaysOverride, "100", days + "100"},
        {outDaysOverride, "", "&lt;default&gt;"},
    };
    Check(std::begin(rows), std::end(rows));
}

TEST_F(DisplayTest, DateStatusIP) {
    const Row rows[] = {
        {outDateStatusIP, "20050105102030Z FAILED 10.1.1.1",
         kWhen + kLocal + kStatus + "<span class=\"STATUSFAILED\">FAILED</span>\n" + kIP +
             "10.1.1.1"},
        {outDateStatusIP, "20050105102030Z", kWhen + kLocal},
        {outDateStatusIP, "SUCCESS 1.2.3.4 x", kStatus + "SUCCESS" + kIP + "1.2.3.4 x"},
        {outDateStatusIP, "", "Not&nbsp;Set\n"},
    };
    Check(std::begin(rows), std::end(rows));
}

TEST_F(DisplayTest, HistoryWritesLogEntryStatements) {
    const Row rows[] = {
        {outHistory, "",
         "    W.document.write('<tr><td width=\"100%\" valign=\"middle\">');\n"
         "    W.document.write('Not&nbsp;Set');\n"
         "    W.document.writeln('</td></tr>');\n"},
        {outHistory, "20050105102030Z",
         "    LogEntry(W, 'Wed, 5 Jan 2005 10:20:30 GMT', '', '', '');\n"},
        {outHistory, "20050105102030Z FAILED 10.1.1.1 bad  password",
         "    LogEntry(W, 'Wed, 5 Jan 2005 10:20:30 GMT', '<span class=\"STATUSFAILED\">FAILED"
         "</span>', '10.1.1.1', 'bad  password');\n"},
        // Not a date: the first word is the status.
        {outHistory, "SUCCESS 1.2.3.4",
         "    LogEntry(W, '', '<span class=\"STATUSSUCCESS\">SUCCESS</span>', '1.2.3.4', '');\n"},
        {outHistory, "20050105102030Z ",
         "    LogEntry(W, 'Wed, 5 Jan 2005 10:20:30 GMT', '<span class=\"STATUS\"></span>', '', "
         "'');\n"},
    };
    Check(std::begin(rows), std::end(rows));
}

const std::string kRedirectHead =
    "<table width=\"100%\">\n<thead>\n<th width=\"1%\"></th>\n<th width=\"1%\"></th>\n"
    "<th align=\"center\" width=\"1%\">When:</th>\n<th align=\"center\" width=\"1%\">IP:</th>\n"
    "<th>Comment:</th>\n</thead>\n";

TEST_F(DisplayTest, GenRedirectTable) {
    const std::string dated =
        "<tr>\n<td nowrap><span class=\"INNERPROMPT\">PWD&nbsp;</span></td>\n"
        "<td align=\"center\" nowrap>http://x/?a=b</td>\n<td nowrap>\n"
        "<SCRIPT LANGUAGE=\"JavaScript\">\n<!--\n"
        "    InsertLocalDate2('Wed, 5 Jan 2005 10:20:30 GMT');\n//-->\n</SCRIPT>\n</td>\n"
        "<td>10.1.1.1</td>\n<td>note</td>\n</tr>\n";
    const std::string undated =
        "<tr>\n<td nowrap><span class=\"INNERPROMPT\">NOEQ&nbsp;</span></td>\n"
        "<td align=\"center\" nowrap></td>\n<td></td>\n<td></td>\n</tr>\n";
    const char* value = "PWD=http://x/?a=b 20050105102030Z 10.1.1.1 note dropped";
    EXPECT_EQ(CaptureStdout([&] { outGenRedirect(value, 0, true, true); }),
              kRedirectHead + dated + "</table>\n");
    EXPECT_EQ(CaptureStdout([&] { outGenRedirect(value, 0, true, false); }), kRedirectHead + dated);
    EXPECT_EQ(CaptureStdout([] { outGenRedirect("NOEQ", 1, false, true); }),
              undated + "</table>\n");
    EXPECT_EQ(CaptureStdout([] { outGenRedirect(" ", -1, true, true); }), "Not&nbsp;Set\n");
}

TEST_F(DisplayTest, GenRedirectKeyIsItsOwnMessageKey) {
    Lang = GetLanguage("LXRAdmin", "", nullptr, true);
    std::string out = CaptureStdout([] { outGenRedirect("PWD=t", 0, false, false); });
    delete Lang;
    EXPECT_EQ(out,
              "<tr>\n<td nowrap><span class=\"INNERPROMPT\">[PWD] PWD&nbsp;</span></td>\n"
              "<td align=\"center\" nowrap>t</td>\n<td></td>\n<td></td>\n</tr>\n");
}

}  // namespace
}  // namespace fields_test
