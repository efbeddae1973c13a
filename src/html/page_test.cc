#include "html/page.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "fields/field_model.h"
#include "support/request_reset.h"
#include "support/temp_dir.h"
#include "support/translators.h"

namespace {

// Runs each test in a fresh empty working directory (the stylesheet file is
// looked up there), with the head not yet written and default texts.
class PageTest : public lxrtest::RequestTest {
  protected:
    void SetUp() override {
        RequestTest::SetUp();
        ASSERT_FALSE(dir_.path().empty());
        char cwd[4096];
        ASSERT_NE(::getcwd(cwd, sizeof cwd), nullptr);
        oldDir_ = cwd;
        ASSERT_EQ(::chdir(dir_.path().c_str()), 0);
    }
    void TearDown() override {
        EXPECT_EQ(::chdir(oldDir_.c_str()), 0);
        RequestTest::TearDown();
    }
    void CreateStyleSheetFile() { std::ofstream(dir_.File("LXRAdmin.css")) << ".X { }\n"; }

    static std::string Head() {
        return lxrtest::CaptureStdout([] {
            HTMLHeader("KV-LXR-12076", "PAGE_TITLE", "KV-LXR-12060", "LXR Administration Service",
                       true);
        });
    }

    lxrtest::TempDir dir_;
    std::string oldDir_;
};

// The script between "<!--\n" and "//-->\n" of the first script element.
std::string ScriptOf(const std::string& page) {
    const std::string open = "<SCRIPT LANGUAGE=\"JavaScript\">\n<!--\n";
    size_t start = page.find(open);
    if (start == std::string::npos) return "";
    start += open.size();
    size_t end = page.find("//-->\n</SCRIPT>", start);
    return end == std::string::npos ? "" : page.substr(start, end - start);
}

// The head with the inline styles, the script library and the body are
// compared whole by the program's own cases; these tests cover what those
// cannot reach: a style sheet file beside the program, texts with quotes or
// markup, and the scripts' behaviour.

TEST_F(PageTest, HeadLinksTheStyleSheetFileWhenPresent) {
    CreateStyleSheetFile();
    std::string page = Head();
    const std::string link = "<link rel=\"stylesheet\" type=\"text/css\" href=\"./LXRAdmin.css\">";
    EXPECT_NE(page.find("content=\"PAGE_TITLE\">\n" + link + "\n<SCRIPT"), std::string::npos);
    EXPECT_EQ(page.find("<style type"), std::string::npos);
    EXPECT_EQ(page.find(".DIALOGBOX"), std::string::npos);  // not in DocHead either
    EXPECT_NE(page.find("    W.document.writeln('" + link + "');\n"), std::string::npos);
}

// Translated texts and the disabled tag go into the scripts as they stand, a
// quote in them breaking the script: kept, as the pages always did.
TEST_F(PageTest, LibraryCarriesTranslatedTextsUnescaped) {
    lxrtest::UseCatalogue({{"KV-LXR-12059",
                            "Date d'entr\xc3\xa9"
                            "e"}});
    tagDisabled = "Blocked <b>now</b>";
    std::string script = ScriptOf(Head());
    EXPECT_NE(script.find("alert('[KV-LXR-12059] Date d'entr\xc3\xa9"
                          "e');"),
              std::string::npos);
    EXPECT_NE(script.find("I.title = 'Blocked <b>now</b>';"), std::string::npos);
}

// Runs `script` with node; the exit status is 0 when it ran and found nothing
// wrong, and `output` holds what it printed.
int RunNode(const std::string& script, const char* tz, std::string& output) {
    char path[] = "/tmp/lxr-script-XXXXXX.js";
    int fd = ::mkstemps(path, 3);
    if (fd < 0) return -1;
    bool written = ::write(fd, script.data(), script.size()) == static_cast<ssize_t>(script.size());
    ::close(fd);
    if (!written) return -1;
    std::string command = std::string("TZ=") + tz + " node " + path + " 2>&1";
    FILE* pipe = ::popen(command.c_str(), "r");
    char chunk[4096];
    size_t n;
    while (pipe && (n = std::fread(chunk, 1, sizeof chunk, pipe)) > 0) output.append(chunk, n);
    int status = pipe ? ::pclose(pipe) : -1;
    ::unlink(path);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool HaveNode() {
    return std::system("node --version > /dev/null 2>&1") == 0;
}

// A stand-in for the browser: forms and document.write, enough for the
// library functions whose result depends on the zone the browser is in, and
// the date check at the ends of months (the browser suite drives the others), then the checks.
// Prints each failure, exits 1.
const char* const kHarness = R"JS(
var alerts = [];
function alert(text) { alerts.push(text); }
var written = '';
var focused = null;
function El(name, value) {
    return { name: name, value: value, defaultValue: value, checked: false,
             focus: function () { focused = name; } };
}
var document = {
    DisplayForm: { elements: {} }, PostForm: { elements: {} }, images: {}, forms: [],
    write: function (s) { written += s; }
};
var failures = [];
function check(what, got, want) {
    if (got !== want)
        failures.push(what + ': got ' + JSON.stringify(got) + ', want ' + JSON.stringify(want));
}
function reset() {
    alerts = []; written = ''; focused = null;
    document.DisplayForm.elements = {}; document.PostForm.elements = {}; document.images = {};
}
function setDate(f, y, m, d, hh, mi, ss, comment) {
    var E = document.DisplayForm.elements;
    E[f + '_YEAR'] = El(f + '_YEAR', String(y));
    E[f + '_MONTH'] = El(f + '_MONTH', String(m));
    E[f + '_DAY'] = El(f + '_DAY', d < 10 ? '0' + d : String(d));
    E[f + '_HOUR'] = El(f + '_HOUR', String(hh));
    E[f + '_MINUTE'] = El(f + '_MINUTE', String(mi));
    E[f + '_SECOND'] = El(f + '_SECOND', String(ss));
    E[f + '_COMMENT'] = El(f + '_COMMENT', comment);
}
)JS";

const char* const kChecks = R"JS(
var dates = [[2024, 1, 29, false], [2024, 1, 30, false], [2024, 1, 31, false],
             [2023, 1, 28, false], [2023, 1, 29, true], [1900, 1, 29, false],
             [2024, 3, 30, false], [2024, 3, 31, true], [2024, 10, 31, true],
             [2024, 0, 31, false], [2024, 11, 31, false], [2024, 7, 31, false]];
dates.forEach(function (c) {
    reset();
    setDate('D', c[0], c[1], c[2], 0, 0, 0, '');
    var what = 'InvalidDate ' + c[0] + '-' + c[1] + '-' + c[2];
    check(what, InvalidDate('D'), c[3]);
    check(what + ' alerts', alerts.join('|'), c[3] ? '[KV-LXR-12059] This is not a valid date.' : '');
    check(what + ' focus', focused, c[3] ? 'D_DAY' : null);
});

reset();
setDate('D', 2005, 0, 5, 10, 20, 30, '');
check('GetDate', GetDate('D').getTime(), new Date(2005, 0, 5, 10, 20, 30).getTime());
check('ConvertDate', ConvertDate('D'), EXPECTED_STAMP);
setDate('D', 2005, 0, 5, 10, 20, 30, 'on leave');
check('ConvertDate comment', ConvertDate('D'), EXPECTED_STAMP + ' on leave');
check('Now', Math.abs(Now().getTime() - Date.now()) < 5000, true);

reset();
DateEntry('D', 'Thu, 5 Jan 1995 10:20:30 GMT', 'Changed()');
var selects = written.split('<SELECT').length - 1;
check('DateEntry lists', selects, 6);
check('DateEntry closes', written.split('</SELECT>').length - 1, 6);
var years = written.substring(written.indexOf('_YEAR'), written.indexOf('_HOUR'));
check('DateEntry first year', /<OPTION VALUE="(\d+)"/.exec(years)[1], '1995');
check('DateEntry last year', /VALUE="(\d+)"[^<]*<\/OPTION><\/SELECT>/.exec(
    written.substring(written.indexOf('_YEAR'))) [1], '2049');
check('DateEntry onChange', written.indexOf('<SELECT NAME="D_MONTH" onChange="Changed()">') >= 0, true);
var local = new Date('Thu, 5 Jan 1995 10:20:30 GMT');
check('DateEntry day', written.indexOf('<OPTION VALUE="' + Pad2(local.getDate()) + '" SELECTED>') >= 0, true);
check('DateEntry month', written.indexOf('<OPTION VALUE="' + local.getMonth() + '" SELECTED>Jan</OPTION>') >= 0, true);
check('DateEntry selected', written.split(' SELECTED').length - 1, 6);
reset();
DateEntry('E', '', 'x');
check('DateEntry empty year', /_YEAR[^>]*><OPTION VALUE="(\d+)" SELECTED/.exec(written)[1],
      String(new Date().getFullYear()));
check('DateEntry empty day', written.indexOf('<OPTION VALUE="01" SELECTED>01</OPTION>') >= 0, true);

reset();
var W = { document: { text: '', write: function (s) { this.text += s; },
                      writeln: function (s) { this.text += s + '\n'; } } };
LogEntry(W, 'Wed, 5 Jan 2005 10:20:30 GMT', 'OK', '10.0.0.1', 'via web');
check('LogEntry', W.document.text, LOG_ENTRY);
check('LocalDate', LocalDate('Wed, 5 Jan 2005 10:20:30 GMT'),
      new Date(Date.UTC(2005, 0, 5, 10, 20, 30)).toLocaleString());
reset();
InsertLocalDate2('Wed, 5 Jan 2005 10:20:30 GMT');
check('InsertLocalDate2', written, INSERTED_DATE);

reset();
var E = document.DisplayForm.elements;
E['N'] = El('N', ''); E['N_COUNT'] = El('N_COUNT', '3'); E['N_DATE'] = El('N_DATE', 'then');
E['N'].checked = true;
NowOnly('N');
check('NowOnly count', E['N_COUNT'].value, '0');
check('NowOnly date', E['N_DATE'].value, new Date(Date.UTC(2005, 0, 5, 10, 20, 30)).toLocaleString());
E['N'].checked = false;
NowOnly('N');
check('NowOnly back count', E['N_COUNT'].value, '3');
check('NowOnly back date', E['N_DATE'].value, 'then');

if (failures.length) {
    console.log(failures.join('\n'));
    process.exit(1);
}
console.log('ok');
)JS";

