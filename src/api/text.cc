#include "text.h"

namespace lxrapi {

namespace {
bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
char Fold(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}
}  // namespace

std::string Lower(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = Fold(c);
    return out;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (Fold(a[i]) != Fold(b[i])) return false;
    return true;
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    return TrimRight(text);
}

std::string_view TrimRight(std::string_view text) {
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::vector<std::string_view> Words(std::string_view text) {
    std::vector<std::string_view> words;
    text = Trim(text);
    while (!text.empty()) words.push_back(TakeWord(text));
    return words;
}

std::string_view TakeWord(std::string_view& text) {
    text = Trim(text);
    size_t end = 0;
    while (end < text.size() && !IsBlank(text[end])) ++end;
    std::string_view word = text.substr(0, end);
    text = Trim(text.substr(end));
    return word;
}

std::string DnKey(std::string_view dn) {
    dn = Trim(dn);
    std::string key;
    key.reserve(dn.size());
    for (size_t i = 0; i < dn.size(); ++i) {
        char c = dn[i];
        if (c == ' ') {
            // A blank next to a separator is not part of the name.
            size_t j = i;
            while (j < dn.size() && dn[j] == ' ') ++j;
            bool beforeSeparator = j < dn.size() && (dn[j] == ',' || dn[j] == '=');
            bool afterSeparator = !key.empty() && (key.back() == ',' || key.back() == '=');
            if (beforeSeparator || afterSeparator) {
                i = j - 1;
                continue;
            }
        }
        key.push_back(Fold(c));
    }
    return key;
}

bool IsBelow(std::string_view dn, std::string_view base) {
    std::string d = DnKey(dn), b = DnKey(base);
    if (b.empty() || d.size() <= b.size() + 1) return false;
    return d.compare(d.size() - b.size(), b.size(), b) == 0 && d[d.size() - b.size() - 1] == ',';
}

bool AllDigits(std::string_view text) {
    if (text.empty()) return false;
    for (char c : text)
        if (c < '0' || c > '9') return false;
    return true;
}

namespace {
int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}
}  // namespace

std::string DecodePercent(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        int high = -1, low = -1;
        if (text[i] == '%' && i + 2 < text.size() && (high = HexDigit(text[i + 1])) >= 0 &&
            (low = HexDigit(text[i + 2])) >= 0) {
            out += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

}  // namespace lxrapi
