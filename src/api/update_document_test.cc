#include "update_document.h"

#include <gtest/gtest.h>

namespace lxrapi {
namespace {

// As the program builds it: one element per line, four-blank indents.
const char* kDocument =
    "<User name=\"uid=u1,o=org\">\n"
    "    <Group name=\"cn=g1\" member=\"1\"/>\n"
    "    <Attribute name=\"kvfpsLog\"/>\n"
    "    <Attribute name=\"kvlxrDisableUntil\">\n"
    "        <Value>FOREVER <b>a & b</b> \"quoted\" </Value>\n"
    "    </Attribute>\n"
    "    <Attribute name=\"kvlxrMustLoginBy\">\n"
    "        <Value/>\n"
    "    </Attribute>\n"
    "</User>\n";

void ExpectParsed(const UpdateDocument& d) {
    EXPECT_EQ(d.userDn, "uid=u1,o=org");
    ASSERT_EQ(d.groups.size(), 1u);
    EXPECT_EQ(d.groups[0].name, "cn=g1");
    EXPECT_EQ(d.groups[0].member, "1");
    ASSERT_EQ(d.attributes.size(), 3u);
    EXPECT_EQ(d.attributes[0].name, "kvfpsLog");
    EXPECT_TRUE(d.attributes[0].selfClosing);
    EXPECT_TRUE(d.attributes[0].values.empty());
    EXPECT_EQ(d.attributes[1].values,
              std::vector<std::string>{"FOREVER <b>a & b</b> \"quoted\" "});  // raw, blanks kept
    EXPECT_EQ(d.attributes[2].values, std::vector<std::string>{""});
}

TEST(UpdateDocumentTest, ReadsTheProgramsLayout) {
    UpdateDocument d;
    Status s = ParseUpdateDocument(kDocument, &d);
    ASSERT_TRUE(s.ok()) << s.message();
    ExpectParsed(d);
}

TEST(UpdateDocumentTest, ReadsTheCommandLinesOneLineForm) {
    // The command line joins the file's lines with nothing between them.
    std::string oneLine;
    for (const char* p = kDocument; *p; ++p)
        if (*p != '\n') oneLine += *p;
    UpdateDocument d;
    Status s = ParseUpdateDocument(oneLine, &d);
    ASSERT_TRUE(s.ok()) << s.message();
    ExpectParsed(d);
    // And with no blanks at all, CR line ends, or a declaration in front.
    ASSERT_TRUE(ParseUpdateDocument("<User name=\"x\"><Attribute name=\"a\"><Value>1</Value>"
                                    "<Value>2</Value></Attribute></User>",
                                    &d)
                    .ok());
    EXPECT_EQ(d.attributes[0].values, (std::vector<std::string>{"1", "2"}));
    EXPECT_TRUE(
        ParseUpdateDocument("<?xml version=\"1.0\"?>\r\n<User name=\"x\">\r\n</User>\r\n", &d)
            .ok());
}

// The page writes one value per line and inserts posted values as they are:
// whatever a value holds, up to the last "</Value>" on its line, is that one
// value, so a posted value cannot close its element and add others.
TEST(UpdateDocumentTest, APostedValueStaysOneValue) {
    const std::string forged =
        "x</Value></Attribute><Attribute name=\"kvlxrLoginHistory\">"
        "<Value>20260601000000Z SUCCESS 10.6.6.6</Value></Attribute><Group name=\"g\" "
        "member=\"1\"/><Attribute name=\"kvlxrComment\"><Value>y";
    struct Case {
        std::string line;  // the value line between the attribute's opening and closing
        std::vector<std::string> values;
    } cases[] = {
        {"        <Value>" + forged + "</Value>", {forged}},
        {"        <Value>a</Value>b</Value>  ", {"a</Value>b"}},
        {"        <Value></Value></Value>", {"</Value>"}},
        {"        <Value><Value/></Value>", {"<Value/>"}},
        {"        <Value/>", {""}},
    };
    for (const Case& c : cases) {
        std::string text = "<User name=\"uid=u1,o=org\">\n    <Attribute name=\"kvlxrComment\">\n" +
                           c.line + "\n    </Attribute>\n</User>\n";
        UpdateDocument d;
        Status s = ParseUpdateDocument(text, &d);
        ASSERT_TRUE(s.ok()) << s.message() << "\n" << text;
        ASSERT_EQ(d.attributes.size(), 1u) << text;
        EXPECT_TRUE(d.groups.empty()) << text;
        EXPECT_EQ(d.attributes[0].values, c.values) << text;
    }
    // A value line that does not end its value is refused, rather than read
    // on into the next line.
    UpdateDocument d;
    Status s = ParseUpdateDocument(
        "<User name=\"x\">\n<Attribute name=\"a\">\n<Value>x\n</Value>\n</Attribute>\n</User>\n",
        &d);
    EXPECT_EQ(s.code(), kBadRequest);
    EXPECT_NE(s.message().find("the end of the Value on its line"), std::string::npos);
}

// Names are shown on the pages as well: an attribute name holds none of the
// characters that end page text; DNs may hold an apostrophe or a backslash,
// which the pages only show inside double quotes.
TEST(UpdateDocumentTest, NamesThatEndPageTextAreRefused) {
    struct Case {
        const char* user;
        const char* element;
        const char* says;  // empty: accepted
    } cases[] = {
        {"uid=o'brien,o=org", "", ""},
        {"cn=smith\\, john,o=org", "<Group name=\"cn=o'b\\2C,o=org\" member=\"1\"/>", ""},
        {"uid=<svg>,o=org", "", "the user name 'uid=?svg?,o=org' holds a less-than sign"},
        {"uid=a\tb", "", "the user name 'uid=a?b' holds the control character U+0009"},
        {"x", "<Group name=\"g>\" member=\"1\"/>", "the group name 'g?' holds a greater-than sign"},
        {"x", "<Attribute name=\"kvlxrComment'\"/>",
         "the attribute name 'kvlxrComment'' holds an apostrophe"},
        {"x", "<Attribute name=\"a\\b\"><Value>1</Value></Attribute>",
         "the attribute name 'a?b' holds a backslash"},
    };
    for (const Case& c : cases) {
        std::string text = std::string("<User name=\"") + c.user + "\">" + c.element + "</User>";
        UpdateDocument d;
        Status s = ParseUpdateDocument(text, &d);
        if (*c.says == '\0') {
            EXPECT_TRUE(s.ok()) << text << ": " << s.message();
            continue;
        }
        EXPECT_EQ(s.code(), kBadRequest) << text;
        EXPECT_EQ(s.message(), std::string("Update document: ") + c.says);
    }
}

TEST(UpdateDocumentTest, GroupAttributesInEitherOrder) {
    UpdateDocument d;
    ASSERT_TRUE(
        ParseUpdateDocument("<User name=\"x\"><Group member=\"0\" name=\"cn=g\"/></User>", &d)
            .ok());
    EXPECT_EQ(d.groups[0].name, "cn=g");
    EXPECT_EQ(d.groups[0].member, "0");
}

TEST(UpdateDocumentTest, RefusesWhatIsNotTheLayout) {
    const char* bad[] = {
        "",
        "<Usr name=\"x\"></User>",
        "<User name=\"\"></User>",
        "<User name=\"x\">",
        "<User name=\"x\"></User>junk",
        "<User name = \"x\"></User>",
        "<User name=\"x\"><Value>1</Value></User>",
        "<User name=\"x\"><Attribute name=\"a\"><Value>1</Attribute></User>",
        "<User name=\"x\"><Attribute name=\"a\">text</Attribute></User>",
        "<User name=\"x\"><Attribute name=\"a\"></User>",
        "<User name=\"x\"><Group name=\"g\"/></User>",
        "<User name=\"x\"><Group name=\"g\" member=\"1\"></User>",
        "<User name=\"x\"><Group name=\"g\" member=\"1\" member=\"0\"/></User>",
        "<User name=\"x\"><Attribute name=\"a></User>",
    };
    for (const char* text : bad) {
        UpdateDocument d;
        Status s = ParseUpdateDocument(text, &d);
        EXPECT_EQ(s.code(), kBadRequest) << text;
        EXPECT_NE(s.message().find("offset"), std::string::npos) << s.message();
    }
}

}  // namespace
}  // namespace lxrapi
