#include "list/list_page.h"

#include <nettle/base64.h>
#include <nettle/sha2.h>

#include "fields/dates.h"
#include "html/page.h"
#include "list/csv.h"
#include "list/list_text.h"
#include "platform/escape.h"
#include "platform/formatter.h"

namespace {

// The list's rules after the user pages' own stylesheet.
const char kListRules[] =
    R"(.LISTTABLE      { border-collapse: collapse; background-color: #ffffff; }
.LISTTABLE th, .LISTTABLE td { border: 1px solid #808080; padding: 2px 6px; text-align: left; vertical-align: top; }
.LISTNOTE       { font-style: italic; }
)";

const std::string& StyleText() {
    static const std::string text = std::string(DefaultStyles) + kListRules;
    return text;
}

std::string Text(const char* key, const char* english) {
    return ListText(key, english);
}

struct KindLabel {
    ListKind kind;
    const char* key;
    const char* english;
};
const KindLabel kKindLabels[] = {
    {ListKind::kLocked, "KV-LXR-13003", "Locked out"},
    {ListKind::kDisabled, "KV-LXR-13004", "Disabled now"},
    {ListKind::kExpired, "KV-LXR-13005", "Password expired"},
    {ListKind::kExpiring, "KV-LXR-13006", "Password expires within the days given"},
    {ListKind::kIdle, "KV-LXR-13007", "No login for more than the days given"},
    {ListKind::kMustChange, "KV-LXR-13008", "Must change the password at the next login"},
    {ListKind::kSearch, "KV-LXR-13009", "Search by the start of a name"},
};

struct ActionLabel {
    BulkKind kind;
    const char* key;
    const char* english;
};
const ActionLabel kActionLabels[] = {
    {BulkKind::kUnlock, "KV-LXR-13024", "Reset the failure count (unlock)"},
    {BulkKind::kEnable, "KV-LXR-13025", "Clear the disable dates"},
    {BulkKind::kMustChange, "KV-LXR-13026", "Require a password change"},
};

std::string ActionText(BulkKind kind) {
    for (const ActionLabel& a : kActionLabels) {
        if (a.kind == kind) return Text(a.key, a.english);
    }
    return "";
}

void Put(const std::string& text) {
    prtFormatter.printf("%s", text);
}

void WriteHead(const std::string& title) {
    // The language of the page's own texts, which the title has loaded.
    const char* lang = ListLang && *ListLang->BundleLocale() ? ListLang->BundleLocale() : "en";
    prtFormatter.printf("<!DOCTYPE html>\n<html lang=\"%s\">\n<head>\n", HtmlAttr(lang));
    Put("<meta charset=\"UTF-8\">\n");
    prtFormatter.printf("<title>%s</title>\n", title);
    prtFormatter.printf("<style>%s</style>\n</head>\n<body>\n", StyleText());
}

void WriteFoot() {
    Put("</body>\n</html>\n");
}

void WriteTitle(const std::string& title) {
    prtFormatter.printf("<div class=\"TITLEBOX\"><span class=\"TITLE\">%s</span></div>\n", title);
}

void WriteOption(const std::string& value, const std::string& label, bool selected) {
    prtFormatter.printf("<option value=\"%s\"%s>%s</option>\n", HtmlAttr(value.c_str()),
                        selected ? " selected" : "", HtmlText(label.c_str()));
}

// The GET form that picks the directory and the list.
void WriteQueryForm(const ListPageState& state) {
    const ListQuery& q = state.query;
    Put("<form method=\"GET\" class=\"SELECTINNERBOX\">\n<p>\n");
    prtFormatter.printf("<label>%s <select name=\"DIR\">\n", Text("KV-LXR-13001", "Directory"));
    if (state.directories) {
        for (const auto& [name, id] : *state.directories) WriteOption(id, name, id == q.directory);
    }
    Put("</select></label>\n");
    prtFormatter.printf("<label>%s <select name=\"LIST\">\n", Text("KV-LXR-13002", "List"));
    for (const KindLabel& k : kKindLabels) {
        prtFormatter.printf("<option value=\"%s\"%s>%s</option>\n", ListWord(k.kind),
                            k.kind == q.kind ? " selected" : "", Text(k.key, k.english));
    }
    Put("</select></label>\n");
    prtFormatter.printf(
        "<label>%s <input type=\"number\" name=\"DAYS\" min=\"1\" max=\"%d\" "
        "value=\"%d\"></label>\n",
        Text("KV-LXR-13010", "Days"), kMaxDays, q.days);
    prtFormatter.printf(
        "<label>%s <input type=\"text\" name=\"START\" value=\"%s\" maxlength=\"64\"></label>\n",
        Text("KV-LXR-13011", "Name starts with"), HtmlAttr(q.start.c_str()));
    prtFormatter.printf(
        "<label>%s <input type=\"number\" name=\"SIZE\" min=\"1\" max=\"%d\" "
        "value=\"%d\"></label>\n",
        Text("KV-LXR-13012", "Rows per page"), kMaxPageSize, q.size);
    prtFormatter.printf("<button type=\"submit\">%s</button>\n", Text("KV-LXR-13013", "Show"));
    Put("</p>\n</form>\n");
}

// The last login as the user page shows dates, with what follows the stamp.
std::string LastLoginText(const std::string& value) {
    if (value.empty()) return Text("KV-LXR-13032", "Never");
    const char* cursor = value.c_str();
    std::string stamp = NextToken(cursor);
    std::string date = OutDate(stamp.c_str());
    if (date.empty()) return HtmlText(value.c_str());
    std::string text = HtmlText(date.c_str());
    if (*cursor) text += " " + HtmlText(cursor);
    return text;
}

// The same as an ISO 8601 time for the CSV, or the value as it stands.
std::string LastLoginIso(const std::string& value) {
    if (value.size() < 15 || value[14] != 'Z') return value;
    std::string iso = value.substr(0, 4) + "-" + value.substr(4, 2) + "-" + value.substr(6, 2) +
                      "T" + value.substr(8, 2) + ":" + value.substr(10, 2) + ":" +
                      value.substr(12, 2) + "Z";
    return iso + value.substr(15);
}

std::string JoinReasons(const std::vector<std::string>& reasons, const char* separator) {
    std::string joined;
    for (const std::string& r : reasons) {
        if (!joined.empty()) joined += separator;
        joined += r;
    }
    return joined;
}

void WriteHeaderCells(bool selectable) {
    Put("<tr>");
    if (selectable) prtFormatter.printf("<th>%s</th>", Text("KV-LXR-13019", "Select"));
    prtFormatter.printf("<th>%s</th><th>%s</th><th>%s</th><th>%s</th><th>%s</th></tr>\n",
                        Text("KV-LXR-13014", "Name"), Text("KV-LXR-13015", "Distinguished name"),
                        Text("KV-LXR-13016", "Reasons"), Text("KV-LXR-13017", "Last login"),
                        Text("KV-LXR-13018", "Failures"));
}

void WriteUserRow(const ListedUser& user, size_t index, bool selectable) {
    Put("<tr>");
    if (selectable) {
        prtFormatter.printf("<td><input type=\"checkbox\" name=\"PICK%u\" value=\"%s\"></td>",
                            static_cast<unsigned>(index), HtmlAttr(user.userPath.c_str()));
    }
    std::string link = "LXRAdmin" + UserPageQuery(user.userPath);
    prtFormatter.printf("<td><a href=\"%s\">%s</a></td>", HtmlAttr(link.c_str()),
                        HtmlText(user.name.c_str()));
    prtFormatter.printf("<td>%s</td><td>", HtmlText(user.dn.c_str()));
    for (size_t i = 0; i < user.reasons.size(); ++i) {
        prtFormatter.printf("%s%s", i ? "<br>" : "", HtmlText(user.reasons[i].c_str()));
    }
    prtFormatter.printf("</td><td>%s</td><td>%s</td></tr>\n", LastLoginText(user.lastLogin),
                        HtmlText(user.failures.c_str()));
}

// Hidden fields that carry the list's query through the bulk post, so that
// the result page can lead back to the same list.
void WriteQueryFields(const ListQuery& q) {
    struct Field {
        const char* name;
        std::string value;
    } fields[] = {{"DIR", q.directory},
                  {"LIST", ListWord(q.kind)},
                  {"DAYS", std::to_string(q.days)},
                  {"START", q.start},
                  {"SIZE", std::to_string(q.size)}};
    for (const Field& f : fields) {
        if (f.value.empty()) continue;
        prtFormatter.printf("<input type=\"hidden\" name=\"%s\" value=\"%s\">\n", f.name,
                            HtmlAttr(f.value.c_str()));
    }
}

void WriteList(const ListPageState& state) {
    const UserList& list = *state.list;
    std::vector<const BulkAction*> offered;
    if (!state.token.empty()) {
        for (const BulkAction& action : kBulkActions) {
            bool writable = false;
            for (const char* name : action.attributes) writable |= name && Writable(list, name);
            if (writable) offered.push_back(&action);
        }
    }
    bool selectable = !offered.empty() && !list.users.empty();
    prtFormatter.printf("<p>%s", ListText("KV-LXR-13020", std::to_string(list.users.size()),
                                          "{0} users on this page."));
    std::string csv = ListQueryString(state.query, state.query.continuation) + "&FORMAT=csv";
    prtFormatter.printf(" <a href=\"%s\">%s</a></p>\n", HtmlAttr(csv.c_str()),
                        Text("KV-LXR-13023", "Download as CSV"));
    if (list.users.empty()) {
        prtFormatter.printf("<p class=\"LISTNOTE\">%s</p>\n",
                            Text("KV-LXR-13021", "No users are on this list."));
    } else {
        if (selectable) {
            Put("<form method=\"POST\">\n");
            prtFormatter.printf("<input type=\"hidden\" name=\"TOKEN\" value=\"%s\">\n",
                                HtmlAttr(state.token.c_str()));
            WriteQueryFields(state.query);
        }
        Put("<table class=\"LISTTABLE\">\n");
        WriteHeaderCells(selectable);
        for (size_t i = 0; i < list.users.size(); ++i) WriteUserRow(list.users[i], i, selectable);
        Put("</table>\n");
        if (selectable) {
            Put("<p>\n");
            for (const BulkAction* action : offered) {
                prtFormatter.printf(
                    "<button type=\"submit\" name=\"ACTION\" value=\"%s\">%s</button>\n",
                    action->word, ActionText(action->kind));
            }
            Put("</p>\n</form>\n");
        }
    }
    if (!list.continuation.empty()) {
        std::string next = ListQueryString(state.query, list.continuation);
        prtFormatter.printf("<p><a href=\"%s\">%s</a></p>\n", HtmlAttr(next.c_str()),
                            Text("KV-LXR-13022", "Next page"));
    }
}

}  // namespace

