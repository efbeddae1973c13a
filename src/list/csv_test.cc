#include "list/csv.h"

#include <gtest/gtest.h>

namespace {

TEST(Csv, QuotesAndNeutralisesFormulas) {
    struct Case {
        const char* text;
        const char* cell;
    } cases[] = {
        {"alice", "alice"},
        {"", ""},
        {"uid=alice,ou=staff", "\"uid=alice,ou=staff\""},
        {"say \"hi\"", "\"say \"\"hi\"\"\""},
        {"two\nlines", "\"two\nlines\""},
        {"=HYPERLINK(\"http://x\")", "\"'=HYPERLINK(\"\"http://x\"\")\""},
        {"+1", "'+1"},
        {"-2+3", "'-2+3"},
        {"@SUM(A1)", "'@SUM(A1)"},
        {"\tcmd", "'\tcmd"},
        {"\r=1", "\"'\r=1\""},
        {"a=b", "a=b"},
        {"日本", "日本"},
    };
    for (const Case& c : cases) EXPECT_EQ(CsvCell(c.text), c.cell) << c.text;
    EXPECT_EQ(CsvRecord({"a", "b,c", ""}), "a,\"b,c\",\r\n");
}

}  // namespace
