#include "driver/command_line.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct ParseCase {
    std::vector<const char*> args;  // after the program name
    bool result;
    bool syntaxError;
    CMDLINE expected;  // checked only when the line is accepted
};

CMDLINE Line(const char* a, const char* c, const char* r, const char* w,
             std::vector<std::string> macros = {}) {
    return CMDLINE{a, c, r, w, std::move(macros)};
}

const ParseCase kParseCases[] = {
    {{"-Auid=adm,o=org", "-Csecret", "-Ruid=u1,o=org"},
     false,
     false,
     Line("uid=adm,o=org", "secret", "uid=u1,o=org", "")},
    {{"-A", "adm", "-C", "cred", "-W", "/tmp/u.xml", "a=1", "b="},
     false,
     false,
     Line("adm", "cred", "", "/tmp/u.xml", {"a=1", "b="})},
    {{"/Aadm", "/Ccred", "/W/tmp/u.xml"}, false, false, Line("adm", "cred", "", "/tmp/u.xml")},
    {{"-A", "-C", "-Ccred", "-Ru"}, false, false, Line("-C", "cred", "u", "")},
    {{"-A", "adm", "-C", "cred", "-R", "-W"}, false, false, Line("adm", "cred", "-W", "")},
    // Help, wherever it stands, and even on a faulty line without the flag.
    {{"-?"}, true, false, {}},
    {{"-Hx"}, true, false, {}},
    {{"/H"}, true, false, {}},
    {{"-Aadm", "-Ccred", "-Ru", "-H"}, true, false, {}},
    {{"-H", "plain"}, true, true, {}},
    // Syntax errors.
    {{"-h"}, true, true, {}},
    {{"-Aadm", "-Ccred", "-x", "-Ru"}, true, true, {}},
    {{"-"}, true, true, {}},
    {{"/"}, true, true, {}},
    {{"-Aadm", "-Ccred", "-Ru", "plain"}, true, true, {}},
    {{"-Aadm", "-Ccred", "-Ru", ""}, true, true, {}},
    {{"-Aadm", "-Ccred", "-A"}, true, true, {}},
    {{"-Aadm", "-Aother", "-Ccred", "-Ru"}, true, true, {}},
    {{"-Aadm", "-Ccred", "-Cother", "-Ru"}, true, true, {}},
    {{"-Aadm", "-Ccred", "-Ru", "-Wf"}, true, true, {}},
    {{"-Aadm", "-Ccred", "-Wf", "-Ru"}, true, true, {}},
    {{"-Aadm", "-Ccred", "-Ru", "-Rv"}, true, true, {}},
    {{"-Aadm", "-Ccred", "-Wf", "-Wg"}, true, true, {}},
    {{"-Aadm", "-Ru"}, true, true, {}},
    {{"-Ccred", "-Ru"}, true, true, {}},
    {{"-Aadm", "-Ccred"}, true, true, {}},
    {{"-Aadm", "-Ccred", "a=1"}, true, true, {}},
    {{"-Aadm", "-Ccred", "-R", ""}, true, true, {}},
    {{}, true, true, {}},
};

TEST(Parse, Table) {
    for (const ParseCase& c : kParseCases) {
        std::vector<char*> argv{const_cast<char*>("LXRAdmin")};
        std::string shown;
        for (const char* a : c.args) {
            argv.push_back(const_cast<char*>(a));
            shown += std::string(" [") + a + "]";
        }
        CMDLINE cmd;
        bool syntaxError = false;
        bool result = Parse(static_cast<int>(argv.size()), argv.data(), syntaxError, cmd);
        EXPECT_EQ(result, c.result) << shown;
        EXPECT_EQ(syntaxError, c.syntaxError) << shown;
        if (!c.result) {
            EXPECT_EQ(cmd.adminPath, c.expected.adminPath) << shown;
            EXPECT_EQ(cmd.adminCreds, c.expected.adminCreds) << shown;
            EXPECT_EQ(cmd.userPath, c.expected.userPath) << shown;
            EXPECT_EQ(cmd.xmlPath, c.expected.xmlPath) << shown;
            EXPECT_EQ(cmd.macros, c.expected.macros) << shown;
        }
    }
}

TEST(Parse, GoesOnAfterAnError) {
    // The fault in the first argument does not stop the later ones from
    // being recorded.
    const char* args[] = {"LXRAdmin", "-z", "-Aadm", "m=1"};
    CMDLINE cmd;
    bool syntaxError = false;
    EXPECT_TRUE(Parse(4, const_cast<char**>(args), syntaxError, cmd));
    EXPECT_TRUE(syntaxError);
    EXPECT_EQ(cmd.adminPath, "adm");
    EXPECT_EQ(cmd.macros, std::vector<std::string>{"m=1"});
}

}  // namespace
