#include "list/list_request.h"

#include <gtest/gtest.h>

namespace {

TEST(ListRequest, ReadsAndWritesTheRequestDocument) {
    struct Case {
        FieldMap args;
        const char* problem;   // "" when accepted
        const char* document;  // the request document when accepted
    } cases[] = {
        {{{"DIR", "staff"}}, "", R"(<ListRequest directory="staff" list="locked" size="50"/>)"},
        {{{"dir", "staff"}, {"list", "expiring"}, {"days", "14"}, {"size", "1000"}},
         "",
         R"(<ListRequest directory="staff" list="expiring" days="14" size="1000"/>)"},
        {{{"DIR", "p"}, {"LIST", "search"}, {"START", "sam s"}, {"NEXT", "c2FtLnNtaXRoMQ=="}},
         "",
         R"(<ListRequest directory="p" list="search" start="sam s" size="50" continuation="c2FtLnNtaXRoMQ=="/>)"},
        // Days are written only for the lists that take them.
        {{{"DIR", "s"}, {"LIST", "disabled"}, {"DAYS", "3"}},
         "",
         R"(<ListRequest directory="s" list="disabled" size="50"/>)"},
        {{{"LIST", "Locked"}}, "LIST", ""},
        {{{"DIR", "s"}, {"LIST", "search"}},
         "",
         R"(<ListRequest directory="s" list="search" start="" size="50"/>)"},
        {{{"DAYS", "0"}}, "DAYS", ""},
        {{{"DAYS", "3651"}}, "DAYS", ""},
        {{{"DAYS", "+7"}}, "DAYS", ""},
        {{{"DAYS", ""}}, "DAYS", ""},
        {{{"SIZE", "1001"}}, "SIZE", ""},
        {{{"SIZE", "1e2"}}, "SIZE", ""},
        {{{"START", "a\"/><ListRequest list=\"x"}, {"LIST", "search"}}, "START", ""},
        {{{"DIR", "s&amp;"}}, "DIR", ""},
        {{{"NEXT", "abc\n"}}, "NEXT", ""},
    };
    for (const Case& c : cases) {
        ListQuery query;
        std::string problem;
        bool ok = ReadListQuery(c.args, query, problem);
        EXPECT_EQ(ok, *c.problem == '\0') << c.document << problem;
        if (ok) {
            EXPECT_EQ(ListRequestDocument(query), c.document);
        } else {
            EXPECT_EQ(problem, c.problem);
        }
    }
}

TEST(ListRequest, QueryStringLeadsBackToTheSameQuery) {
    FieldMap args = {{"DIR", "staff co"}, {"LIST", "search"}, {"START", "é/x?"}, {"SIZE", "5"}};
    ListQuery query;
    std::string problem;
    ASSERT_TRUE(ReadListQuery(args, query, problem));
    EXPECT_EQ(ListQueryString(query, "n=1&x"),
              "?DIR=staff%20co&LIST=search&START=%C3%A9%2Fx%3F&SIZE=5&NEXT=n%3D1%26x");
    query.kind = ListKind::kIdle;
    query.days = 90;
    EXPECT_EQ(ListQueryString(query, ""), "?DIR=staff%20co&LIST=idle&DAYS=90&SIZE=5");
}

}  // namespace
