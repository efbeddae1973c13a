#include "message.h"

namespace lxrapi {

namespace {

bool IsControl(unsigned char c) {
    return c < 0x20 || c == 0x7f;
}

bool Unsafe(unsigned char c) {
    return c == '"' || c == '\\' || c == '<' || c == '>' || IsControl(c);
}

bool StartsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

// The beginnings by which the program takes a message for an address; the
// case is ignored here although the program's test heeds it, to be safe.
bool LooksLikeAddress(std::string_view text) {
    std::string head;
    for (char c : text.substr(0, 6))
        head += (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    return StartsWith(head, "/") || StartsWith(head, "http:") || StartsWith(head, "https:");
}

}  // namespace

std::string_view CutAtCharacter(std::string_view text, size_t size) {
    if (text.size() <= size) return text;
    // Step back over continuation bytes (10xxxxxx) to the start of the
    // character that would be split.
    size_t end = size;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end);
}

std::string Shown(std::string_view text, size_t limit) {
    bool cut = limit != 0 && text.size() > limit;
    if (cut) text = CutAtCharacter(text, limit);
    std::string out;
    out.reserve(text.size() + 3);
    for (char c : text) out += Unsafe(static_cast<unsigned char>(c)) ? '?' : c;
    if (cut) out += "...";
    return out;
}

std::string Quoted(std::string_view text, size_t limit) {
    return "'" + Shown(text, limit) + "'";
}

std::string SafeMessage(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        if (c == '"')
            out += '\'';
        else if (c == '\r' || c == '\n' || c == '\t')
            out += ' ';
        else
            out += Unsafe(static_cast<unsigned char>(c)) ? '?' : c;
    }
    if (LooksLikeAddress(out)) out.insert(0, "Error: ");
    return out;
}

bool IsSafeMessage(std::string_view text) {
    for (char c : text)
        if (Unsafe(static_cast<unsigned char>(c))) return false;
    return !LooksLikeAddress(text);
}

}  // namespace lxrapi
