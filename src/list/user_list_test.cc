#include "list/user_list.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(UserList, ReadsUsersReasonsAndWritableSet) {
    const char* doc =
        "<?xml version=\"1.0\"?>\n"
        "<UserList directory=\"staff\" list=\"locked\" continuation=\"bmV4dA\" "
        "writable=\"kvlxrFailureCount, kvlxrDisableUntil\">\n"
        "  <User name=\"ivan\" dn=\"uid=ivan,ou=staff,o=example\" "
        "userPath=\"staff/uid=ivan,ou=staff,o=example\" "
        "lastLogin=\"20260530080000Z 10.0.0.7\" failures=\"5\">\n"
        "    <Reason>Failure count 5 reached the maximum of 5</Reason>\n"
        "    <Reason> a <b>&amp; raw</Reason>\n"
        "  </User>\n"
        "  <User name=\"victor\" dn=\"uid=victor\" userPath=\"staff/uid=victor\" failures=\"0\"/>\n"
        "</UserList>\n";
    UserList list;
    const char* fault = nullptr;
    ASSERT_TRUE(ReadUserList(doc, list, fault)) << fault;
    EXPECT_EQ(list.directory, "staff");
    EXPECT_EQ(list.continuation, "bmV4dA");
    ASSERT_EQ(list.users.size(), 2u);
    EXPECT_EQ(list.users[0].lastLogin, "20260530080000Z 10.0.0.7");
    EXPECT_EQ(
        list.users[0].reasons,
        (std::vector<std::string>{"Failure count 5 reached the maximum of 5", "a <b>&amp; raw"}));
    EXPECT_TRUE(list.users[1].reasons.empty());
    EXPECT_EQ(list.users[1].userPath, "staff/uid=victor");
    EXPECT_TRUE(Writable(list, "KVLXRFAILURECOUNT"));
    EXPECT_TRUE(Writable(list, "kvlxrDisableUntil"));
    EXPECT_FALSE(Writable(list, "kvlxrImmediateChange"));
}

TEST(UserList, FaultIsReportedWhereReadingStopped) {
    struct Case {
        const char* doc;
        const char* at;  // the text at the fault; "" for the end
    } cases[] = {
        {"<UserDirectories/>", ""},
        {"<UserList list=\"x\" size=\"3\"></UserList>", "size="},
        {"<UserList><User name=\"a\" name=\"b\"/></UserList>", "name=\"b\""},
        {"<UserList><User name=\"a\"><Reason>x</UserList>", ""},
        {"<UserList><User name=\"a\"><Note/></User></UserList>", "<Note/>"},
        {"<UserList><Users/></UserList>", "s/>"},
        {"<UserList><User name=\"a\"/></UserList> trailing", "trailing"},
        {"<UserList><User name=\"a\"/>", ""},
    };
    for (const Case& c : cases) {
        UserList list;
        const char* fault = nullptr;
        ASSERT_FALSE(ReadUserList(c.doc, list, fault)) << c.doc;
        EXPECT_STREQ(fault, std::strstr(c.doc, c.at) && *c.at ? std::strstr(c.doc, c.at)
                                                              : c.doc + std::strlen(c.doc))
            << c.doc;
    }
}

}  // namespace
