// The catalogue check: every compiled bundle of every tree under the
// catalogue directory is read key by key, and the run fails when a locale
// lacks a key another locale of its tree has, or when a text would show
// wrongly or break the page it goes into. The directory is the program's
// own catalogue, or LXR_CHECK_CATALOGUE when set (a translator's work in
// progress, compiled with genrb).
#include <gtest/gtest.h>
#include <unicode/ures.h>
#include <unicode/ustring.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "i18n/bundle.h"

namespace {

namespace fs = std::filesystem;

// Texts of these trees go into HTML (and, for LXRAdmin, into single-quoted
// script strings) as they stand; the other trees go to the console.
bool IsPageTree(const std::string& tree) {
    return tree == "LXRAdmin" || tree == "LXRList";
}

// The texts formatted with arguments: how many the program passes and the
// English default, whose placeholders a translation must keep. KV-LXR-12067
// writes "%0" in English, which the formatter leaves alone; a translation may
// show the code as "{0}".
struct Formatted {
    const char* key;  // in catalogue form
    int arguments;
    const char* english;
};
const Formatted kFormatted[] = {
    {"KV-LXR-12067", 1, "Unknown return from API (%0)"},
    {"KV-LXR-12152_20", 2, " Error {1} returned.\nMessage: {0}"},
    {"KV-LXR-12153", 3, "Unable to open: {0} ({2})\n       Message: {1}"},
    {"KV-LXR-13020", 1, "{0} users on this page."},
    {"KV-LXR-13036", 1, "The value of {0} cannot be used."},
};

// Status lines go into the response header: ASCII, the code first.
const std::map<std::string, std::string> kStatusCodes = {
    {"KV-LXR-12200", "200 "},
    {"KV-LXR-12200_20", "200 "},
    {"KV-LXR-12503", "503 "},
    {"KV-LXR-12503_20", "503 "},
};

const Formatted* FormattedText(const std::string& key) {
    for (const Formatted& f : kFormatted) {
        if (key == f.key) return &f;
    }
    return nullptr;
}

// The argument numbers of the "{n...}" placeholders in `text`; false when a
// brace does not open a numbered argument.
bool Placeholders(const std::string& text, std::set<int>& numbers) {
    for (size_t i = text.find('{'); i != std::string::npos; i = text.find('{', i + 1)) {
        size_t j = i + 1;
        int n = 0;
        while (j < text.size() && text[j] >= '0' && text[j] <= '9') n = n * 10 + (text[j++] - '0');
        if (j == i + 1 || j == text.size() || (text[j] != '}' && text[j] != ',')) return false;
        numbers.insert(n);
    }
    return true;
}

// "&name;", "&#123;" or "&#x1F;" at `at`.
bool IsEntity(const std::string& text, size_t at) {
    size_t j = at + 1;
    if (j < text.size() && text[j] == '#') ++j;
    if (j < text.size() && text[j - 1] == '#' && (text[j] == 'x' || text[j] == 'X')) ++j;
    size_t start = j;
    while (j < text.size() && std::isalnum(static_cast<unsigned char>(text[j])) != 0) ++j;
    return j > start && j < text.size() && text[j] == ';';
}

// What is wrong with one text of `tree`, stored under `key` (catalogue form).
std::vector<std::string> Problems(const std::string& tree, const std::string& key,
                                  const std::string& text) {
    std::vector<std::string> found;
    const bool page = IsPageTree(tree);
    if (text.empty()) found.push_back("empty text");
    for (size_t i = 0; i < text.size(); ++i) {
        unsigned char c = static_cast<unsigned char>(text[i]);
        bool c1 = c == 0xC2 && i + 1 < text.size() &&
                  static_cast<unsigned char>(text[i + 1]) >= 0x80 &&
                  static_cast<unsigned char>(text[i + 1]) <= 0x9F;
        bool allowed = !page && (c == '\n' || (c == 7 && key == "KV-LXR-12151"));
        if ((c < 0x20 || c == 0x7F || c1) && !allowed) {
            found.push_back("control character at byte " + std::to_string(i));
        }
        if (page && (c == '\'' || c == '"' || c == '\\')) {
            found.push_back(std::string("a ") + text[i] + " ends the script string it goes into");
        }
        if (page && (c == '<' || c == '>')) {
            found.push_back(std::string("a bare ") + text[i] + " (pages write &lt; and &gt;)");
        }
        if (page && c == '&' && !IsEntity(text, i)) found.push_back("an & that starts no entity");
    }
    std::set<int> numbers;
    if (!Placeholders(text, numbers)) found.push_back("a brace that is no placeholder");
    const Formatted* formatted = FormattedText(key);
    std::set<int> required;
    if (formatted) Placeholders(formatted->english, required);
    for (int n : numbers) {
        if (!formatted || n >= formatted->arguments) {
            found.push_back("placeholder {" + std::to_string(n) + "} the English text lacks");
        }
    }
    for (int n : required) {
        if (numbers.count(n) == 0) found.push_back("drops {" + std::to_string(n) + "}");
    }
    if (formatted) {
        if (text.find('\'') != std::string::npos) {
            found.push_back("an apostrophe quotes what follows in a formatted text");
        }
        CpaArgList args;
        for (int i = 0; i < formatted->arguments; ++i) args.add("x");
        std::string out;
        if (!FormatMessagePattern(out, text.c_str(), args)) found.push_back("does not format");
    }
    auto status = kStatusCodes.find(key);
    if (status != kStatusCodes.end()) {
        if (text.compare(0, status->second.size(), status->second) != 0) {
            found.push_back("status line must start with \"" + status->second + "\"");
        }
        for (unsigned char c : text) {
            if (c < 0x20 || c > 0x7E) {
                found.push_back("status line must be printable ASCII");
                break;
            }
        }
    }
    return found;
}

// The texts of one compiled bundle, by key, its parents left out; false when
// ICU cannot read it.
bool ReadBundle(const std::string& treeDir, const std::string& locale,
                std::map<std::string, std::string>& texts, std::string& error) {
    UErrorCode status = U_ZERO_ERROR;
    UResourceBundle* bundle = ures_openDirect((treeDir + "/").c_str(), locale.c_str(), &status);
    if (U_FAILURE(status)) {
        error = u_errorName(status);
        return false;
    }
    bool ok = true;
    for (int32_t i = 0; i < ures_getSize(bundle) && ok; ++i) {
        UResourceBundle* item = ures_getByIndex(bundle, i, nullptr, &status);
        int32_t length = 0;
        const UChar* u = ures_getString(item, &length, &status);
        std::string utf8(static_cast<size_t>(length) * 3 + 1, '\0');
        int32_t bytes = 0;
        if (U_SUCCESS(status)) {
            u_strToUTF8(&utf8[0], static_cast<int32_t>(utf8.size()), &bytes, u, length, &status);
        }
        if (U_FAILURE(status)) {
            error = std::string(ures_getKey(item) ? ures_getKey(item) : "?") + ": " +
                    u_errorName(status);
            ok = false;
        } else {
            texts[ures_getKey(item)] = utf8.substr(0, static_cast<size_t>(bytes));
        }
        ures_close(item);
    }
    ures_close(bundle);
    return ok;
}

std::string CheckedDirectory() {
    const char* named = std::getenv("LXR_CHECK_CATALOGUE");
    return named && *named ? named : LXR_CATALOGUE_DIR;
}

TEST(Catalogue, EveryLocaleCompleteAndSafe) {
    const fs::path root = CheckedDirectory();
    ASSERT_TRUE(fs::is_directory(root)) << root;
    int bundles = 0;
    for (const fs::directory_entry& treeEntry : fs::directory_iterator(root)) {
        if (!treeEntry.is_directory()) continue;
        const std::string tree = treeEntry.path().filename().string();
        std::map<std::string, std::map<std::string, std::string>> locales;
        for (const fs::directory_entry& file : fs::directory_iterator(treeEntry.path())) {
            if (file.path().extension() != ".res") continue;
            const std::string locale = file.path().stem().string();
            std::string error;
            EXPECT_TRUE(ReadBundle(treeEntry.path().string(), locale, locales[locale], error))
                << tree << "/" << locale << ": " << error;
            ++bundles;
        }
        std::set<std::string> keys;
        for (const auto& [locale, texts] : locales) {
            for (const auto& entry : texts) keys.insert(entry.first);
        }
        for (const auto& [locale, texts] : locales) {
            for (const std::string& key : keys) {
                EXPECT_TRUE(texts.count(key)) << tree << "/" << locale << " lacks " << key;
            }
            for (const auto& [key, text] : texts) {
                for (const std::string& problem : Problems(tree, key, text)) {
                    ADD_FAILURE() << tree << "/" << locale << " " << key << ": " << problem
                                  << "\n  text: " << text;
                }
            }
        }
    }
    EXPECT_GT(bundles, 0) << "no compiled bundle under " << root;
}

// The check itself: each text below holds one fault a translation could
// bring in, and each must be caught.
TEST(Catalogue, ProblemsFound) {
    struct Case {
        const char* tree;
        const char* key;
        const char* text;
    } bad[] = {
        {"LXRAdmin", "KV-LXR-12015", "Ce champ doit l'être."},
        {"LXRAdmin", "KV-LXR-12016", "Feld \"leer\""},
        {"LXRAdmin", "KV-LXR-12016", "C:\\path"},
        {"LXRAdmin", "KV-LXR-12038", "<default&gt;"},
        {"LXRAdmin", "KV-LXR-12038", "&lt;default>"},
        {"LXRAdmin", "KV-LXR-12024", "Nicht&nbspgesetzt"},
        {"LXRAdmin", "KV-LXR-12024", "A & B"},
        {"LXRAdmin", "KV-LXR-12041", "line\nbreak"},
        {"LXRAdmin", "KV-LXR-12041", "c1 \xC2\x85 next line"},
        {"LXRAdmin", "KV-LXR-12002", ""},
        {"LXRAdmin", "KV-LXR-12002", "Benutzer {0}"},
        {"LXRAdmin", "KV-LXR-12067", "Unbekannt ({1})"},
        {"LXRAdmin", "KV-LXR-12067", "Unbekannt ({0)"},
        {"KvCPW", "KV-LXR-12152_20", " Fehler {1}.\nMeldung: {0} {2}"},
        {"KvCPW", "KV-LXR-12152_20", " Fehler {1} zurückgegeben."},
        {"KvCPW", "KV-LXR-12152_20", " Erreur {1} l'{0}"},
        {"KvCPW", "KV-LXR-12153", "{0,number} ({2}) {1}"},
        {"KvCPW", "KV-LXR-12153", "{name} {0} {1} {2}"},
        {"KvCPW", "KV-LXR-12062", "Zugriff\tverweigert"},
        {"KvCPW", "KV-LXR-12151", "\x08"},
        {"LXRAdmin", "KV-LXR-12503_20", "Dienst nicht verfügbar"},
        {"LXRAdmin", "KV-LXR-12503", "503 Dienst nicht verfügbar"},
        {"LXRAdmin", "KV-LXR-12200_20", "OK 200"},
    };
    for (const Case& c : bad) {
        EXPECT_FALSE(Problems(c.tree, c.key, c.text).empty()) << c.key << ": " << c.text;
    }
    // What the pages and the console take as it stands.
    const Case good[] = {
        {"LXRAdmin", "KV-LXR-12015", "Ce champ doit l’être."},
        {"LXRAdmin", "KV-LXR-12038", "&lt;par défaut&gt;"},
        {"LXRAdmin", "KV-LXR-12034", "R&eacute;gler&nbsp;&#224;&nbsp;&#xE0;"},
        {"LXRAdmin", "KV-LXR-12067", "Unbekannte Rückmeldung der API ({0})"},
        {"LXRAdmin", "KV-LXR-12022", " "},
        {"LXRAdmin", "KV-LXR-12503_20", "503 Service Unavailable"},
        {"KvCPW", "KV-LXR-12153", "Öffnen nicht möglich: {0} ({2})\n       Meldung: {1}"},
        {"KvCPW", "KV-LXR-12151", "\x07"},
        {"KvCPW", "KV-LXR-12150", "Syntax:\n  LXRAdmin -A<adminPath>"},
    };
    for (const Case& c : good) {
        EXPECT_TRUE(Problems(c.tree, c.key, c.text).empty()) << c.key << ": " << c.text;
    }
}

}  // namespace
