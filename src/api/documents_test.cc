#include "documents.h"

#include <gtest/gtest.h>

#include "support/user_document.h"

namespace lxrapi {
namespace {

TEST(DocumentsTest, UserDocumentReadsBackUnderTheStrictRules) {
    GroupConfig locked{"locked", "cn=locked,o=t", "#Locked", "Locked by policy"};
    GroupConfig vpn{"vpn-users", "cn=vpn,o=t", "VPN", ""};
    UserView view;
    view.dn = "uid=a b,ou=people,o=t";
    view.disabled = "Disabled forever,Locked by policy";
    auto add = [&](const char* name, bool read, bool write, bool redisable,
                   std::vector<std::string> values) {
        AttributeView a;
        a.info = FindAttribute(name);
        a.read = read;
        a.write = write;
        a.redisable = redisable;
        a.values = std::move(values);
        view.attributes.push_back(a);
    };
    add("kvlxrDisableUntil", true, true, false, {"FOREVER x & y"});
    add("kvlxrAccountInactivityDays", true, false, true, {"30 a&amp;b"});
    add("userPassword", false, true, false, {});
    add("kvlxrLoginHistory", true, true, false,
        {"20260530101010Z SUCCESS 10.0.0.5 browser", "20260529101010Z FAILED 10.0.0.6 x-y"});
    add("kvlxrGenerationalRedirects", true, true, false, {});
    view.groups.push_back({&locked, true, true, Membership::kMember});
    view.groups.push_back({&vpn, false, true, Membership::kRestricted});
    view.groups.push_back({&vpn, true, false, Membership::kNotMember});

    std::string text = WriteUserDocument(view);
    lxrtest::UserDocument user;
    std::string error;
    ASSERT_TRUE(lxrtest::ReadUserDocument(text, user, error)) << error << "\n" << text;
    EXPECT_EQ(user.user.name, view.dn);
    EXPECT_EQ(user.user.disabled, view.disabled);
    EXPECT_EQ(user.sectionPrompts,
              (std::vector<std::string>{"#Account Status", "#Password", "#Activity and History",
                                        "#Redirects", "#Groups"}));
    ASSERT_EQ(user.attributes.size(), view.attributes.size());
    for (size_t i = 0; i < user.attributes.size(); ++i) {
        const AttributeView& want = view.attributes[i];
        const AttributeElement& got = user.attributes[i];
        EXPECT_EQ(got.name, want.info->name);
        EXPECT_EQ(got.prompt, want.info->prompt);
        EXPECT_EQ(got.read, want.read);
        EXPECT_EQ(got.write, want.write);
        EXPECT_EQ(got.redisable, want.redisable);
        EXPECT_EQ(got.values, want.values);
    }
    ASSERT_EQ(user.groups.size(), 3u);
    EXPECT_EQ(user.groups[0].reasoncode, "Locked by policy");
    EXPECT_EQ(user.groups[0].name, "locked");  // the identifier, never the DN
    EXPECT_EQ(user.groups[0].member, ::Membership::kMember);
    EXPECT_EQ(user.groups[1].member, ::Membership::kUnknown);
    EXPECT_FALSE(user.groups[1].read);
    EXPECT_EQ(user.groups[2].member, ::Membership::kNotMember);
    EXPECT_EQ(user.groups[2].reasoncode, "");
    // The byte forms the reader insists on.
    EXPECT_NE(text.find("<Group name=\"vpn-users\" prompt=\"VPN\" read=\"false\" "
                        "write=\"true\" member=\"restricted\"/>"),
              std::string::npos);
    EXPECT_EQ(text.find("disabled=\"\""), std::string::npos);
}

TEST(DocumentsTest, UserWithoutAttributesOrDisabledReason) {
    UserView view;
    view.dn = "uid=x,o=t";
    std::string text = WriteUserDocument(view);
    EXPECT_EQ(text, "<User name=\"uid=x,o=t\">\n</User>\n");
    lxrtest::UserDocument user;
    std::string error;
    EXPECT_TRUE(lxrtest::ReadUserDocument(text, user, error)) << error;
}

TEST(DocumentsTest, DirectoryListCarriesIdentifiersAsText) {
    DirectoryConfig a, b;
    a.id = "staff";
    a.name = "Example Staff";
    b.id = "p2";
    b.name = "Partners & Co";
    std::string text = WriteDirectoryList({&a, &b});
    DirectoryTable list;
    std::string error;
    ASSERT_TRUE(lxrtest::ReadDirectories(text, list, error)) << error << "\n" << text;
    // No trailing blank or line end in an identifier.
    EXPECT_EQ(list, (DirectoryTable{{"Example Staff", "staff"}, {"Partners & Co", "p2"}}));
    ASSERT_TRUE(lxrtest::ReadDirectories(WriteDirectoryList({}), list, error)) << error;
    EXPECT_TRUE(list.empty());
}

}  // namespace
}  // namespace lxrapi