std::string ListSecurityPolicy() {
    static const std::string policy = [] {
        const std::string& style = StyleText();
        uint8_t digest[SHA256_DIGEST_SIZE];
        sha256_ctx ctx;
        sha256_init(&ctx);
        sha256_update(&ctx, style.size(), reinterpret_cast<const uint8_t*>(style.data()));
        sha256_digest(&ctx, sizeof digest, digest);
        char encoded[BASE64_ENCODE_RAW_LENGTH(SHA256_DIGEST_SIZE) + 1] = {};
        base64_encode_raw(encoded, sizeof digest, digest);
        return std::string("default-src 'none'; style-src 'sha256-") + encoded +
               "'; img-src 'self'; form-action 'self'; frame-ancestors 'none'; base-uri 'none'";
    }();
    return policy;
}

void WriteListHeaders(const char* status, const char* type, const char* attachment) {
    prtFormatter.printf("Status: %s\nContent-Type: %s\n", status, type);
    prtFormatter.printf("Content-Security-Policy: %s\n", ListSecurityPolicy());
    Put("X-Frame-Options: DENY\nX-Content-Type-Options: nosniff\n");
    // "same-origin" keeps the list's query out of other sites' logs and
    // still lets the browser send our own Origin with the bulk post.
    Put("Referrer-Policy: same-origin\nCache-Control: no-store\n");
    if (attachment)
        prtFormatter.printf("Content-Disposition: attachment; filename=\"%s\"\n", attachment);
    Put("\n");
}

