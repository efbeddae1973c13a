// LXRList as the web server runs it: one process per request, the agent's
// headers and the request in the environment, the body on standard input,
// over a private copy of the demo directory at the demo's reference time.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string work;  // the test's folder: demo store, configuration, secret

struct Admin {
    const char* dn;
    const char* role;
};
const Admin kLead{"uid=hd.lead,ou=admins,o=example", "helpdesk"};
const Admin kAuditor{"uid=auditor,ou=admins,o=example", "auditor"};

struct Response {
    std::string status;
    std::map<std::string, std::string> headers;
    std::string body;
};

std::string Slurp(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// Runs `argv` with exactly `env`, `input` on its standard input; its
// standard output.
std::string RunProgram(const std::vector<std::string>& argv, const std::vector<std::string>& env,
                       const std::string& input) {
    std::string in = work + "/.in", out = work + "/.out";
    std::ofstream(in, std::ios::binary) << input;
    pid_t pid = fork();
    if (pid == 0) {
        if (!freopen(in.c_str(), "rb", stdin) || !freopen(out.c_str(), "wb", stdout)) _exit(127);
        std::vector<char*> args, envp;
        for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
        for (const std::string& e : env) envp.push_back(const_cast<char*>(e.c_str()));
        args.push_back(nullptr);
        envp.push_back(nullptr);
        execve(args[0], args.data(), envp.data());
        _exit(127);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return Slurp(out);
}

// One request to LXRList by `admin`; `extra` adds to or replaces the
// environment (NAME=VALUE).
Response Request(const Admin& admin, const std::string& method, const std::string& query,
                 const std::string& body = "", std::vector<std::string> extra = {}) {
    std::vector<std::string> env = {
        "REQUEST_METHOD=" + method,
        "QUERY_STRING=" + query,
        std::string("HTTP_KV_USERDN=") + admin.dn,
        "HTTP_KV_AUTHDIRNAMESPACE=LDAP:",
        "HTTP_KV_AUTHDIRSERVER=ldap.example.com",
        std::string("HTTP_LXRADMIN=") + admin.role,
        "LXRAPI_CONFIG=" + work + "/lxrapi.toml",
        "LXR_NOW=1780315200",
        "LXR_LIST_SECRET=" + work + "/list.secret",
        "CONTENT_TYPE=application/x-www-form-urlencoded",
        "CONTENT_LENGTH=" + std::to_string(body.size()),
    };
    for (const std::string& e : extra) {
        std::string name = e.substr(0, e.find('=') + 1);
        bool replaced = false;
        for (std::string& have : env) {
            if (have.compare(0, name.size(), name) == 0) have = e, replaced = true;
        }
        if (!replaced) env.push_back(e);
    }
    std::string raw = RunProgram({LXR_LIST_EXE}, env, body);
    Response r;
    size_t end = raw.find("\n\n");
    std::istringstream head(raw.substr(0, end));
    for (std::string line; std::getline(head, line);) {
        size_t colon = line.find(": ");
        if (colon != std::string::npos) r.headers[line.substr(0, colon)] = line.substr(colon + 2);
    }
    r.status = r.headers["Status"];
    r.body = end == std::string::npos ? "" : raw.substr(end + 2);
    return r;
}

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// The names of the rows of a list page, in order.
std::vector<std::string> Names(const std::string& body) {
    std::vector<std::string> names;
    const std::string mark = "<td><a href=\"LXRAdmin?USERDIR=";
    for (size_t at = body.find(mark); at != std::string::npos; at = body.find(mark, at + 1)) {
        size_t open = body.find('>', at + 4);
        size_t close = body.find("</a>", open);
        names.push_back(body.substr(open + 1, close - open - 1));
    }
    return names;
}

// The bulk form's token on a list page, or "".
std::string Token(const std::string& body) {
    const std::string mark = "name=\"TOKEN\" value=\"";
    size_t at = body.find(mark);
    if (at == std::string::npos) return "";
    at += mark.size();
    return body.substr(at, body.find('"', at) - at);
}

class ListProgram : public ::testing::Test {
  protected:
    // A fresh demo directory for every test: the bulk actions change it.
    void SetUp() override {
        char pattern[] = "/tmp/lxr-list-test.XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        work = pattern;
        std::string config = Slurp(LXR_SOURCE_DIR "/examples/lxrapi.toml");
        for (size_t at = config.find("\"../var/demo.db\""); at != std::string::npos;
             at = config.find("\"../var/demo.db\"")) {
            config.replace(at, 16, "\"demo.db\"");
        }
        std::ofstream(work + "/lxrapi.toml") << config;
        std::ofstream(work + "/list.secret") << std::string(48, 'q');
        RunProgram(
            {LXR_LXRDIR_EXE, "create", work + "/demo.db", LXR_SOURCE_DIR "/examples/demo.ldif"}, {},
            "");
    }
    void TearDown() override { RunProgram({"/bin/rm", "-rf", work}, {}, ""); }
};

}  // namespace

namespace {

TEST_F(ListProgram, EachListAndTheSearchForTwoRoles) {
    struct Case {
        const Admin* admin;
        const char* query;
        std::vector<std::string> listed;     // each of these is on the page
        std::vector<std::string> notListed;  // none of these is
        bool actions;                        // the bulk form is offered
    } cases[] = {
        {&kLead,
         "DIR=staff&LIST=locked",
         {"ivan", "peggy", "rupert"},
         {"alice", "judy", "bob"},
         true},
        {&kAuditor, "DIR=staff&LIST=locked", {"ivan", "peggy", "rupert"}, {"alice"}, false},
        {&kLead,
         "DIR=staff&LIST=disabled",
         {"bob", "carol", "ivan", "niaj", "rupert"},
         {"alice", "dave", "frank", "judy"},
         true},
        {&kAuditor,
         "DIR=staff&LIST=disabled",
         {"bob", "carol", "rupert"},
         {"alice", "dave"},
         false},
        {&kLead, "DIR=partners&LIST=expired", {"yara"}, {"walter"}, true},
        {&kLead, "DIR=staff&LIST=idle&DAYS=60", {"olivia"}, {"alice"}, true},
        {&kLead, "DIR=staff&LIST=mustchange", {"heidi"}, {"alice", "bob"}, true},
        {&kLead, "DIR=staff&LIST=expiring&DAYS=365", {}, {"mallory"}, true},
        {&kLead, "DIR=staff&LIST=search&START=sam", {"sam.smith1", "sam.smith2"}, {"alice"}, true},
    };
    for (const Case& c : cases) {
        Response r = Request(*c.admin, "GET", c.query);
        ASSERT_EQ(r.status, "200 OK") << c.query << "\n" << r.body;
        std::vector<std::string> names = Names(r.body);
        auto listed = [&](const std::string& n) {
            for (const std::string& name : names) {
                if (name == n) return true;
            }
            return false;
        };
        for (const std::string& n : c.listed) EXPECT_TRUE(listed(n)) << c.query << ": " << n;
        for (const std::string& n : c.notListed) EXPECT_FALSE(listed(n)) << c.query << ": " << n;
        EXPECT_EQ(Has(r.body, "name=\"ACTION\""), c.actions && !names.empty()) << c.query;
        EXPECT_EQ(!Token(r.body).empty(), c.actions && !names.empty()) << c.query;
    }
}

TEST_F(ListProgram, RefusalsAndSecurityHeaders) {
    struct Case {
        const Admin* admin;
        const char* query;
        const char* status;
    } cases[] = {
        {&kAuditor, "DIR=partners&LIST=locked", "503 Service Unavailable"},  // not the role's
        {&kLead, "DIR=staff&LIST=search&START=%3Cscript%3E", "400 Bad Request"},
    };
    for (const Case& c : cases) {
        Response r = Request(*c.admin, "GET", c.query);
        EXPECT_EQ(r.status, c.status) << c.query << "\n" << r.body;
        EXPECT_FALSE(Has(r.body, "<script")) << c.query;
        EXPECT_TRUE(Has(r.headers["Content-Security-Policy"], "default-src 'none'")) << c.query;
        EXPECT_TRUE(Has(r.headers["Content-Security-Policy"], "frame-ancestors 'none'")) << c.query;
        EXPECT_EQ(r.headers["X-Content-Type-Options"], "nosniff") << c.query;
    }
}

TEST_F(ListProgram, CsvDownloadHoldsTheSameRows) {
    Response page = Request(kLead, "GET", "DIR=staff&LIST=disabled");
    Response csv = Request(kLead, "GET", "DIR=staff&LIST=disabled&FORMAT=csv");
    ASSERT_EQ(csv.status, "200 OK");
    EXPECT_EQ(csv.headers["Content-Type"], "text/csv; charset=UTF-8");
    EXPECT_EQ(csv.headers["Content-Disposition"], "attachment; filename=\"users-disabled.csv\"");
    std::vector<std::string> records;
    for (size_t at = 0, end; (end = csv.body.find("\r\n", at)) != std::string::npos; at = end + 2) {
        records.push_back(csv.body.substr(at, end - at));
    }
    std::vector<std::string> names = Names(page.body);
    ASSERT_EQ(records.size(), names.size() + 1);
    EXPECT_EQ(records[0], "Name,Distinguished name,Reasons,Last login,Failures");
    for (size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(
            records[i + 1].rfind(names[i] + ",\"uid=" + names[i] + ",ou=staff,o=example\",", 0), 0u)
            << records[i + 1];
    }
}

TEST_F(ListProgram, BulkUnlockChangesOnlyWhatATokenOrOurOriginAllows) {
    Response page = Request(kLead, "GET", "DIR=staff&LIST=locked");
    std::string token = Token(page.body);
    ASSERT_FALSE(token.empty());
    const std::string picks =
        "&PICK0=staff%2Fuid%3Divan%2Cou%3Dstaff%2Co%3Dexample"
        "&PICK1=staff%2Fuid%3Dpeggy%2Cou%3Dstaff%2Co%3Dexample";
    const std::string form = "DIR=staff&LIST=locked&ACTION=unlock" + picks;
    const std::vector<std::string> origin = {"LXR_ORIGIN=https://admin.example.org"};
    struct Case {
        const char* what;
        const Admin* admin;
        std::string body;
        std::vector<std::string> env;
        const char* status;
    } refused[] = {
        {"no token, no origin", &kLead, form, {}, "403 Forbidden"},
        {"forged token", &kLead, form + "&TOKEN=1780315200.00", {}, "403 Forbidden"},
        {"another administrator's token", &kAuditor, form + "&TOKEN=" + token, {}, "403 Forbidden"},
        {"cross-site with a token",
         &kLead,
         form + "&TOKEN=" + token,
         {origin[0], "HTTP_SEC_FETCH_SITE=cross-site"},
         "403 Forbidden"},
        {"other origin with a token",
         &kLead,
         form + "&TOKEN=" + token,
         {origin[0], "HTTP_ORIGIN=https://evil.example"},
         "403 Forbidden"},
        {"expired token",
         &kLead,
         form + "&TOKEN=" + token,
         {"LXR_NOW=1780325200"},
         "403 Forbidden"},
    };
    for (const Case& c : refused) {
        Response r = Request(*c.admin, "POST", "", c.body, c.env);
        EXPECT_EQ(r.status, c.status) << c.what;
        EXPECT_FALSE(Has(r.body, "Changed")) << c.what;
    }
    // Nothing of the refused posts was written.
    std::vector<std::string> before = Names(Request(kLead, "GET", "DIR=staff&LIST=locked").body);
    EXPECT_EQ(before, Names(page.body));

    Response done = Request(kLead, "POST", "", form + "&TOKEN=" + token);
    ASSERT_EQ(done.status, "200 OK") << done.body;
    EXPECT_EQ(Names(done.body).size(), 2u);
    size_t changed = 0;
    for (size_t at = done.body.find(">Changed<"); at != std::string::npos;
         at = done.body.find(">Changed<", at + 1)) {
        ++changed;
    }
    EXPECT_EQ(changed, 2u) << done.body;
    std::vector<std::string> after = Names(Request(kLead, "GET", "DIR=staff&LIST=locked").body);
    for (const char* unlocked : {"ivan", "peggy"}) {
        for (const std::string& n : after) EXPECT_NE(n, unlocked);
    }
    // Posting from our own origin passes without a token; the users are
    // unlocked already, so nothing is changed the second time.
    Response again =
        Request(kLead, "POST", "", form, {origin[0], "HTTP_ORIGIN=https://admin.example.org"});
    ASSERT_EQ(again.status, "200 OK") << again.body;
    EXPECT_TRUE(Has(again.body, "Nothing to change"));
}

}  // namespace
