#include "pages/directory_list.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

std::string Table(const DirectoryTable& table) {
    std::string out;
    for (const auto& e : table) out += "[" + e.first + "|" + e.second + "]";
    return out;
}

TEST(ReadDirectoryList, WellFormed) {
    struct Case {
        const char* text;
        const char* filter;
        const char* table;
    } cases[] = {
        {"<UserDirectories></UserDirectories>", "", ""},
        {"<?xml version=\"1.0\"?><!-- x --><UserDirectories>\r\n"
         "  <UserDirectory name=\"Main\">  dir:main  </UserDirectory>\n"
         "  <UserDirectory name=\" Other\">o</UserDirectory>\n"
         "</UserDirectories>\n\n",
         "", "[Main|dir:main  ][Other|o]"},
        // Ordered byte-wise: upper case first; a later name replaces.
        {"<UserDirectories><UserDirectory name=\"b\">1</UserDirectory>"
         "<UserDirectory name=\"B\">2</UserDirectory><UserDirectory name=\"b\">3</UserDirectory>"
         "</UserDirectories>",
         "", "[B|2][b|3]"},
        // Blanks after "<" anywhere; the text may hold "<"; raw values.
        {"<UserDirectories>< UserDirectory  name=\"a&amp;b\">x<y</UserDirectory>< "
         "/UserDirectories>",
         "", "[a&amp;b|x<y]"},
        {"<UserDirectories><UserDirectory name=\"e\"> </UserDirectory></UserDirectories>", "",
         "[e|]"},
        // Hidden directories are never listed, not even when filtered for.
        {"<UserDirectories><UserDirectory name=\"#h\">x</UserDirectory>"
         "<UserDirectory name=\"v\">#y</UserDirectory></UserDirectories>",
         "", ""},
        {"<UserDirectories><UserDirectory name=\"#h\">x</UserDirectory></UserDirectories>", "#h",
         ""},
        // A filter keeps an identifier it starts, or a name it equals in any case.
        {"<UserDirectories><UserDirectory name=\"one\">abc</UserDirectory>"
         "<UserDirectory name=\"AB\">zzz</UserDirectory><UserDirectory "
         "name=\"two\">xab</UserDirectory>"
         "<UserDirectory name=\"three\">Abc</UserDirectory><UserDirectory "
         "name=\"ab1\">a</UserDirectory>"
         "</UserDirectories>",
         "ab", "[AB|zzz][one|abc]"},
    };
    for (const Case& c : cases) {
        DirectoryTable table;
        const char* cursor = nullptr;
        EXPECT_TRUE(ReadDirectoryList(c.text, table, c.filter, cursor))
            << c.text << " stopped at " << cursor;
        EXPECT_EQ(*cursor, '\0');
        EXPECT_EQ(Table(table), c.table) << c.text;
    }
}

TEST(ReadDirectoryList, MalformedStopsAtTheFault) {
    // `rest` is the text from the fault on ("" the final NUL).
    struct Case {
        const char* text;
        const char* rest;
    } cases[] = {
        {"", ""},
        {"<UserDirectory name=\"a\">x</UserDirectory>", ""},  // no root
        {"<userdirectories></userdirectories>", ""},
        {"<UserDirectories>", ""},
        {"<UserDirectories> x </UserDirectories>", "x </UserDirectories>"},
        {"<UserDirectories></UserDirectories>x", "x"},
        {"<UserDirectories></UserDirectories> <a/>", "<a/>"},
        {"<UserDirectories></ UserDirectories>", "/ UserDirectories>"},
        {"<UserDirectories><UserDirectory name=\"a\" >x</UserDirectory></UserDirectories>",
         " >x</UserDirectory></UserDirectories>"},  // a blank before ">"
        {"<UserDirectories><UserDirectory name = \"a\">x</UserDirectory></UserDirectories>",
         "name = \"a\">x</UserDirectory></UserDirectories>"},
        {"<UserDirectories><UserDirectory id=\"a\">x</UserDirectory></UserDirectories>",
         "id=\"a\">x</UserDirectory></UserDirectories>"},
        {"<UserDirectories><UserDirectory name=\"a\" id=\"b\">x</UserDirectory></UserDirectories>",
         " id=\"b\">x</UserDirectory></UserDirectories>"},
        {"<UserDirectories><UserDirectory>x</UserDirectory></UserDirectories>",
         ">x</UserDirectory></UserDirectories>"},
        {"<UserDirectories><UserDirectory name=\"a\">x</UserDirectories>", ""},  // no end tag
        {"<UserDirectories><UserDirectory name=\"a>x", ""},
        {"<UserDirectories><Directory name=\"a\">x</Directory></UserDirectories>",
         "Directory name=\"a\">x</Directory></UserDirectories>"},
    };
    for (const Case& c : cases) {
        DirectoryTable table;
        const char* cursor = nullptr;
        EXPECT_FALSE(ReadDirectoryList(c.text, table, "", cursor)) << c.text;
        size_t n = std::strlen(c.text), r = std::strlen(c.rest);
        ASSERT_TRUE(r <= n && std::strcmp(c.text + n - r, c.rest) == 0) << "bad row " << c.text;
        EXPECT_EQ(cursor - c.text, static_cast<long>(n - r)) << c.text << " stopped at " << cursor;
    }
}

}  // namespace