std::string Replace(std::string text, const std::string& from, const std::string& to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

TEST_F(PageTest, ScriptLibraryWorksInNode) {
    if (!HaveNode()) GTEST_SKIP() << "node not installed";
    std::string library = ScriptOf(Head());
    ASSERT_FALSE(library.empty());
    struct Zone {
        const char* tz;
        const char* stamp;      // 2005-01-05 10:20:30 local, in UTC
        const char* localTime;  // 2005-01-05 10:20:30 UTC, local
    };
    const Zone zones[] = {{"UTC", "20050105102030Z", "2005-01-05&nbsp;10:20:30"},
                          {"America/New_York", "20050105152030Z", "2005-01-05&nbsp;05:20:30"},
                          {"Asia/Tokyo", "20050105012030Z", "2005-01-05&nbsp;19:20:30"}};
    for (const Zone& z : zones) {
        std::string checks = Replace(kChecks, "EXPECTED_STAMP", std::string("'") + z.stamp + "'");
        checks =
            Replace(checks, "INSERTED_DATE", std::string("'<nobr>") + z.localTime + "</nobr>'");
        std::string cell = "<td width=\"1%\" valign=\"top\" nowrap><nobr>";
        checks =
            Replace(checks, "LOG_ENTRY",
                    "'<tr>" + cell + z.localTime + "</nobr></td>" + cell + "OK</nobr></td>" + cell +
                        "10.0.0.1</nobr></td><td valign=\"top\" nowrap><nobr>via web"
                        "</nobr></td></tr>'");
        std::string output;
        EXPECT_EQ(RunNode(kHarness + library + checks, z.tz, output), 0) << "TZ=" << z.tz << "\n"
                                                                         << output;
    }
}

TEST_F(PageTest, FocusScriptFocusesTheFirstEditableElement) {
    if (!HaveNode()) GTEST_SKIP() << "node not installed";
    std::string focus = ScriptOf(lxrtest::CaptureStdout(SetFocus));
    ASSERT_FALSE(focus.empty());
    std::string script = R"JS(
var focused = null;
function E(type, name) { return { type: type, focus: function () { focused = name; } }; }
var document = { forms: [ { elements: [E('hidden', 'h'), E('submit', 's'), E('button', 'b'),
                                       E('select-one', 'sel'), E('text', 't')] } ] };
)JS" + focus + R"JS(
if (focused !== 'sel') { console.log('focused ' + focused); process.exit(1); }
document = { forms: [] };
)JS" + focus;
    std::string output;
    EXPECT_EQ(RunNode(script, "UTC", output), 0) << output;
}

}  // namespace
