#include "driver/dispatch.h"

#include <strings.h>

#include <string>

#include "cgi/fields.h"
#include "cgi/response.h"
#include "driver/api_boundary.h"
#include "driver/command_line.h"
#include "driver/identity.h"
#include "driver/update_document.h"
#include "html/errors.h"
#include "html/page.h"
#include "i18n/language.h"
#include "i18n/negotiate.h"
#include "pages/user_display.h"
#include "pages/user_selection.h"
#include "platform/env.h"
#include "platform/formatter.h"
#include "platform/output_profile.h"
#include "platform/system.h"
#include "platform/text.h"

namespace {

constexpr int kMessageSize = 8192;  // message and status buffers of a request
constexpr int kShortSize = 4096;    // POST status line, KV-LXR-15005, link text
constexpr int kReplyRoom = 65535;   // offered to the API; the buffer has one more

constexpr const char* kTitleKey = "KV-LXR-12060";
constexpr const char* kTitle = "LXR Administration Service";

// The API's reply; one request per process, so it can live here.
char reply[kReplyRoom + 1];

// The one failure exit. A message that is a URL redirects there, so that a
// catalogue entry or the API can send any failure to a page of the site's
// choosing; anything else is shown on a "503" error page. `status` may be
// the message's own buffer: the page then shows the status text instead of
// the message, which is how the missing-user POST has always answered.
void FailureExit(const char* message, char* status, int statusSize) {
    ErrorPageOrRedirect(message, "KV-LXR-12503 ", status, statusSize);
}

// A failure of the driver's own, with its message through LangWithID.
int Fail(const char* key, const char* text, char* message, char* status) {
    LangWithID->Translate(message, kMessageSize, key, text);
    FailureExit(message, status, kMessageSize);
    return 0;
}

// A failed API call: its own message if it left one, else the table's.
int ApiFailure(int result, char* message, char* status) {
    if (message[0] == '\0') GetMsg(result, message, kMessageSize);
    FailureExit(message, status, kMessageSize);
    return 0;
}

bool HasArg(const char* name) {
    return Args.find(name) != Args.end();
}

std::string ArgValue(const char* name) {
    auto it = Args.find(name);
    return it == Args.end() ? std::string() : it->second;
}

int GetFlow(const char* query, const char* identity, const std::string& adminPath, char* message,
            char* status) {
    if (query == nullptr || *query == '\0' || !HasArg("USER")) {
        int result = LXRAdminGetDirectory(identity, reply, kReplyRoom, message, kMessageSize,
                                          Lang->ISO(), Lang->Country(), Qualifier);
        if (result < 0) return ApiFailure(result, message, status);
        UserSelection(reply);
        return 0;
    }
    // An absent DIR reads as empty without being added to Args.
    std::string userPath = HasArg("USERDIR") ? ArgValue("USERDIR") : ArgValue("DIR");
    userPath += "/";
    userPath += ArgValue("USER");
    std::string context = AdministratorContext();
    int result =
        LXRAdminRead(identity, adminPath.c_str(), userPath.c_str(), reply, kReplyRoom, message,
                     kMessageSize, context.c_str(), Lang->ISO(), Lang->Country(), Qualifier);
    if (result < 0) return ApiFailure(result, message, status);
    UserDisplay(reply, result);
    return 0;
}

// The short page after a successful write: an alert with the message, then
// back to where the administrator came from. By default nothing is escaped:
// the message and the address go into the script and the link as they are.
void ResultPage(const char* message) {
    char text[kShortSize];
    Lang->Translate(text, sizeof text, "KV-LXR-12200 ", "200 OK");
    HTTPHeader(text);
    HTMLHeader(kTitleKey, kTitle, kTitleKey, kTitle, false);
    std::string returnQuery = ReturnQuery();
    const char* returnTo = CKvGetEnv("HTTP_RETURNTO").c_str();

    std::string address;
    std::string navigate = "window.close();";
    if (!HasArg("CLOSE")) {
        if (returnTo && *returnTo) {
            address = returnTo;
        } else if (HasArg("CancelTo")) {
            address = ArgValue("CancelTo");
        } else {
            const char* script = CKvGetEnv("SCRIPT_NAME").c_str();
            address = script ? script : "";
            address += returnQuery;
        }
        address = OutAddress(address);
        navigate = address.empty() ? "window.history.back();"
                                   : "window.location = '" + OutScript(address) + "';";
    }
    if (address.empty()) {
        AlertAndNavigate(message, navigate.c_str(), nullptr, nullptr);
    } else {
        Lang->Translate(text, sizeof text, "KV-LXR-12012", "Click here to continue.");
        AlertAndNavigate(message, navigate.c_str(), OutAttr(address).c_str(), text);
    }
    HTMLFooter();
}

int PostFlow(const char* identity, const std::string& adminPath, char* message, char* status) {
    // Refused before the body is read: nothing of a forged post is used.
    if (ForeignPost()) {
        return Fail("KV-LXR-15011", "The request came from another site and was refused.", message,
                    status);
    }
    std::string document;
    GetFields();
    if (!BuildUpdateDocument(PostData, document)) {
        // Message and status share this one buffer, so the page shows the
        // status text; the redirect test still sees the message. Kept as the
        // program has always answered, with the only non-zero CGI result.
        char shared[kShortSize] = {};
        LangWithID->Translate(shared, sizeof shared, "KV-LXR-15005",
                              "INTERNAL ERROR: Unable to determine user.");
        FailureExit(shared, shared, sizeof shared);
        return -1;
    }
    if (HasArg("DUMPUPDATEXML")) {
        DumpUpdateDocument(document);
        return 0;
    }
    std::string context = AdministratorContext();
    int result = LXRAdminWrite(identity, adminPath.c_str(), document.c_str(), message, kMessageSize,
                               context.c_str(), Lang->ISO(), Lang->Country(), Qualifier);
    // Consulted for success too, so that a plain success reads
    // "Operation Successful".
    if (message[0] == '\0') GetMsg(result, message, kMessageSize);
    if (IsURL(message)) {
        Redirect(message, 0, true);
        return 0;
    }
    if (result != 0) {
        // Every non-zero write result is a failure, positive ones included.
        char writeStatus[kShortSize] = {};
        FailureExit(message, writeStatus, sizeof writeStatus);
        return 0;
    }
    ResultPage(message);
    return 0;
}

}  // namespace

