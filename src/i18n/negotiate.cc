#include "i18n/negotiate.h"

#include <string>

#include "i18n/language.h"
#include "platform/env.h"

namespace {

// The cookie entry that starts at `p`: up to the first ";" after it, but
// taken as k characters where k is that ";"'s index in the whole text. For
// a cookie that is not the first one the entry therefore runs on into the
// cookies that follow ("a=1; KVLOCALE=de; b=2" gives "KVLOCALE=de; b=2").
// The agents' cookies have always been read this way and stay so.
std::string EntryAt(const std::string& cookie, size_t p) {
    size_t k = cookie.find(';', p);
    if (k == std::string::npos) return cookie.substr(p);
    return cookie.substr(p, k);
}

// The language named in the cookie text, or "". The names are found by
// plain substring search, wherever they stand.
std::string CookieLanguage(const std::string& cookie) {
    std::string entry;
    bool found = false;
    if (const char* name = EnvText("HTTP_LANGUAGECOOKIE")) {
        size_t p = cookie.find(name);
        if (p != std::string::npos) {
            entry = EntryAt(cookie, p);
            found = true;
        }
    }
    if (!found) {
        size_t p = cookie.find("KVLOCALE");
        if (p != std::string::npos) entry = EntryAt(cookie, p);
    }
    size_t equals = entry.find('=');
    return equals == std::string::npos ? std::string() : entry.substr(equals + 1);
}

void Create(const char* application, const char* language, const char* country) {
    Lang = GetLanguage(application, language, country, false);
    LangWithID = GetLanguage(application, language, country, true);
}

}  // namespace

void SetLanguage(const char* application) {
    if (const char* cookie = EnvText("HTTP_COOKIE")) {
        std::string language = CookieLanguage(cookie);
        if (!language.empty()) {
            Create(application, language.c_str(), nullptr);
            return;
        }
    }

    if (const char* language = EnvText("HTTP_KV_LANGUAGE")) {
        Create(application, language, EnvText("HTTP_KV_COUNTRY"));
        return;
    }

    // The browser's list with the agent's fallback language appended at the
    // lowest quality there is, so it is taken only when nothing else fits.
    const char* accept = EnvText("HTTP_ACCEPT_LANGUAGE");
    std::string list = accept ? accept : "";
    if (const char* fallback = EnvText("HTTP_KV_LANGUAGE1")) {
        if (!list.empty()) list += ",";
        list += fallback;
        if (const char* country = EnvText("HTTP_KV_COUNTRY1")) {
            list += "-";
            list += country;
        }
        list += ";q=0.001";
    }
    if (!list.empty()) {
        Create(application, list.c_str(), nullptr);
        return;
    }

    if (Lang == nullptr) Create(application, "", nullptr);
}