void WriteListError(const char* status, const std::string& message) {
    WriteListHeaders(status, "text/html; charset=UTF-8");
    std::string title = Text("KV-LXR-13000", "Accounts that need attention");
    WriteHead(title);
    WriteTitle(title);
    prtFormatter.printf("<h1 class=\"STATUSFAILED\">%s</h1>\n", HtmlText(message.c_str()));
    prtFormatter.printf("<p><a href=\"?\">%s</a></p>\n", Text("KV-LXR-13030", "Back to the list"));
    WriteFoot();
}

void WriteListPage(const ListPageState& state) {
    WriteListHeaders("200 OK", "text/html; charset=UTF-8");
    std::string title = Text("KV-LXR-13000", "Accounts that need attention");
    WriteHead(title);
    WriteTitle(title);
    WriteQueryForm(state);
    if (state.list) WriteList(state);
    WriteFoot();
}

void WriteListCsv(const UserList& list) {
    // The list's word names the file when it is a plain word.
    std::string file = "users.csv";
    if (!list.list.empty() &&
        list.list.find_first_not_of("abcdefghijklmnopqrstuvwxyz") == std::string::npos) {
        file = "users-" + list.list + ".csv";
    }
    WriteListHeaders("200 OK", "text/csv; charset=UTF-8", file.c_str());
    Put(CsvRecord({Text("KV-LXR-13014", "Name"), Text("KV-LXR-13015", "Distinguished name"),
                   Text("KV-LXR-13016", "Reasons"), Text("KV-LXR-13017", "Last login"),
                   Text("KV-LXR-13018", "Failures")}));
    for (const ListedUser& user : list.users) {
        Put(CsvRecord({user.name, user.dn, JoinReasons(user.reasons, "; "),
                       LastLoginIso(user.lastLogin), user.failures}));
    }
}

