#include "platform/escape.h"

namespace {

const char kHex[] = "0123456789ABCDEF";

void AppendHexByte(std::string& out, const char* prefix, unsigned char c) {
    out += prefix;
    out += kHex[c >> 4];
    out += kHex[c & 0x0F];
}

// The HTML escaping shared by text and attribute values.
std::string EscapeHtml(const char* text, bool quotes) {
    std::string out;
    if (text == nullptr) return out;
    for (const char* p = text; *p; ++p) {
        switch (*p) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += quotes ? "&quot;" : "\"";
                break;
            case '\'':
                out += quotes ? "&#39;" : "'";
                break;
            default:
                out += *p;
        }
    }
    return out;
}

}  // namespace

std::string HtmlText(const char* text) {
    return EscapeHtml(text, false);
}

std::string HtmlAttr(const char* text) {
    return EscapeHtml(text, true);
}

std::string ScriptString(const char* text) {
    std::string out;
    if (text == nullptr) return out;
    for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p; ++p) {
        unsigned char c = *p;
        if (c == '\\' || c == '\'' || c == '"') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20 || c == 0x7F || c == '<' || c == '>' || c == '&') {
            AppendHexByte(out, "\\x", c);
        } else if (c == 0xE2 && p[1] == 0x80 && (p[2] == 0xA8 || p[2] == 0xA9)) {
            // LINE SEPARATOR and PARAGRAPH SEPARATOR end a line in older engines.
            out += p[2] == 0xA8 ? "\\u2028" : "\\u2029";
            p += 2;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

std::string UrlArg(const char* text) {
    std::string out;
    if (text == nullptr) return out;
    for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p; ++p) {
        unsigned char c = *p;
        bool plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                     c == '-' || c == '_' || c == '.' || c == '~';
        if (plain) {
            out += static_cast<char>(c);
        } else {
            AppendHexByte(out, "%", c);
        }
    }
    return out;
}
