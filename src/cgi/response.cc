#include "cgi/response.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>

#include "cgi/fields.h"
#include "platform/env.h"
#include "platform/formatter.h"
#include "platform/output_profile.h"
#include "platform/utf8.h"
#include "state/request_state.h"

namespace {

// The quality of one accept-header entry (0..1000), or -1 when the entry is
// dropped: a ";" at its end, a parameter without "=", a quality above 1000.
// Any parameter name counts, not only "q".
int EntryQuality(const std::string& entry, size_t semicolon) {
    if (semicolon == std::string::npos) return 1000;
    if (semicolon + 1 == entry.size()) return -1;
    size_t eq = entry.find('=', semicolon + 1);
    if (eq == std::string::npos) return -1;
    double scaled = std::atof(entry.c_str() + eq + 1) * 1000.0;
    // Truncated toward zero; values no int can hold (or NaN) are dropped
    // rather than converted. Anything in (-1, 0] truncates to 0 and is kept
    // out of the result later, as are all negative qualities.
    if (std::isnan(scaled) || scaled >= 1001.0 || scaled <= -1.0) return -1;
    return static_cast<int>(scaled);
}

}  // namespace

std::string HeaderValue(const char* text) {
    std::string out;
    for (const char* p = text ? text : ""; *p; ++p) {
        unsigned char c = static_cast<unsigned char>(*p);
        if (c >= 0x20 && c != 0x7F) out += *p;
    }
    return out;
}

void SetCharSet() {
    CKvGetEnv accept("HTTP_ACCEPT_CHARSET");
    if (accept.c_str() == nullptr) {
        charsetUsed = "UTF-8";
        return;
    }
    std::string upper = CKvUTF8ToUpper(accept.c_str());
    // Whatever its quality, even "utf-8;q=0": every page can be sent in it.
    if (upper.find("UTF-8") != std::string::npos) {
        charsetUsed = "UTF-8";
        return;
    }
    std::vector<std::string> sorted;
    SortAcceptHeader(upper, sorted);
    // A header whose entries are all refused still gets an answer we can write.
    charsetUsed = sorted.empty() ? "UTF-8" : sorted.front();
}

void HTTPHeader(const char* status) {
    if (bOutputHTTPHeader) return;
    prtFormatter.printf("Status: %s\nContent-Type: text/html;charset=%s\n", HeaderValue(status),
                        HeaderValue(charsetUsed.c_str()));
    // The strict profile also keeps other sites from framing the pages,
    // where the server does not already say so.
    if (StrictOutput()) {
        prtFormatter.printf("X-Frame-Options: DENY\n");
        prtFormatter.printf("Content-Security-Policy: frame-ancestors 'none'\n");
    }
    prtFormatter.printf("\n");
    bOutputHTTPHeader = true;
}

void Redirect(const char* url, const char* query, bool encodeQuery) {
    std::string target;
    std::string name;
    bool inMacro = false;
    for (const char* p = url ? url : ""; *p; ++p) {
        if (!inMacro) {
            if (*p == '<') {
                inMacro = true;
            } else {
                target += *p;
            }
        } else if (*p != '>') {
            name += *p;
        } else {
            auto it = Args.find(name);
            if (it != Args.end()) {
                target += URLEncode(it->second.c_str());
            } else {
                // Unknown macros stay as written, so a literal "<...>" survives.
                target += '<';
                target += name;
                target += '>';
            }
            name.clear();
            inMacro = false;
        }
    }
    // An unclosed macro at the end takes its value raw (and enters the name
    // into Args); this differs from the closed form and is kept so.
    if (inMacro && !name.empty()) target += Args[name];

    if (query != nullptr && *query != '\0') {
        target += target.find('?') == std::string::npos ? '?' : '&';
        target += encodeQuery ? URLEncode(query) : std::string(query);
    }
    prtFormatter.printf("Status: 302 Moved Temporarily\n");
    prtFormatter.printf("Content-Type: text/html;charset=%s\n", HeaderValue(charsetUsed.c_str()));
    prtFormatter.printf("Expires: Mon, 10 Apr 2000 00:00:01 GMT\n");
    prtFormatter.printf("Location: %s\n\n", HeaderValue(target.c_str()));
}

int SortAcceptHeader(std::string& header, std::vector<std::string>& result) {
    if (header.empty()) return 0;
    // Descending quality; std::multimap keeps equal keys in insertion order,
    // so ties keep the order of the header.
    std::multimap<int, std::string, std::greater<int>> byQuality;
    size_t start = 0;
    for (;;) {
        size_t comma = header.find(',', start);
        std::string entry =
            header.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        size_t semicolon = entry.find(';');
        int quality = EntryQuality(entry, semicolon);
        if (quality >= 0) byQuality.emplace(quality, entry.substr(0, semicolon));
        // A trailing comma ends the list like the end of the text does.
        if (comma == std::string::npos || comma + 1 == header.size()) break;
        start = comma + 1;
    }
    for (const auto& entry : byQuality) {
        if (entry.first > 0) result.push_back(entry.second);
    }
    return 1;
}
