#include "driver/update_document.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

FieldMap MakeMap(const Fields& fields) {
    FieldMap map;
    for (const auto& [name, value] : fields) map[name] = value;
    return map;
}

struct BuildCase {
    const char* what;
    Fields posted;
    const char* document;
};

const BuildCase kBuildCases[] = {
    {"only the user", {{"LXR-USERDN", "uid=u1,o=org"}}, "<User name=\"uid=u1,o=org\">\n</User>\n"},
    {"example form",
     {{"LXR-USERDN", "uid=u1,o=org"},
      {"GROUP-cn=g1", "1"},
      {"kvlxrFailureCount", "0"},
      {"kvfpsLog", "1"}},
     "<User name=\"uid=u1,o=org\">\n"
     "    <Group name=\"cn=g1\" member=\"1\"/>\n"
     "    <Attribute name=\"kvfpsLog\"/>\n"
     "    <Attribute name=\"kvlxrFailureCount\">\n"
     "        <Value>0</Value>\n"
     "    </Attribute>\n"
     "</User>\n"},
    {"group values",
     {{"LXR-USERDN", "u"}, {"GROUP-a", ""}, {"GROUP-b", "0"}, {"GROUP-", "1"}},
     "<User name=\"u\">\n"
     "    <Group name=\"\" member=\"1\"/>\n"
     "    <Group name=\"b\" member=\"0\"/>\n"
     "</User>\n"},
    {"lower-case group prefix is an attribute",
     {{"LXR-USERDN", "u"}, {"group-x", "1"}},
     "<User name=\"u\">\n"
     "    <Attribute name=\"group-x\">\n"
     "        <Value>1</Value>\n"
     "    </Attribute>\n"
     "</User>\n"},
    {"empty password left out",
     {{"LXR-USERDN", "u"}, {"USERPASSWORD", ""}},
     "<User name=\"u\">\n</User>\n"},
    {"password kept as posted",
     {{"LXR-USERDN", "u"}, {"userPassword", "s3<cr&t"}},
     "<User name=\"u\">\n"
     "    <Attribute name=\"userPassword\">\n"
     "        <Value>s3<cr&t</Value>\n"
     "    </Attribute>\n"
     "</User>\n"},
    {"history boxes",
     {{"LXR-USERDN", "u"}, {"KVFPSLOG", "1"}, {"kvlxrLoginHistory", "0"}},
     "<User name=\"u\">\n"
     "    <Attribute name=\"KVFPSLOG\"/>\n"
     "</User>\n"},
    {"history needs exactly 1",
     {{"LXR-USERDN", "u"}, {"kvfpsLog", "01"}, {"kvlxrLoginHistory", ""}},
     "<User name=\"u\">\n</User>\n"},
    {"empty value",
     {{"LXR-USERDN", "u"}, {"kvlxrDisableUntil", ""}},
     "<User name=\"u\">\n"
     "    <Attribute name=\"kvlxrDisableUntil\">\n"
     "        <Value/>\n"
     "    </Attribute>\n"
     "</User>\n"},
    {"closing line comes before the next group",
     {{"LXR-USERDN", "u"}, {"a", "1"}, {"GROUP-z", "1"}, {"zz", "2"}},
     "<User name=\"u\">\n"
     "    <Attribute name=\"a\">\n"
     "        <Value>1</Value>\n"
     "    </Attribute>\n"
     "    <Group name=\"z\" member=\"1\"/>\n"
     "    <Attribute name=\"zz\">\n"
     "        <Value>2</Value>\n"
     "    </Attribute>\n"
     "</User>\n"},
    {"closing line comes before a history clearing",
     {{"LXR-USERDN", "u"}, {"a", "1"}, {"kvfpsLog", "1"}},
     "<User name=\"u\">\n"
     "    <Attribute name=\"a\">\n"
     "        <Value>1</Value>\n"
     "    </Attribute>\n"
     "    <Attribute name=\"kvfpsLog\"/>\n"
     "</User>\n"},
    {"empty name gets a bare value line",
     {{"LXR-USERDN", "u"}, {"", "v"}},
     "<User name=\"u\">\n"
     "        <Value>v</Value>\n"
     "</User>\n"},
    {"names and values unescaped",
     {{"lxr-userdn", "cn=\"a&b\""}, {"x\"y", "<v>"}},
     "<User name=\"cn=\"a&b\"\">\n"
     "    <Attribute name=\"x\"y\">\n"
     "        <Value><v></Value>\n"
     "    </Attribute>\n"
     "</User>\n"},
};

TEST(BuildUpdateDocument, Table) {
    for (const BuildCase& c : kBuildCases) {
        FieldMap fields = MakeMap(c.posted);
        std::string document;
        EXPECT_TRUE(BuildUpdateDocument(fields, document)) << c.what;
        EXPECT_EQ(document, c.document) << c.what;
        EXPECT_EQ(fields.count("LXR-USERDN"), 0u) << c.what;
        EXPECT_EQ(fields.size(), c.posted.size() - 1) << c.what;
    }
}

TEST(BuildUpdateDocument, MissingUserStopsAtTheOpening) {
    FieldMap fields = MakeMap({{"kvlxrFailureCount", "0"}, {"LXR-USERDNX", "u"}});
    std::string document = "left over";
    EXPECT_FALSE(BuildUpdateDocument(fields, document));
    EXPECT_EQ(document, "<User name=\"");
    EXPECT_EQ(fields.size(), 2u);
}

}  // namespace
