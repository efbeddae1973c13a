#include "config.h"

#include <gtest/gtest.h>

#include <fstream>

#include "test_support.h"

namespace lxrapi {
namespace {

TEST(ConfigTest, ReadsDirectoriesRolesAndPolicy) {
    Config c;
    Status s = ParseConfig(testing::kConfigText, "/etc/lxr/lxrapi.toml", &c);
    ASSERT_TRUE(s.ok()) << s.message();
    ASSERT_EQ(c.directories.size(), 2u);
    EXPECT_EQ(c.directories[0].id, "people");
    EXPECT_EQ(c.directories[1].name, "other");  // the identifier stands in for a missing name
    EXPECT_EQ(c.directories[1].naming, (std::vector<std::string>{"uid", "cn", "mail"}));
    ASSERT_EQ(c.directories[0].groups.size(), 2u);
    EXPECT_EQ(c.directories[0].groups[0].reason, "Locked by policy");
    EXPECT_EQ(c.directories[0].groups[0].id, "locked-out");
    EXPECT_EQ(c.directories[0].groups[1].id, "vpn");  // from the DN
    EXPECT_EQ(c.directories[0].FindGroup("VPN"), &c.directories[0].groups[1]);
    EXPECT_EQ(c.directories[0].FindGroup("CN=Locked, ou=groups,o=t"), &c.directories[0].groups[0]);
    EXPECT_EQ(c.directories[0].FindGroup("locked"), nullptr);  // the DN's value is not its id
    EXPECT_EQ(c.directories[1].FindGroup("vpn"), nullptr);
    EXPECT_EQ(c.policy.passwordExpireDays, 100);
    EXPECT_EQ(c.historyLimit, 50);
    EXPECT_EQ(c.policy.password.scheme, "sha512-crypt");
    EXPECT_EQ(c.adminStore, "/mem/admins");
    ASSERT_NE(c.FindRole("DESK"), nullptr);
    EXPECT_TRUE(c.FindRole("desk")->read.all);
    EXPECT_TRUE(c.FindRole("desk")->groupsWrite.Has("CN=vpn, ou=groups, o=t"));
    EXPECT_FALSE(c.FindRole("reader")->read.Has("kvlxrDisableUntil"));
}

TEST(ConfigTest, RelativeStoresResolveAgainstTheFilesFolder) {
    const char* text = R"([[directory]]
id = "d"
store = "../var/d.db"
base = "o=t"
[[role]]
name = "r"
administrators = []
)";
    Config c;
    ASSERT_TRUE(ParseConfig(text, "/srv/lxr/conf/lxrapi.toml", &c).ok());
    EXPECT_EQ(c.directories[0].store, "/srv/lxr/conf/../var/d.db");
    EXPECT_EQ(c.adminStore, c.directories[0].store);  // default: the first directory's store
    ASSERT_TRUE(ParseConfig(text, "lxrapi.toml", &c).ok());
    EXPECT_EQ(c.directories[0].store, "./../var/d.db");
}

// Each faulty file must be refused with "Configuration file FILE line N: PROBLEM".
TEST(ConfigTest, FaultsNameFileLineAndProblem) {
    const std::string dir = "[[directory]]\nid = \"d\"\nstore = \"s\"\nbase = \"o=t\"\n";
    const std::string role = "[[role]]\nname = \"r\"\nadministrators = []\n";
    struct Case {
        std::string text;
        int line;
        const char* problem;
    } cases[] = {
        {dir + role + "[policy\n", 8, "expected ']'"},  // TOML syntax
        // Non-ASCII text only in strings and comments, and found wherever the
        // strings and comments around it end.
        {dir + role + "[policy\xd2\x99password]\n", 8, "not ASCII stands outside quotes"},
        {"# \xc3\xa9\n" + dir + "name = \"\"\"a\n\\\"\"\"\xc3\xa9\"\"\" \xc3\xa9\n" + role, 7,
         "not ASCII stands outside"},
        {dir + "name = 'a\\' \xc2\xa1\n" + role, 5, "not ASCII stands outside"},
        {dir + "colour = \"red\"\n" + role, 5, "unknown key 'colour' in directory 1"},
        {"[[directory]]\nid = \"d\"\nbase = \"o=t\"\n" + role, 1, "'store' is missing"},
        {"[[directory]]\nid = \"a/b\"\nstore = \"s\"\nbase = \"o=t\"\n" + role, 1, "without '/'"},
        {dir + dir + role, 5, "used twice"},
        {"[[directory]]\nid = \"d\"\nstore = \"s\"\nbase = \"nodn\"\n" + role, 1,
         "'base' is not a distinguished name"},
        {dir + role + "directories = [\"x\"]\n", 5, "unknown directory 'x'"},
        {dir + role + role, 8, "defined twice"},
        {dir + "[[role]]\nname = \"r\"\n", 5, "'administrators' is missing"},
        {dir + "[[role]]\nname = \"r\"\nadministrators = \"*\"\n", 5, "must list DNs"},
        {dir + role + "read = [1]\n", 8, "must hold non-empty strings"},
        {dir + role + "[policy]\nmax_failures = -1\n", 9, "from 0 to 1000"},
        {dir + role + "[read]\nhistory_limit = 0\n", 9, "[read]: 'history_limit' must be"},
        {dir + role + "[policy.password]\nscheme = \"md5\"\n", 8, "'scheme' must be"},
        {dir + role + "[policy.password]\nmin_length = 40\n", 8, "exceeds max_length"},
        {dir, 1, "no [[role]]"},
        {role, 1, "no [[directory]]"},
        {dir + "name = \"a\\\"b\"\n" + role, 5, "quotation mark"},
        {dir + "[[directory.group]]\ndn = \"cn=g\"\nreason = \"a,b\"\n" + role, 5,
         "must not hold a comma"},
        // Group identifiers become form field names: nothing a browser encodes.
        {dir + "[[directory.group]]\ndn = \"cn=g\"\nid = \"vpn users\"\n" + role, 7,
         "directory 'd' group 1: 'id' 'vpn users' may hold only letters, digits"},
        {dir + "[[directory.group]]\ndn = \"cn=g\"\nid = \"a=b\"\n" + role, 7, "'a=b' may hold"},
        {dir + "[[directory.group]]\ndn = \"cn=g\"\nid = \"\"\n" + role, 7, "'' may hold"},
        {dir + "[[directory.group]]\ndn = \"cn=VPN Users,o=t\"\n" + role, 5,
         "the first value of its DN, 'VPN Users', cannot name the group"},
        {dir +
             "[[directory.group]]\ndn = \"cn=a\"\n[[directory.group]]\ndn = \"cn=b\"\nid = "
             "\"A\"\n" +
             role,
         9, "group 2: the group identifier 'A' is used twice"},
    };
    for (const Case& c : cases) {
        Config config;
        Status s = ParseConfig(c.text, "/etc/x.toml", &config);
        EXPECT_EQ(s.code(), kUnreachable) << c.text;
        std::string prefix = "Configuration file /etc/x.toml line " + std::to_string(c.line) + ": ";
        EXPECT_EQ(s.message().rfind(prefix, 0), 0u) << s.message() << "\nwanted " << prefix;
        EXPECT_NE(s.message().find(c.problem), std::string::npos)
            << s.message() << "\nwanted " << c.problem;
    }
}

TEST(ConfigTest, MissingFileIsNamed) {
    Config c;
    Status s = LoadConfig("/nonexistent/lxrapi.toml", &c);
    EXPECT_EQ(s.code(), kUnreachable);
    EXPECT_EQ(
        s.message().rfind("Configuration file /nonexistent/lxrapi.toml cannot be opened: ", 0), 0u)
        << s.message();
}

TEST(ConfigTest, CurrentConfigFollowsTheEnvironmentAndFileChanges) {
    testing::TempDir dir;
    std::string path = dir.File("api.toml");
    { std::ofstream(path) << testing::kConfigText; }
    setenv("LXRAPI_CONFIG", path.c_str(), 1);
    std::shared_ptr<const Config> first, second;
    ASSERT_TRUE(CurrentConfig(&first).ok());
    ASSERT_TRUE(CurrentConfig(&second).ok());
    EXPECT_EQ(first.get(), second.get());  // parsed once
    { std::ofstream(path) << "broken = [\n"; }
    Status s = CurrentConfig(&second);
    EXPECT_EQ(s.code(), kUnreachable);
    EXPECT_EQ(s.message().rfind("Configuration file " + path + " line 1: ", 0), 0u) << s.message();
    unsetenv("LXRAPI_CONFIG");
    EXPECT_EQ(ConfigPath(), "lxrapi.toml");
}

}  // namespace
}  // namespace lxrapi
