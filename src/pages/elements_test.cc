#include "pages/elements.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

// Where a reader stopped, as an offset into the text it was given.
long Offset(const char* text, const char* cursor) {
    return cursor - text;
}

// A malformed element and where its reader must stop, named by the rest of
// the text from the fault on: "" is the final NUL, null the very start.
struct Fault {
    const char* text;
    const char* rest;
};

long FaultOffset(const Fault& f) {
    if (f.rest == nullptr) return 0;
    size_t n = std::strlen(f.text), r = std::strlen(f.rest);
    EXPECT_TRUE(r <= n && std::strcmp(f.text + n - r, f.rest) == 0) << "bad table row " << f.text;
    return static_cast<long>(n - r);
}

const char* Name(Membership m) {
    return m == Membership::kMember ? "member" : m == Membership::kNotMember ? "not" : "unknown";
}

TEST(ReadGroup, Attributes) {
    struct Case {
        const char* text;
        const char* name;
        const char* prompt;
        const char* reason;
        bool read, write;
        Membership member;
    } cases[] = {
        {"/>", "", "", "", false, false, Membership::kUnknown},
        {"name=\"cn=g1,o=x\" read=\"true\" write=\"false\" member=\"true\"/>", "cn=g1,o=x", "", "",
         true, false, Membership::kMember},
        // Any order; blanks around words; leading blanks of texts dropped,
        // trailing kept.
        {"member=\" false \"  write=\"true\"\r\n prompt=\"  P \" name=\"g\"/>", "g", "P ", "",
         false, true, Membership::kNotMember},
        {"member=\"restricted\" reasoncode=\"lockout\"/>", "", "", "lockout", false, false,
         Membership::kUnknown},
        // Raw values: no entity decoding; "<" and ">" may stand in them.
        {"name=\"a&amp;b<c>\"/>", "a&amp;b<c>", "", "", false, false, Membership::kUnknown},
        // An empty text may be given again; the repeat supplies it.
        {"name=\"\" name=\"later\"/>", "later", "", "", false, false, Membership::kUnknown},
    };
    for (const Case& c : cases) {
        GroupElement g;
        const char* cursor = c.text;
        ASSERT_TRUE(ReadGroup(cursor, g)) << c.text << " stopped at " << cursor;
        EXPECT_EQ(Offset(c.text, cursor), static_cast<long>(std::strlen(c.text)) - 1) << c.text;
        EXPECT_EQ(g.name, c.name) << c.text;
        EXPECT_EQ(g.prompt, c.prompt) << c.text;
        EXPECT_EQ(g.reasoncode, c.reason) << c.text;
        EXPECT_EQ(g.read, c.read) << c.text;
        EXPECT_EQ(g.write, c.write) << c.text;
        EXPECT_STREQ(Name(g.member), Name(c.member)) << c.text;
    }
}

TEST(ReadGroup, MalformedStopsAtTheFault) {
    const Fault faults[] = {
        {"name=\"g\">", ">"},  // ended by ">" instead of "/>"
        {"name=\"g\" / >", "/ >"},
        {"name=\"g\" member=\"maybe\"/>", "maybe\"/>"},
        {"name=\"g\" member=\"TRUE\"/>", "TRUE\"/>"},
        {"read=\"restricted\"/>", "restricted\"/>"},  // only a membership says so
        {"read=\"yes\"/>", "yes\"/>"},
        {"read=\"\"/>", "\"/>"},
        {"read=\"truex\"/>", "x\"/>"},  // the closing quotation mark is wanted
        {"read=\"true false\"/>", "false\"/>"},
        {"read=\"true\" read=\"true\"/>", "read=\"true\"/>"},  // a boolean twice
        {"member=\"true\" member=\"true\"/>", "member=\"true\"/>"},
        {"name=\"a\" name=\"b\"/>", "name=\"b\"/>"},  // a text again after a value
        {"name = \"g\"/>", nullptr},                  // no blanks around "="
        {"Name=\"g\"/>", nullptr},                    // names are case-sensitive
        {"type=\"x\"/>", nullptr},                    // unknown attribute
        {"redisable=\"\"/>", nullptr},                // not an attribute of a group
        {"name='g'/>", nullptr},
        {"name=\"g/>", ""},  // the value runs to the NUL
        {"name=\"g\"", ""},  // no end
        {"", ""},
    };
    for (const Fault& f : faults) {
        GroupElement g;
        const char* cursor = f.text;
        EXPECT_FALSE(ReadGroup(cursor, g)) << f.text;
        EXPECT_EQ(Offset(f.text, cursor), FaultOffset(f)) << f.text << " stopped at " << cursor;
    }
}

