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
