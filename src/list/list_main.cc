// LXRList: the accounts that need attention, per directory of the
// administrator's role, with a CSV download and bulk actions. One request per
// process, as LXRAdmin; the web agent's identity headers and the API are
// the same.
#include <strings.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "cgi/fields.h"
#include "cgi/response.h"
#include "driver/api_boundary.h"
#include "driver/identity.h"
#include "fields/field_model.h"
#include "i18n/language.h"
#include "i18n/negotiate.h"
#include "list/bulk.h"
#include "list/list_page.h"
#include "list/list_text.h"
#include "list/post_token.h"
#include "platform/env.h"
#include "platform/output_profile.h"

#ifndef LXR_LIST_SECRET_FILE
#define LXR_LIST_SECRET_FILE "/var/lib/lxradmin/list.secret"
#endif

namespace {

constexpr int kMessageSize = 8192;
constexpr int kReplyRoom = 1 << 20;  // a page of kMaxPageSize users with reasons
char reply[kReplyRoom + 1];

struct Request {
    const char* identity = nullptr;  // the role, HTTP_LXRADMIN
    std::string adminPath;
    TokenSubject subject;
};

// The API's message for a failed call, else the text for its result.
std::string ApiMessage(int result, char* message) {
    if (message[0] == '\0') GetMsg(result, message, kMessageSize);
    return message;
}

// The error page for a reply of the API that cannot be read; false.
bool UnreadableReply() {
    WriteListError(
        "502 Bad Gateway",
        ListText("KV-LXR-13040", "The directory answered with a document that cannot be read."));
    return false;
}

// The role's directories; false (with the error page written) on failure.
bool Directories(const Request& r, DirectoryTable& table) {
    char message[kMessageSize] = {};
    int result = LXRAdminGetDirectory(r.identity, reply, kReplyRoom, message, kMessageSize,
                                      Lang->ISO(), Lang->Country(), Qualifier);
    const char* fault = nullptr;
    if (result < 0) {
        WriteListError("503 Service Unavailable", ApiMessage(result, message));
        return false;
    }
    if (!ReadDirectoryList(reply, table, "", fault)) {
        return UnreadableReply();
    }
    return true;
}

// Asks the API for the list `query` names; false (with the error page
// written) on failure.
bool FetchList(const Request& r, const ListQuery& query, UserList& list) {
    char message[kMessageSize] = {};
    std::string request = ListRequestDocument(query);
    int result = LXRAdminList(r.identity, r.adminPath.c_str(), request.c_str(), reply, kReplyRoom,
                              message, kMessageSize, Lang->ISO(), Lang->Country(), Qualifier);
    if (result < 0) {
        WriteListError("503 Service Unavailable", ApiMessage(result, message));
        return false;
    }
    const char* fault = nullptr;
    if (!ReadUserList(reply, list, fault)) {
        return UnreadableReply();
    }
    return true;
}

bool ReadQuery(const FieldMap& fields, ListQuery& query) {
    std::string problem;
    if (ReadListQuery(fields, query, problem)) return true;
    WriteListError("400 Bad Request",
                   ListText("KV-LXR-13036", problem, "The value of {0} cannot be used."));
    return false;
}

std::string Secret() {
    std::string secret, problem;
    ReadTokenSecret(LXR_LIST_SECRET_FILE, secret, problem);
    return secret;
}

int GetFlow(const Request& r) {
    ListQuery query;
    if (!ReadQuery(Args, query)) return 0;
    DirectoryTable directories;
    if (!Directories(r, directories)) return 0;
    if (query.directory.empty() && !directories.empty()) {
        query.directory = directories.begin()->second;
    }
    bool asked = Args.count("LIST") != 0;
    UserList list;
    if (asked && !FetchList(r, query, list)) return 0;
    auto format = Args.find("FORMAT");
    if (asked && format != Args.end() && format->second == "csv") {
        WriteListCsv(list);
        return 0;
    }
    ListPageState state;
    state.directories = &directories;
    state.query = query;
    state.list = asked ? &list : nullptr;
    std::string secret = Secret();
    if (!secret.empty()) state.token = MakeToken(secret, r.subject, Now);
    WriteListPage(state);
    return 0;
}

// A bulk post is taken only when it carries a token made for this
// administrator, or when the server named its origin and the browser says
// the post comes from there. A post another site's page makes carries
// neither.
bool PostAllowed(const Request& r) {
    if (ForeignPost()) return false;
    auto token = PostData.find("TOKEN");
    if (token != PostData.end() && CheckToken(Secret(), r.subject, token->second, Now)) {
        return true;
    }
    return OwnOriginPost();
}

int PostFlow(const Request& r) {
    // The origin is checked before the body is read: nothing of a post
    // another site made is used.
    if (ForeignPost()) {
        WriteListError(
            "403 Forbidden",
            ListText("KV-LXR-13037", "The request came from another site and was refused."));
        return 0;
    }
    GetFields();
    if (!PostAllowed(r)) {
        WriteListError(
            "403 Forbidden",
            ListText("KV-LXR-13038",
                     "This form has expired or was not made for you. Open the list again."));
        return 0;
    }
    ListQuery query;
    if (!ReadQuery(PostData, query)) return 0;
    auto word = PostData.find("ACTION");
    const BulkAction* action = word == PostData.end() ? nullptr : FindBulkAction(word->second);
    if (action == nullptr) {
        WriteListError("400 Bad Request", ListText("KV-LXR-13035", "Unknown action."));
        return 0;
    }
    std::vector<std::string> picked;
    for (const auto& [name, value] : PostData) {
        if (strncasecmp(name.c_str(), "PICK", 4) == 0 && !value.empty()) picked.push_back(value);
    }
    if (picked.empty() || picked.size() > static_cast<size_t>(kMaxPageSize)) {
        WriteListError("400 Bad Request", ListText("KV-LXR-13034", "Select at least one user."));
        return 0;
    }
    WriteBulkResult(*action, RunBulkAction(*action, picked, r.identity, r.adminPath), query);
    return 0;
}

int ListMain() {
    const char* method = CKvGetEnv("REQUEST_METHOD").c_str();
    if (method == nullptr || *method == '\0') {
        std::fprintf(stderr, "LXRList runs as a CGI program behind the web agent.\n");
        return 2;
    }
    // Every shared writer escapes what it inserts.
    SetStrictOutput(true);
    SetCharSet();
    SetLanguage("LXRAdmin");
    OpenListText();
    FillTags();
    Request r;
    const char* dn = AdministratorDN();
    if (dn == nullptr || strcasecmp(dn, "Anonymous") == 0) {
        WriteListError("403 Forbidden",
                       ListText("KV-LXR-13041", "This page must run under a web agent."));
        return 0;
    }
    if (!AdministratorPath(r.adminPath)) {
        WriteListError("403 Forbidden",
                       ListText("KV-LXR-13042",
                                "Unable to determine the full path to the current administrator."));
        return 0;
    }
    r.identity = EnvText("HTTP_LXRADMIN");
    if (r.identity == nullptr) {
        WriteListError("403 Forbidden",
                       ListText("KV-LXR-13043", "The administrator's role is missing."));
        return 0;
    }
    r.subject = TokenSubject{dn, r.adminPath, r.identity};
    ParseQueryString(CKvGetEnv("QUERY_STRING").c_str());
    if (strcmp(method, "GET") == 0) return GetFlow(r);
    if (strcmp(method, "POST") == 0) return PostFlow(r);
    WriteListError("405 Method Not Allowed",
                   ListText("KV-LXR-13044", "Only GET and POST are answered."));
    return 0;
}

}  // namespace

int main() {
    static char outBuffer[1 << 16];
    std::setvbuf(stdout, outBuffer, _IOFBF, sizeof outBuffer);
    InitNow();
    int result = ListMain();
    std::fflush(stdout);
    return result;
}