void WriteBulkResult(const BulkAction& action, const std::vector<BulkOutcome>& outcomes,
                     const ListQuery& query) {
    WriteListHeaders("200 OK", "text/html; charset=UTF-8");
    std::string title = Text("KV-LXR-13000", "Accounts that need attention");
    WriteHead(title);
    WriteTitle(title);
    prtFormatter.printf("<h2>%s</h2>\n", ActionText(action.kind));
    Put("<table class=\"LISTTABLE\">\n");
    prtFormatter.printf("<tr><th>%s</th><th>%s</th></tr>\n", Text("KV-LXR-13039", "User"),
                        Text("KV-LXR-13031", "Result"));
    for (const BulkOutcome& o : outcomes) {
        std::string link = "LXRAdmin" + UserPageQuery(o.userPath);
        prtFormatter.printf("<tr><td><a href=\"%s\">%s</a></td>", HtmlAttr(link.c_str()),
                            HtmlText(o.userPath.c_str()));
        switch (o.result) {
            case BulkOutcome::kChanged:
                prtFormatter.printf("<td class=\"STATUSSUCCESS\">%s</td>",
                                    Text("KV-LXR-13027", "Changed"));
                break;
            case BulkOutcome::kUnchanged:
                prtFormatter.printf("<td>%s</td>", Text("KV-LXR-13028", "Nothing to change"));
                break;
            case BulkOutcome::kFailed:
                prtFormatter.printf("<td class=\"STATUSFAILED\">%s: %s</td>",
                                    Text("KV-LXR-13029", "Failed"), HtmlText(o.message.c_str()));
                break;
        }
        Put("</tr>\n");
    }
    Put("</table>\n");
    std::string back = ListQueryString(query, "");
    prtFormatter.printf("<p><a href=\"%s\">%s</a></p>\n", HtmlAttr(back.c_str()),
                        Text("KV-LXR-13030", "Back to the list"));
    WriteFoot();
}

std::string UserPageQuery(const std::string& userPath) {
    size_t slash = userPath.find('/');
    std::string dir = slash == std::string::npos ? "" : userPath.substr(0, slash);
    std::string user = slash == std::string::npos ? userPath : userPath.substr(slash + 1);
    return "?USERDIR=" + UrlArg(dir.c_str()) + "&USER=" + UrlArg(user.c_str());
}