TEST(ReadSection, AttributesAndFaults) {
    SectionElement s;
    const char* text = "name=\"Status\"   prompt=\"#Head Status\">rest";
    const char* cursor = text;
    ASSERT_TRUE(ReadSection(cursor, s));
    EXPECT_STREQ(cursor, ">rest");
    EXPECT_EQ(s.name, "Status");
    EXPECT_EQ(s.prompt, "#Head Status");

    SectionElement empty;
    cursor = ">";
    EXPECT_TRUE(ReadSection(cursor, empty));

    const Fault faults[] = {
        {"/>", nullptr},  // "<Section/>"
        {"name=\"s\"/>", "/>"},
        {"name=\"s\" read=\"true\">", "read=\"true\">"},
        {"prompt=\"a\" prompt=\"b\">", "prompt=\"b\">"},
        {"name=\"s\"", ""},
    };
    for (const Fault& f : faults) {
        SectionElement e;
        cursor = f.text;
        EXPECT_FALSE(ReadSection(cursor, e)) << f.text;
        EXPECT_EQ(Offset(f.text, cursor), FaultOffset(f)) << f.text;
    }
}

TEST(ReadAttribute, AttributesAndValues) {
    struct Case {
        const char* text;
        const char* name;
        bool redisable, read, write;
        std::vector<std::string> values;
    } cases[] = {
        {"name=\"a\"></Attribute>", "a", false, false, false, {}},
        {"name=\"a\" read=\" true \" write=\"true\" redisable=\"anything, even 'false'\">\n"
         "  <Value>  5 </Value>\n  <Value>a&amp;b</Value><Value></Value>\n</Attribute>",
         "a",
         true,
         true,
         true,
         {"5 ", "a&amp;b", ""}},
        // A value is raw up to its end tag.
        {"name=\"h\"><Value><b>x</b> < ></Value></Attribute>",
         "h",
         false,
         false,
         false,
         {"<b>x</b> < >"}},
        {"name=\"h\"><Value>\r\n\t</Value></Attribute>", "h", false, false, false, {""}},
        {"redisable=\"\" name=\"r\"></Attribute>", "r", true, false, false, {}},
        {"></Attribute>", "", false, false, false, {}},
    };
    for (const Case& c : cases) {
        AttributeElement a;
        const char* cursor = c.text;
        ASSERT_TRUE(ReadAttribute(cursor, a)) << c.text << " stopped at " << cursor;
        EXPECT_EQ(Offset(c.text, cursor), static_cast<long>(std::strlen(c.text)) - 1) << c.text;
        EXPECT_EQ(a.name, c.name) << c.text;
        EXPECT_EQ(a.redisable, c.redisable) << c.text;
        EXPECT_EQ(a.read, c.read) << c.text;
        EXPECT_EQ(a.write, c.write) << c.text;
        EXPECT_EQ(a.values, c.values) << c.text;
    }
}

TEST(ReadAttribute, MalformedStopsAtTheFault) {
    const Fault faults[] = {
        {"name=\"a\"/>", "/>"},
        {"name=\"a\" read=\"true\" read=\"true\">", "read=\"true\">"},
        {"read=\"TRUE\"></Attribute>", "TRUE\"></Attribute>"},
        {"redisable=\"x\" redisable=\"y\"></Attribute>", "redisable=\"y\"></Attribute>"},
        {"reasoncode=\"r\"></Attribute>", nullptr},
        {"member=\"true\"></Attribute>", nullptr},
        {"name=\"a\"><Value>1</Value>", ""},      // no end tag
        {"name=\"a\"><Value>1</Attribute>", ""},  // the value runs to the NUL
        {"name=\"a\"><Value>1</Value>x</Attribute>", "x</Attribute>"},
        {"name=\"a\"><Value/></Attribute>", "<Value/></Attribute>"},
        {"name=\"a\"><value>1</value></Attribute>", "<value>1</value></Attribute>"},
        {"name=\"a\">< /Attribute>", "< /Attribute>"},
        {"name=\"a\"></Attribute >", "</Attribute >"},
        {"name=\"a\"><Group/></Attribute>", "<Group/></Attribute>"},
    };
    for (const Fault& f : faults) {
        AttributeElement a;
        const char* cursor = f.text;
        EXPECT_FALSE(ReadAttribute(cursor, a)) << f.text;
        EXPECT_EQ(Offset(f.text, cursor), FaultOffset(f)) << f.text << " stopped at " << cursor;
    }
}

