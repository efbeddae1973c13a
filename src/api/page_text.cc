#include "page_text.h"

#include <cstdio>

namespace lxrapi {

namespace {

constexpr const char* kRightSingleQuote = "\xe2\x80\x99";  // U+2019

bool IsControl(unsigned char c) {
    return c < 0x20 || c == 0x7f;
}

}  // namespace

bool BreaksPages(unsigned char c) {
    return c == '<' || c == '>' || c == '"' || c == '\'' || c == '\\' || IsControl(c);
}

size_t FindPageBreaker(std::string_view text) {
    for (size_t i = 0; i < text.size(); ++i)
        if (BreaksPages(static_cast<unsigned char>(text[i]))) return i;
    return std::string_view::npos;
}

std::string DescribeCharacter(unsigned char c) {
    switch (c) {
        case '<':
            return "a less-than sign";
        case '>':
            return "a greater-than sign";
        case '"':
            return "a quotation mark";
        case '\'':
            return "an apostrophe";
        case '\\':
            return "a backslash";
    }
    char code[8];
    std::snprintf(code, sizeof code, "U+%04X", c);
    if (IsControl(c)) return std::string("the control character ") + code;
    return std::string("the character ") + code;
}

std::string CharacterCode(unsigned char c) {
    char code[8];
    std::snprintf(code, sizeof code, "U+%04X", c);
    return code;
}

std::string NeutraliseForPages(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char ch : text) {
        unsigned char c = static_cast<unsigned char>(ch);
        if (!BreaksPages(c)) {
            out += ch;
            continue;
        }
        switch (c) {
            case '<':
                out += "\xe2\x80\xb9";  // U+2039 single left-pointing angle quotation mark
                break;
            case '>':
                out += "\xe2\x80\xba";  // U+203A
                break;
            case '"':
                out += "\xe2\x80\x9d";  // U+201D right double quotation mark
                break;
            case '\'':
                out += kRightSingleQuote;
                break;
            case '\\':
                out += "\xef\xbc\xbc";  // U+FF3C fullwidth reverse solidus
                break;
            case '\t':
            case '\r':
            case '\n':
                out += ' ';
                break;
            default:
                out += '?';
        }
    }
    return out;
}

std::string TypographicApostrophes(std::string_view text, size_t from) {
    if (from > text.size()) from = text.size();
    std::string out(text.substr(0, from));
    for (char c : text.substr(from)) {
        if (c == '\'')
            out += kRightSingleQuote;
        else
            out += c;
    }
    return out;
}

}  // namespace lxrapi
