#include "tool/ldif_io.h"

#include <gtest/gtest.h>

namespace lxrapi {
namespace {

TEST(LdifTest, ReadsRecordsWithFoldingBase64AndComments) {
    const char* text =
        "# a comment before everything\n"
        "version: 1\n"
        "\n"
        "# the first user\n"
        "dn: uid=a,o=t\n"
        "cn: Ann\n"
        " e Lee\n"
        "description:: PGI+Jmx0Ow==\n"
        "cn: Second\n"
        "\n"
        "\n"
        "dn: uid=b,o=t\n"
        "changetype: add\n"
        "uid : b\n";  // blanks before the colon are not part of the name
    std::vector<Entry> entries;
    Status s = ParseLdif(text, "t.ldif", &entries);
    ASSERT_TRUE(s.ok()) << s.message();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].dn, "uid=a,o=t");
    EXPECT_EQ(entries[0].Values("cn"), (std::vector<std::string>{"Anne Lee", "Second"}));
    EXPECT_EQ(entries[0].First("description"), "<b>&lt;");
    ASSERT_EQ(entries[1].attributes.size(), 1u);
    EXPECT_EQ(entries[1].attributes[0].name, "uid");
    EXPECT_EQ(entries[1].First("uid"), "b");
}

TEST(LdifTest, FaultsNameTheSourceAndLine) {
    struct Case {
        const char* text;
        const char* message;
    } cases[] = {
        {"cn: no dn\n", "t.ldif:1: a record must begin with dn:"},
        {"dn: uid=a,o=t\ncn: a\n\ndn: uid=b,o=t\nchangetype: delete\n",
         "t.ldif:4: only content records and changetype add are read"},
        {"dn: uid=a,o=t\nnocolon\n", "t.ldif:1: cannot read the line"},
        {"dn: uid=a,o=t\n\r#: x\n", "t.ldif:1: the attribute name"},
    };
    for (const Case& c : cases) {
        std::vector<Entry> entries;
        Status s = ParseLdif(c.text, "t.ldif", &entries);
        EXPECT_FALSE(s.ok()) << c.text;
        EXPECT_EQ(s.message().rfind(c.message, 0), 0u) << s.message();
        EXPECT_TRUE(entries.empty());
    }
}

TEST(LdifTest, FormattedEntriesReadBack) {
    Entry e;
    e.dn = "uid=a,o=t";
    e.Set("cn", {"Ann", " leading blank"});
    e.Set("kvlxrLoginHistory", {"20260530101010Z SUCCESS 10.0.0.5 " + std::string(100, 'x')});
    e.Set("description", {"caf\xc3\xa9"});
    std::vector<Entry> back;
    Status s = ParseLdif(FormatLdif(e) + FormatLdif(e), "x", &back);
    ASSERT_TRUE(s.ok()) << s.message();
    ASSERT_EQ(back.size(), 2u);
    EXPECT_EQ(back[0].dn, e.dn);
    for (const EntryAttribute& a : e.attributes) EXPECT_EQ(back[1].Values(a.name), a.values);
}

}  // namespace
}  // namespace lxrapi