int KvMainEnvUTF8(int argc, char** argv, char** /*envp*/) {
    char message[kMessageSize] = {};
    char status[kMessageSize] = {};
    const char* method = CKvGetEnv("REQUEST_METHOD").c_str();
    const char* query = CKvGetEnv("QUERY_STRING").c_str();
    SetCharSet();

    if (method == nullptr || *method == '\0') {
        const char* locale = KvGetAdminLocale();
        Lang = GetLanguage("KvCPW", locale, 0, false);
        LangWithID = GetLanguage("KvCPW", locale, 0, true);
        return CommandLine(argc, argv);
    }

    SetLanguage("LXRAdmin");
    // Only a missing DN or the anonymous user is refused; an empty DN that
    // is present passes.
    const char* dn = AdministratorDN();
    if (dn == nullptr || strcasecmp(dn, "Anonymous") == 0) {
        return Fail("KV-LXR-15003", "LXR Administration Service must run under a Web Agent.",
                    message, status);
    }
    std::string adminPath;
    if (!AdministratorPath(adminPath)) {
        return Fail("KV-LXR-15004", "Unable to determine full path to current user.", message,
                    status);
    }
    ParseQueryString(query);
    const char* identity = EnvText("HTTP_LXRADMIN");
    if (identity == nullptr) {
        return Fail("KV-LXR-15007", "Missing administrator information (from Active Expression).",
                    message, status);
    }
    if (std::string(method) == "GET") return GetFlow(query, identity, adminPath, message, status);
    if (std::string(method) == "POST") return PostFlow(identity, adminPath, message, status);
    return Fail("KV-LXR-15006", "Unknown REQUEST_METHOD.", message, status);
}
