#include "cgi/fields.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/console.h"
#include "platform/env.h"
#include "platform/formatter.h"
#include "platform/output_profile.h"
#include "platform/utf8.h"
#include "state/request_state.h"

namespace {

// The value of one hex digit, or -1 when `c` is not one.
int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The environment variable `preferred`, or `fallback` when the first is
// unset or empty. Null when neither holds text.
const char* EnvEither(const char* preferred, const char* fallback) {
    const char* value = EnvText(preferred);
    return value != nullptr ? value : EnvText(fallback);
}

// The declared body length: leading blanks, an optional sign and the digits
// that follow, as atol reads them, but without atol's undefined overflow.
// Negative counts as 0 and anything above kMaxBodyLength is cut to it, so a
// forged header can neither make us allocate nor wait for an absurd body.
long BodyLength(const char* text) {
    if (text == nullptr) return 0;
    errno = 0;
    long long n = std::strtoll(text, nullptr, 10);
    if (n <= 0) return 0;
    if (errno == ERANGE || n > kMaxBodyLength) return kMaxBodyLength;
    return static_cast<long>(n);
}

// The character set named by the first "LXRENC" in `data`: the text from
// seven characters after it up to the next "&", with its length taken modulo
// 255 as the posting pages have always done. False when no "&" follows.
bool PostedCharset(const char* data, char (&charset)[256]) {
    const char* found = std::strstr(data, "LXRENC");
    if (found == nullptr) return false;
    // "LXRENC" is six bytes; the name starts after the seventh (the "=").
    if (found[6] == '\0') return false;
    const char* start = found + 7;
    const char* amp = std::strchr(start, '&');
    if (amp == nullptr) return false;
    size_t length = static_cast<size_t>(amp - start) % 255;
    std::memcpy(charset, start, length);
    charset[length] = '\0';
    return true;
}

// `text` without any blank or tab, wherever they stand.
std::string WithoutBlanks(const char* text) {
    std::string out;
    for (const char* p = text; *p; ++p) {
        if (*p != ' ' && *p != '\t') out += *p;
    }
    return out;
}

// Stores one "name=value" piece into `fields`. The "=" is cut while the name
// is read and put back afterwards, so the caller's text keeps its pairs.
void AddPiece(FieldMap& fields, char* piece, bool decode, const char* charset) {
    char* eq = std::strchr(piece, '=');
    std::string name;
    std::string value;
    if (eq == nullptr) {
        name = WithoutBlanks(piece);
    } else {
        *eq = '\0';
        name = WithoutBlanks(piece);
        value = decode ? URLDecode(eq + 1) : std::string(eq + 1);
        *eq = '=';
    }
    if (charset != nullptr) value = CKvToUTF8(value.c_str(), charset);
    fields[name] = value;
}

}  // namespace

std::string URLDecode(const char* text) {
    std::string out;
    if (text == nullptr) return out;
    const char* p = text;
    while (*p) {
        char c = *p++;
        if (c == '+') {
            out += ' ';
        } else if (c != '%') {
            out += c;
        } else if (*p == '\0') {
            break;  // a lone "%" at the end adds nothing
        } else {
            int high = HexValue(*p);
            if (high < 0) {
                out += *p++;  // not an escape: the "%" goes, the character stays
                continue;
            }
            ++p;
            int low = 0;
            if (*p != '\0') {
                // A second character that is no digit is consumed all the same.
                low = HexValue(*p++);
                if (low < 0) low = 0;
            }
            out += static_cast<char>(high * 16 + low);
        }
    }
    return out;
}

std::string URLEncode(const char* utf8Text) {
    std::string out;
    // Our own formatter, so that a caller's prtFormatter text stays intact.
    CKvFormatter hex;
    CKvUTF8CharIterator it(utf8Text);
    for (int c = it.next(); c != 0; c = it.next()) {
        if (c >= 128 && c <= 247) {
            out += '%';
            out += hex.sprintf("%x", c);
        } else if (KvIsAlpha(c) || KvIsDigit(c)) {
            // Deliberately one byte, also for letters beyond U+00FF.
            out += static_cast<char>(c & 0xFF);
        } else if (KvIsWhiteSpace(c)) {
            out += '+';
        } else {
            out += '%';
            out += hex.sprintf("%02lX", static_cast<long>(c));
        }
    }
    return out;
}

void addToFields(FieldMap& fields, char* data, bool decode) {
    if (data == nullptr) return;
    char charset[256];
    bool converting = PostedCharset(data, charset);
    // Split as strtok splits: "&"s in front of a piece are passed over and
    // left alone, the one that ends a piece is overwritten with NUL.
    char* p = data;
    while (*p) {
        if (*p == '&') {
            ++p;
            continue;
        }
        char* piece = p;
        char* amp = std::strchr(piece, '&');
        if (amp != nullptr) {
            *amp = '\0';
            p = amp + 1;
        } else {
            p = piece + std::strlen(piece);
        }
        AddPiece(fields, piece, decode, converting ? charset : nullptr);
    }
}

void ParseQueryString(const char* query) {
    if (query == nullptr) return;
    std::string name;
    std::string value;
    bool inValue = false;
    for (const char* p = query; *p; ++p) {
        if (*p == '&') {
            Args[name] = URLDecode(value.c_str());
            // Only a pair ended by "&" is expanded; the last pair never is.
            if (strcasecmp(name.c_str(), "LXRAdminARGS") == 0) {
                std::string inner = URLDecode(value.c_str());
                ParseQueryString(inner.c_str());
            }
            name.clear();
            value.clear();
            inValue = false;
        } else if (*p == '=') {
            inValue = true;  // a further "=" inside the value is dropped
        } else if (inValue) {
            value += *p;
        } else {
            name += *p;
        }
    }
    if (!name.empty()) Args[name] = URLDecode(value.c_str());
}

std::string ReturnQuery() {
    std::string query;
    for (const auto& [name, value] : Args) {
        if (strcasecmp(name.c_str(), "USERDIR") == 0 || strcasecmp(name.c_str(), "USER") == 0)
            continue;
        query += query.empty() ? "?" : "&";
        query += OutUrlArg(name);
        if (!value.empty()) {
            query += "=";
            query += OutUrlArg(value);
        }
    }
    return query;
}

void GetFields() {
    // Kept for the life of the process, like the rest of the request.
    static std::vector<char> body;
    long length = BodyLength(EnvEither("HTTP_CONTENT_LENGTH", "CONTENT_LENGTH"));
    body.assign(static_cast<size_t>(length) + 1, '\0');
    KvGetStringInputFromConsole(static_cast<int>(length + 1), body.data(), 0);
    body[static_cast<size_t>(length)] = '\0';

    const char* type = EnvEither("HTTP_CONTENT_TYPE", "CONTENT_TYPE");
    bool decode = type != nullptr && strcasecmp(type, "application/x-www-form-urlencoded") == 0;
    addToFields(PostData, body.data(), decode);
}