TEST(ReadUserStart, RootAndItsAttributes) {
    struct Case {
        const char* text;
        const char* name;
        const char* disabled;
        const char* rest;
    } cases[] = {
        {"<User name=\"cn=a, o=b\">\n  </User>", "cn=a, o=b", "", "</User>"},
        {"<?xml version=\"1.0\"?>\n<!-- x -->\n<User name=\" x\" disabled=\"Too many, Y\">"
         "<Group/>",
         "x", "Too many, Y", "<Group/>"},
        {"junk<User\r\nname=\"x\">", "x", "", ""},
        {"<Username=\"x\">", "x", "", ""},  // only "<User" is compared
        {"<User disabled=\"\" name=\"n\" disabled=\"d\">", "n", "d", ""},
    };
    for (const Case& c : cases) {
        UserElement u;
        const char* cursor = nullptr;
        ASSERT_TRUE(ReadUserStart(c.text, cursor, u)) << c.text << " stopped at " << cursor;
        EXPECT_EQ(u.name, c.name);
        EXPECT_EQ(u.disabled, c.disabled);
        EXPECT_STREQ(cursor, c.rest);
    }
}

TEST(ReadUserStart, MalformedStopsAtTheFault) {
    const Fault faults[] = {
        {"", ""},
        {"<Users", "s"},                                                 // then "s" is no attribute
        {"<!-- <User> --><User name=\"x\">", "> --><User name=\"x\">"},  // no comments
        {"<user name=\"x\">", ""},
        {"<User>", ">"},            // no name
        {"<User name=\"\">", ">"},  // an empty name
        {"<User name=\"  \">", ">"},
        {"<User name = \"x\">", "name = \"x\">"},
        {"<User name=\"x\" read=\"true\">", "read=\"true\">"},
        {"<User name=\"x\" name=\"y\">", "name=\"y\">"},
        {"<User name=\"x\" disabled=\"a\" disabled=\"b\">", "disabled=\"b\">"},
        {"<User name=\"x\"/>", "/>"},
        {"<User name=\"x", ""},
        {"<User name=\"x\"", ""},
    };
    for (const Fault& f : faults) {
        UserElement u;
        const char* cursor = nullptr;
        EXPECT_FALSE(ReadUserStart(f.text, cursor, u)) << f.text;
        EXPECT_EQ(Offset(f.text, cursor), FaultOffset(f)) << f.text << " stopped at " << cursor;
    }
}

// Row readers that record what they were handed.
std::string Seen;
bool SeeSection(const char*& c) {
    SectionElement s;
    Seen += "S";
    return ReadSection(c, s);
}
bool SeeGroup(const char*& c) {
    GroupElement g;
    Seen += "G";
    return ReadGroup(c, g);
}
bool SeeAttribute(const char*& c) {
    AttributeElement a;
    Seen += "A";
    return ReadAttribute(c, a);
}
const UserRowReaders kSee{SeeSection, SeeGroup, SeeAttribute};

TEST(ReadUserRows, WalksEveryRow) {
    struct Case {
        const char* text;
        const char* seen;
    } cases[] = {
        {"</User>", ""},
        {"</User> \r\n", ""},
        {"<Section name=\"s\">\n<Group name=\"g\"/>\n<Attribute name=\"a\"></Attribute>\n"
         "</Section>\n<Attribute\nname=\"b\">\n</Attribute>\n</User>\n",
         "SGAA"},
        {"</Section></Section><Section></Section><Section ></Section></User>", "SS"},
        {"<Group/><Group\tname=\"x\" />  </User>", "GG"},
    };
    for (const Case& c : cases) {
        Seen.clear();
        const char* cursor = c.text;
        EXPECT_TRUE(ReadUserRows(cursor, kSee)) << c.text << " stopped at " << cursor;
        EXPECT_EQ(*cursor, '\0');
        EXPECT_EQ(Seen, c.seen) << c.text;
    }
}

TEST(ReadUserRows, MalformedStopsAtTheFault) {
    const Fault faults[] = {
        {"", ""},  // no "</User>"
        {"<Group/>", ""},
        {"<Section><Section></Section></User>", "<Section></Section></User>"},  // nested
        {"<Section name=\"s\"></User>", "</User>"},  // still open at the end
        {"</User>x", "x"},
        {"</User>\n</User>", "</User>"},
        {"<Value>1</Value></User>", nullptr},
        {"text</User>", nullptr},
        {"<Group>", ">"},  // where the reader stopped
        {"<Attribute name=\"a\"/></User>", "/></User>"},
        {"<Section/></User>", "/></User>"},
        {"< Group/></User>", nullptr},
        {"<!-- c --></User>", nullptr},
    };
    for (const Fault& f : faults) {
        const char* cursor = f.text;
        EXPECT_FALSE(ReadUserRows(cursor, kSee)) << f.text;
        EXPECT_EQ(Offset(f.text, cursor), FaultOffset(f)) << f.text << " stopped at " << cursor;
    }
}

}  // namespace
