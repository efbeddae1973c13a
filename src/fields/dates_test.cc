#include "fields/dates.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fields/field_model.h"
#include "i18n/language.h"
#include "platform/formatter.h"
#include "support/request_reset.h"

namespace {

using lxrtest::CaptureStdout;
using lxrtest::SetZone;

class DatesTest : public lxrtest::RequestTest {};

// The "When" script lines and local label for one GMT text.
std::string Local(const std::string& gmt) {
    return "<SCRIPT LANGUAGE=\"JavaScript\">\n<!--\n    document.write(LocalDate('" + gmt +
           "'));\n//-->\n</SCRIPT>\n<span class=\"LOCALLABEL\">(local)</span>";
}

const char kWed[] = "Wed, 5 Jan 2005 10:20:30 GMT";
const char kBerlin[] = "CET-1CEST,M3.5.0,M10.5.0/3";

TEST_F(DatesTest, ConvertDateReadsStampsAsUtcExceptUnderSummerTime) {
    struct Row {
        const char* zone;
        const char* stamp;
        time_t expected;
    };
    const Row rows[] = {
        {"UTC", "20050105102030Z", 1104920430},
        {"XYZ-3", "20050105102030Z", 1104920430},
        {"XYZ+5", "20050105102030Z", 1104920430},
        {kBerlin, "20050105102030Z", 1104920430},
        // On summer time the result is one hour before the stamp's instant.
        {kBerlin, "20050705102030Z", 1120558830 - 3600},
        {"UTC", "20050705102030Z", 1120558830},
        {"UTC", "20050105102030Z trailing words", 1104920430},
        {"UTC", "20050132102030Z", 1107253230},  // day 32 rolls into February
        {"UTC", "19700101000001Z", 1},
        {"UTC", "19700101000000Z", 0},  // the epoch itself is "not a date"
        {"XYZ-3", "19700101000000Z", 0},
        {"UTC", "19691231235959Z", 0},  // -1 is mktime's failure value
        {"UTC", "20050105102030", 0},   // no Z
        {"UTC", "2005010510203Z", 0},   // 14 characters
        {"UTC", "20050105102030X", 0},
        {"UTC", "garbagegarbageZ", 0},
        {"UTC", "", 0},
    };
    for (const Row& row : rows) {
        SetZone(row.zone);
        EXPECT_EQ(ConvertDate(row.stamp), row.expected) << row.zone << " " << row.stamp;
    }
    EXPECT_EQ(ConvertDate(nullptr), 0);
}

TEST_F(DatesTest, OutDateShowsGmtText) {
    struct Row {
        const char* zone;
        const char* stamp;
        const char* expected;
    };
    const Row rows[] = {
        {"UTC", "20050105102030Z", kWed},
        {"XYZ-3", "20050105102030Z", kWed},
        {kBerlin, "20050105102030Z abc", kWed},
        {kBerlin, "20050705102030Z", "Tue, 5 Jul 2005 09:20:30 GMT"},
        {"UTC", "20050132000509Z", "Tue, 1 Feb 2005 00:05:09 GMT"},
        {"UTC", "20051231235959Z", "Sat, 31 Dec 2005 23:59:59 GMT"},
        {"UTC", "19700101000000Z", ""},
        {"UTC", "2005010510203Z", ""},
        {"UTC", "20050105102030", ""},
    };
    for (const Row& row : rows) {
        SetZone(row.zone);
        EXPECT_EQ(OutDate(row.stamp), row.expected) << row.zone << " " << row.stamp;
    }
    EXPECT_EQ(OutDate(nullptr), "");
    // A caller's formatted text survives a conversion.
    prtFormatter.sprintf("kept %s", "text");
    OutDate("20050105102030Z");
    EXPECT_STREQ(prtFormatter.c_str(), "kept text");
}

TEST_F(DatesTest, OutDateTranslatesDayAndMonthNames) {
    // A translator that shows its keys reveals which entries were asked for.
    Lang = GetLanguage("LXRAdmin", "", nullptr, true);
    EXPECT_EQ(OutDate("20050105102030Z"),
              "[KV-LXR-12083] Wed, 5 [KV-LXR-12047] Jan 2005 10:20:30 GMT");
    EXPECT_EQ(OutDate("20051211000000Z"),
              "[KV-LXR-12080] Sun, 11 [KV-LXR-12058] Dec 2005 00:00:00 GMT");
    delete Lang;
}

TEST_F(DatesTest, NextTokenSplitsOnBlanks) {
    struct Row {
        const char* text;
        std::vector<std::string> words;
    };
    const Row rows[] = {
        {"a b c", {"a", "b", "c"}},
        {"  lead\t\ttab\nnew  ", {"lead", "tab", "new"}},
        {"one", {"one"}},
        {"   ", {}},
        {"", {}},
    };
    for (const Row& row : rows) {
        const char* cursor = row.text;
        std::vector<std::string> words;
        for (std::string w = NextToken(cursor); !w.empty(); w = NextToken(cursor)) {
            words.push_back(w);
        }
        EXPECT_EQ(words, row.words) << row.text;
        EXPECT_EQ(*cursor, '\0') << row.text;
    }
    const char* cursor = "first  second third";
    NextToken(cursor);
    EXPECT_STREQ(cursor, "second third");  // the blanks after the word are consumed
    const char* none = nullptr;
    EXPECT_EQ(NextToken(none), "");
}

TEST_F(DatesTest, DateSomethingRendersDateAndRest) {
    const std::string when = "<span class=\"INNERPROMPT\">When:&nbsp;</span>\n";
    const std::string comment =
        "<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>Comment:&nbsp;</span>";
    struct Row {
        const char* value;
        std::string expected;
    };
    const Row rows[] = {
        {"", "Not&nbsp;Set\n"},
        {" \t", "Not&nbsp;Set\n"},
        {"20050105102030Z", when + Local(kWed)},
        {"  20050105102030Z abc def", when + Local(kWed) + comment + "abc def"},
        {"20050105102030Z   spaced  out ", when + Local(kWed) + comment + "spaced  out "},
        // 16 characters: the label is written even though nothing follows.
        {"20050105102030Z ", when + Local(kWed) + comment},
        {"20050105102030 abc",
         "<span class=\"INNERPROMPT\">Comment:&nbsp;</span>20050105102030 abc\n"},
        {"garbage", "<span class=\"INNERPROMPT\">Comment:&nbsp;</span>garbage\n"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(CaptureStdout([&] { DateSomething(row.value, tagComment.c_str()); }),
                  row.expected)
            << row.value;
    }
    EXPECT_EQ(CaptureStdout([] { DateSomething(nullptr, "x"); }), "Not&nbsp;Set\n");
}

TEST_F(DatesTest, SomethingDateSomethingRendersWordDateAndRest) {
    const std::string count = "<span class=\"INNERPROMPT\">Count:&nbsp;</span>\n";
    const std::string when = "<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>When:&nbsp;</span>\n";
    const std::string ip = "<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>IP:&nbsp;</span>";
    struct Row {
        const char* value;
        const char* firstLabel;
        std::string expected;
    };
    const Row rows[] = {
        {"", "Count:", "Not&nbsp;Set\n"},
        {"3", "Count:", count + "3"},
        {" 3   ", "Count:", count + "3"},
        {"3 garbage 10.1.1.1", "Count:", count + "3" + ip + "garbage 10.1.1.1\n"},
        {"3 20050105102030Z", "Count:", count + "3" + when + Local(kWed)},
        {"3 20050105102030Z 10.1.1.1",
         "Count:", count + "3" + when + Local(kWed) + ip + "10.1.1.1\n"},
        {"x 20050105102030Z  a b", nullptr, "x" + when + Local(kWed) + ip + "a b\n"},
        {"x 20050105102030Z", "", "x" + when + Local(kWed)},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(CaptureStdout(
                      [&] { outSomethingDateSomething(row.value, row.firstLabel, tagIP.c_str()); }),
                  row.expected)
            << row.value;
    }
}

// LXR_NOW fixes the request's instant only when it is all digits and fits.
TEST_F(DatesTest, NowHonoursFixedClock) {
    struct Row {
        const char* env;  // null: unset
        bool fixed;
        time_t expected;
    };
    const Row rows[] = {
        {"1104920430", true, 1104920430},
        {"0", true, 0},
        {"12abc", false, 0},
        {"-5", false, 0},
        {"", false, 0},
        {"99999999999999999999999", false, 0},
        {nullptr, false, 0},
    };
    for (const Row& row : rows) {
        lxrtest::ScopedEnv env("LXR_NOW", row.env);
        time_t before = time(nullptr);
        InitNow();
        if (row.fixed) {
            EXPECT_EQ(Now, row.expected) << row.env;
        } else {
            EXPECT_GE(Now, before) << (row.env ? row.env : "(unset)");
            EXPECT_LE(Now, time(nullptr));
        }
    }
}

}  // namespace
