// Runs the built lxrdir on the demo data: create, show, export and import
// again, audit, and its refusals.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

#include "test_support.h"

namespace lxrapi {
namespace {

struct Outcome {
    int status;
    std::string out;
};

Outcome Lxrdir(const std::string& args) {
    std::string command = std::string(LXRDIR_PATH) + " " + args + " 2>&1";
    Outcome run{-1, ""};
    FILE* p = popen(command.c_str(), "r");
    if (!p) return run;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, p)) > 0) run.out.append(buffer, n);
    int status = pclose(p);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

TEST(LxrdirTest, RefusalsAreClear) {
    testing::TempDir dir;
    std::string store = dir.File("d.db");
    ASSERT_EQ(Lxrdir("create " + store).status, 0);
    struct Case {
        std::string args;
        int status;
        const char* says;
    } cases[] = {
        {"", 2, "no command given"},
        {"frobnicate", 2, "unknown command \"frobnicate\""},
        {"show " + store, 2, "show takes STORE DN"},
        {"create " + store, 1, "already exists"},
        {"show " + store + " uid=nobody,o=t", 1, "no entry uid=nobody,o=t"},
        {"export " + dir.File("none.db"), 1, "cannot be opened: no such file"},
        {"import " + store + " " + dir.File("none.ldif"), 1, "cannot open"},
        {"--help", 0, "Usage: lxrdir COMMAND"},
    };
    for (const Case& c : cases) {
        Outcome r = Lxrdir(c.args);
        EXPECT_EQ(r.status, c.status) << c.args << "\n" << r.out;
        EXPECT_NE(r.out.find(c.says), std::string::npos) << c.args << "\n" << r.out;
    }
}

}  // namespace
}  // namespace lxrapi
