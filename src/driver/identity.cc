#include "driver/identity.h"

#include <strings.h>

#include "platform/env.h"

namespace {

// `name`, or `fallback` when `name` is unset or empty. The result may be
// null, or empty when only the fallback is set and empty.
const char* EnvWithFallback(const char* name, const char* fallback) {
    const char* value = CKvGetEnv(name).c_str();
    if (value == nullptr || *value == '\0') value = CKvGetEnv(fallback).c_str();
    return value;
}

}  // namespace

const char* AdministratorDN() {
    return EnvWithFallback("HTTP_KV_USERDN", "HTTP_KVUSERDN");
}

bool AdministratorPath(std::string& path) {
    if (const char* userPath = EnvText("HTTP_USERPATH")) {
        path = userPath;
        return true;
    }
    const char* space = EnvWithFallback("HTTP_KV_AUTHDIRNAMESPACE", "HTTP_KVAUTHDIRNAMESPACE");
    if (space == nullptr || *space == '\0') return false;
    path = space;
    path += "//";
    const char* server = EnvWithFallback("HTTP_KV_AUTHDIRSERVER", "HTTP_KVAUTHDIRSERVER");
    if (server == nullptr || *server == '\0') return false;
    path += server;
    path += "/";
    const char* dn = AdministratorDN();
    if (dn) path += dn;
    return true;
}

std::string AdministratorContext() {
    std::string context = "LXRAdmin=YES";
    if (const char* extra = EnvText("HTTP_LXRADMINCONTEXT")) {
        context += ";";
        context += extra;
    }
    return context;
}

bool ForeignPost() {
    const char* own = EnvText("LXR_ORIGIN");
    if (own == nullptr) return false;
    const char* site = EnvText("HTTP_SEC_FETCH_SITE");
    if (site != nullptr && strcasecmp(site, "cross-site") == 0) return true;
    const char* origin = EnvText("HTTP_ORIGIN");
    return origin != nullptr && strcasecmp(origin, own) != 0;
}

bool OwnOriginPost() {
    const char* own = EnvText("LXR_ORIGIN");
    const char* origin = EnvText("HTTP_ORIGIN");
    return own != nullptr && origin != nullptr && !ForeignPost() && strcasecmp(origin, own) == 0;
}
