#include "platform/output_profile.h"

#include <strings.h>

#include <cctype>
#include <cstring>

#include "platform/env.h"
#include "platform/escape.h"

namespace {

// -1 until the environment has been read.
int strictProfile = -1;

std::string Plain(const char* text) {
    return text != nullptr ? text : "";
}

// The scheme of `text` ("http" for "http://x"), or "" when it has none: a
// scheme is a letter, then letters, digits, "+", "-" or ".", ended by ":"
// before any "/", "?" or "#".
std::string SchemeOf(const char* text) {
    if (!std::isalpha(static_cast<unsigned char>(text[0]))) return "";
    const char* p = text + 1;
    while (std::isalnum(static_cast<unsigned char>(*p)) || *p == '+' || *p == '-' || *p == '.') ++p;
    return *p == ':' ? std::string(text, p) : "";
}

}  // namespace

bool StrictOutput() {
    if (strictProfile < 0) {
        const char* profile = CKvGetEnv("LXR_OUTPUT_PROFILE").c_str();
        strictProfile = profile != nullptr && strcasecmp(profile, "strict") == 0 ? 1 : 0;
    }
    return strictProfile == 1;
}

void SetStrictOutput(bool strict) {
    strictProfile = strict ? 1 : 0;
}

std::string OutText(const char* text) {
    return StrictOutput() ? HtmlText(text) : Plain(text);
}

std::string OutAttr(const char* text) {
    return StrictOutput() ? HtmlAttr(text) : Plain(text);
}

std::string OutScript(const char* text) {
    return StrictOutput() ? ScriptString(text) : Plain(text);
}

std::string OutHandler(const char* text) {
    return StrictOutput() ? HtmlAttr(ScriptString(text).c_str()) : Plain(text);
}

std::string OutScriptHtml(const char* text) {
    return StrictOutput() ? ScriptString(HtmlText(text).c_str()) : Plain(text);
}

std::string OutUrlArg(const char* text) {
    return StrictOutput() ? UrlArg(text) : Plain(text);
}

std::string OutAddress(const char* text) {
    if (!StrictOutput() || text == nullptr) return Plain(text);
    // Browsers drop blanks in front of an address and tabs and line ends
    // inside it, so "java\nscript:" would still run; such text is refused
    // whole rather than cleaned.
    if (*text == ' ') return "";
    for (const char* p = text; *p; ++p) {
        unsigned char c = static_cast<unsigned char>(*p);
        if (c < 0x20 || c == 0x7F) return "";
    }
    std::string scheme = SchemeOf(text);
    if (scheme.empty() || strcasecmp(scheme.c_str(), "http") == 0 ||
        strcasecmp(scheme.c_str(), "https") == 0)
        return text;
    return "";
}
