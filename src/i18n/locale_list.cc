#include "i18n/locale_list.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstring>

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string Trim(const std::string& s) {
    size_t b = 0;
    size_t e = s.size();
    while (b < e && IsBlank(s[b])) ++b;
    while (e > b && IsBlank(s[e - 1])) --e;
    return s.substr(b, e - b);
}

// Tags are ASCII; the C library's classes would follow the process locale.
bool IsAlpha(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsAlnum(char c) {
    return IsAlpha(c) || IsDigit(c);
}

bool AllOf(const std::string& s, bool (*test)(char)) {
    for (char c : s) {
        if (!test(c)) return false;
    }
    return !s.empty();
}

std::string Cased(std::string s, bool upper) {
    for (char& c : s) {
        c = static_cast<char>(upper ? std::toupper(static_cast<unsigned char>(c))
                                    : std::tolower(static_cast<unsigned char>(c)));
    }
    return s;
}

// The quality of a "q=" parameter value: "1", "0.8", ".5". Returns false
// for anything else.
bool ReadQuality(const std::string& v, double& q) {
    size_t i = 0;
    double whole = 0;
    bool digits = false;
    while (i < v.size() && IsDigit(v[i])) {
        whole = whole * 10 + (v[i++] - '0');
        digits = true;
    }
    double part = 0;
    if (i < v.size() && v[i] == '.') {
        double scale = 0.1;
        for (++i; i < v.size() && IsDigit(v[i]); ++i) {
            part += (v[i] - '0') * scale;
            scale /= 10;
            digits = true;
        }
    }
    if (!digits || i != v.size()) return false;
    q = std::min(whole + part, 1.0);
    return true;
}

// `tag` in file-name form, or "" when it is not a language tag.
std::string Canonical(const std::string& tag) {
    if (tag == "*") return tag;
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t i = 0; i <= tag.size(); ++i) {
        if (i == tag.size() || tag[i] == '-' || tag[i] == '_') {
            parts.push_back(tag.substr(start, i - start));
            start = i + 1;
        }
    }
    const std::string& language = parts[0];
    if (language.size() < 2 || language.size() > 3 || !AllOf(language, IsAlpha)) return "";
    std::string name = Cased(language, false);
    size_t i = 1;
    if (i < parts.size() && parts[i].size() == 4 && AllOf(parts[i], IsAlpha)) {
        std::string script = Cased(parts[i++], false);
        script[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(script[0])));
        name += "_" + script;
    }
    if (i < parts.size() && ((parts[i].size() == 2 && AllOf(parts[i], IsAlpha)) ||
                             (parts[i].size() == 3 && AllOf(parts[i], IsDigit)))) {
        name += "_" + Cased(parts[i++], true);
    }
    // Whatever follows must still be tag-shaped, even though it is dropped.
    for (; i < parts.size(); ++i) {
        if (parts[i].size() > 8 || !AllOf(parts[i], IsAlnum)) return "";
    }
    return name;
}

struct Entry {
    double quality;
    std::string name;
};

}  // namespace

std::vector<std::string> PreferredLocales(const char* text) {
    std::vector<Entry> entries;
    std::string all = text ? text : "";
    size_t start = 0;
    while (start <= all.size()) {
        size_t comma = all.find(',', start);
        if (comma == std::string::npos) comma = all.size();
        std::string piece = all.substr(start, comma - start);
        start = comma + 1;
        size_t semi = piece.find(';');
        std::string name = Canonical(Trim(piece.substr(0, semi)));
        double quality = 1;
        while (semi != std::string::npos) {
            size_t next = piece.find(';', semi + 1);
            std::string param = Trim(piece.substr(semi + 1, next - semi - 1));
            if (param.size() >= 2 && (param[0] == 'q' || param[0] == 'Q') && param[1] == '=') {
                double q = 1;
                if (ReadQuality(Trim(param.substr(2)), q)) quality = q;
            }
            semi = next;
        }
        if (!name.empty() && quality > 0) entries.push_back(Entry{quality, name});
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.quality > b.quality; });
    std::vector<std::string> names;
    for (const Entry& e : entries) names.push_back(e.name);
    return names;
}

std::string ParentLocale(const std::string& name) {
    // The plain "zh" bundle holds Chinese in the Simplified script, which a
    // reader of Traditional Chinese should not get in place of English:
    // Taiwan, Hong Kong and Macao go to "zh_Hant", and that goes nowhere.
    if (name == "zh_Hant") return std::string();
    if (name == "zh_TW" || name == "zh_HK" || name == "zh_MO") return "zh_Hant";
    size_t cut = name.rfind('_');
    return cut == std::string::npos ? std::string() : name.substr(0, cut);
}

namespace {

bool IsEnglish(const std::string& name) {
    return name == "en" || name.compare(0, 3, "en_") == 0;
}

}  // namespace

std::string FirstLocaleWithFile(const std::string& tree, const std::vector<std::string>& wanted) {
    for (const std::string& entry : wanted) {
        if (entry == "*") break;
        for (std::string name = entry; !name.empty(); name = ParentLocale(name)) {
            if (access((tree + name + ".res").c_str(), R_OK) == 0) return name;
        }
        if (IsEnglish(entry)) break;
    }
    return std::string();
}

namespace {

bool IsKeyByte(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
}

}  // namespace

std::string CatalogueKey(const char* key) {
    static const char kHex[] = "0123456789ABCDEF";
    const char* p = key ? key : "";
    // Most keys ("KV-LXR-12047") are all key bytes and are taken whole.
    const char* plain = p;
    while (*plain && IsKeyByte(static_cast<unsigned char>(*plain))) ++plain;
    std::string out(p, plain);
    if (*plain == '\0') return out;
    out.reserve(out.size() + 3 * std::strlen(plain));
    for (p = plain; *p; ++p) {
        unsigned char c = static_cast<unsigned char>(*p);
        if (IsKeyByte(c)) {
            out += *p;
        } else {
            out += '_';
            out += kHex[c >> 4];
            out += kHex[c & 15];
        }
    }
    return out;
}
