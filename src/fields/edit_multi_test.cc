#include "fields/edit_multi.h"

#include <string>
#include <vector>

#include "fields/fields_test_support.h"

namespace fields_test {
namespace {

class EditMultiTest : public FieldsTest {};

using Lines = std::vector<std::string>;

TEST_F(EditMultiTest, HistoryShowsEntriesAndOneClearBox) {
    const char* entries[] = {"20050105102030Z FAILED 10.1.1.1", "SUCCESS 1.2.3.4",
                             "20050105102030Z"};
    std::vector<Finisher> results;
    std::string out = CaptureStdout([&] {
        for (int i = 0; i < 3; ++i)
            results.push_back(inHistory("H", entries[i], i, i == 0, i == 2));
        results.back()("H", 3);
    });
    EXPECT_EQ(results, std::vector<Finisher>(3, ResetHistory));
    EXPECT_EQ(
        out,
        "    LogEntry(W, 'Wed, 5 Jan 2005 10:20:30 GMT', '<span class=\"STATUSFAILED\">"
        "FAILED</span>', '10.1.1.1', '');\n"
        "    LogEntry(W, '', '<span class=\"STATUSSUCCESS\">SUCCESS</span>', '1.2.3.4', '');\n"
        "    LogEntry(W, 'Wed, 5 Jan 2005 10:20:30 GMT', '', '', '');\n"
        "<br><span class=\"INNERPROMPT\"><INPUT TYPE=\"CHECKBOX\" NAME=\"H\" VALUE=\"YES\">"
        "Clear</span>\n");
    ASSERT_EQ(OutputFields.size(), 1u);
    EXPECT_EQ(OutputFields[0].name, "H");
    EXPECT_EQ(OutputFields[0].value, "0");
    EXPECT_EQ(DataMoves, Lines{"if (document.DisplayForm.elements['H'].checked)\n"
                               "        document.PostForm.elements['H'].value = '1';\n"
                               "    else\n"
                               "        document.PostForm.elements['H'].value = '0';\n"});
    EXPECT_TRUE(DataEdits.empty());
}

TEST_F(EditMultiTest, EmptyHistoryOffersNothingToClear) {
    std::string out = CaptureStdout([] {
        Finisher finish = inHistory("H", "", -1, true, true);
        if (finish != nullptr) finish("H", 0);
    });
    EXPECT_EQ(out,
              "    W.document.write('<tr><td width=\"100%\" valign=\"middle\">');\n"
              "    W.document.write('Not&nbsp;Set');\n"
              "    W.document.writeln('</td></tr>');\n");
    EXPECT_TRUE(OutputFields.empty());
    EXPECT_TRUE(DataMoves.empty());
}

// The rows' whole markup stands in the golden display pages (sybil); here the
// table opened by the first entry and closed by the last, the key and target
// read from the entry, and the copy statement of each row's index.
TEST_F(EditMultiTest, RedirectRowsAndCopyStatements) {
    struct Row {
        const char* value;
        int index;
        bool first, last;
        const char* cells;  // the key and target cells
        std::string move;
    };
    const Row rows[] = {
        // One entry: the table opens and closes, the script is unindexed.
        {" PWD=http://x/ 20050105102030Z 10.1.1.1 note more", 0, true, true,
         "PWD&nbsp;</span></td>\n<td align=\"center\" nowrap>http://x/</td>",
         "if (document.DisplayForm.elements['R'].checked)\n"
         "        document.PostForm.elements['R'].value = 'PWD=0';\n"
         "    else\n"
         "        document.PostForm.elements['R'].value = 'PWD=http://x/ 20050105102030Z "
         "10.1.1.1 note more';\n"},
        // Several entries: each row addresses its own index.
        {"A=a", 0, true, false, "A&nbsp;</span></td>\n<td align=\"center\" nowrap>a</td>",
         "if (document.DisplayForm.elements['R'][0].checked)\n"
         "        document.PostForm.elements['R'][0].value = 'A=0';\n"
         "    else\n"
         "        document.PostForm.elements['R'][0].value = 'A=a';\n"},
        // No "=": the whole first word is the key, the target cell is empty.
        {"NOEQ notadate", 1, false, true,
         "NOEQ&nbsp;</span></td>\n<td align=\"center\" nowrap></td>\n<td></td>",
         "if (document.DisplayForm.elements['R'][1].checked)\n"
         "        document.PostForm.elements['R'][1].value = 'NOEQ=0';\n"
         "    else\n"
         "        document.PostForm.elements['R'][1].value = 'NOEQ notadate';\n"},
    };
    for (const Row& row : rows) {
        ClearLists();
        Finisher result = ResetHistory;
        std::string out = CaptureStdout(
            [&] { result = inGenRedirect("R", row.value, row.index, row.first, row.last); });
        EXPECT_EQ(out.rfind("<table", 0) == 0, row.first) << out;
        EXPECT_EQ(out.size() > 9 && out.substr(out.size() - 9) == "</table>\n", row.last) << out;
        EXPECT_NE(out.find(row.cells), std::string::npos) << out;
        EXPECT_EQ(result, nullptr);  // the caller records each entry's hidden field
        EXPECT_EQ(DataMoves, Lines{row.move}) << row.value;
        EXPECT_TRUE(OutputFields.empty());
    }
}

TEST_F(EditMultiTest, EmptyRedirectShowsNotSet) {
    Finisher result = ResetHistory;
    EXPECT_EQ(CaptureStdout([&] { result = inGenRedirect("R", " ", -1, true, true); }),
              "Not&nbsp;Set\n");
    EXPECT_EQ(result, nullptr);
    EXPECT_TRUE(DataMoves.empty());
}

}  // namespace
}  // namespace fields_test
