#include "reply_fit.h"

#include <gtest/gtest.h>

namespace lxrapi {
namespace {

using Values = std::vector<std::string>;

// Stored newest first, except that the login history holds one entry out of
// order and the log's oldest entry is older than every login: age is read
// from the stamps, not from the positions.
const Values kLogins = {"20260531080000Z SUCCESS 10.0.0.1 a", "20260530080000Z FAILED 10.0.0.2 b",
                        "20260531090000Z SUCCESS 10.0.0.3 c", "20260529080000Z FAILED 10.0.0.4 d"};
const Values kLog = {"20260601000000Z RESET 10.0.0.5 desk", "20260101000000Z CHANGE 10.0.0.6 self"};
const Values kRedirects = {"NEW=https://n.example/ 20260501000000Z", "UNDATED=https://u.example/",
                           "OLD=https://o.example/ 20250101000000Z 10.0.0.7 moved"};

UserView View(Values logins, Values log, Values redirects) {
    UserView view;
    view.dn = "uid=ann,ou=people,o=t";
    view.disabled = "Failure count 9 reached the maximum of 5";
    auto add = [&](const char* name, Values values) {
        AttributeView a;
        a.info = FindAttribute(name);
        a.read = a.write = true;
        a.values = std::move(values);
        view.attributes.push_back(std::move(a));
    };
    add("kvlxrDisableUntil", {"FOREVER attack"});
    add("kvlxrFailureCount", {"9 20260531090000Z 10.0.0.3"});
    add("kvlxrLoginHistory", std::move(logins));
    add("kvfpsLog", std::move(log));
    add("kvlxrGenerationalRedirects", std::move(redirects));
    return view;
}

size_t Size(const UserView& view) {
    return WriteUserDocument(view).size();
}

TEST(ReplyFitTest, LeavesOutTheOldestEntriesAtTheExactRoom) {
    const UserView all = View(kLogins, kLog, kRedirects);
    const size_t full = Size(all);
    const size_t bare = Size(View({}, {}, {kRedirects[0]}));
    const size_t withRedirects = Size(View({}, {}, kRedirects));
    const size_t oldest = ValueBytes(kLog[1]);  // 20260101: older than any login
    const size_t second = ValueBytes(kLogins[3]);
    struct Case {
        const char* what;
        size_t room;
        UserView expected;
    };
    const Case cases[] = {
        {"fits exactly", full, all},
        {"one byte over: the oldest entry of both histories goes", full - 1,
         View(kLogins, {kLog[0]}, kRedirects)},
        {"exactly one entry's room short", full - oldest, View(kLogins, {kLog[0]}, kRedirects)},
        {"one byte more than one entry", full - oldest - 1,
         View({kLogins[0], kLogins[1], kLogins[2]}, {kLog[0]}, kRedirects)},
        {"one byte more than two entries", full - oldest - second - 1,
         View({kLogins[0], kLogins[2]}, {kLog[0]}, kRedirects)},
        {"histories gone before any redirect", withRedirects, View({}, {}, kRedirects)},
        {"then the undated redirect first", withRedirects - 1,
         View({}, {}, {kRedirects[0], kRedirects[2]})},
        {"then the older dated one", withRedirects - ValueBytes(kRedirects[1]) - 1,
         View({}, {}, {kRedirects[0]})},
        {"the newest redirect always stays", bare, View({}, {}, {kRedirects[0]})},
    };
    for (const Case& c : cases) {
        std::string out;
        Status s = WriteFittedUserDocument(all, c.room, 1000, &out);
        ASSERT_TRUE(s.ok()) << c.what << ": " << s.message();
        EXPECT_EQ(out, WriteUserDocument(c.expected)) << c.what;
        EXPECT_LE(out.size(), c.room) << c.what;
    }
}

TEST(ReplyFitTest, FailsOnlyWhenTheEntryWithoutHistoriesIsTooLong) {
    const size_t bare = Size(View({}, {}, {kRedirects[0]}));
    std::string out = "stale";
    Status s = WriteFittedUserDocument(View(kLogins, kLog, kRedirects), bare - 1, 1000, &out);
    EXPECT_EQ(s.code(), kBufferTooSmall);
    EXPECT_EQ(s.message(), "The reply of " + std::to_string(bare + 1) +
                               " bytes does not fit the buffer of " + std::to_string(bare) +
                               " bytes");
    EXPECT_EQ(out, "");
}

TEST(ReplyFitTest, HistoryLimitKeepsTheNewestOfEachHistory) {
    struct Case {
        int limit;
        UserView expected;
    };
    const Case cases[] = {
        {1, View({kLogins[2]}, {kLog[0]}, kRedirects)},
        {3, View({kLogins[0], kLogins[1], kLogins[2]}, kLog, kRedirects)},
        {4, View(kLogins, kLog, kRedirects)},
    };
    for (const Case& c : cases) {
        std::string out;
        ASSERT_TRUE(
            WriteFittedUserDocument(View(kLogins, kLog, kRedirects), 65535, c.limit, &out).ok());
        EXPECT_EQ(out, WriteUserDocument(c.expected)) << "limit " << c.limit;
    }
}

}  // namespace
}  // namespace lxrapi
