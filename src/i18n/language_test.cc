#include "i18n/language.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

constexpr const char* kNoCatalogue = "/no/such/catalogue";

// A translator for `locale` over the catalogue in `dir`; bundles are opened
// at the first translation, so the directory is set first.
std::unique_ptr<CLanguage> Open(const char* dir, const char* app, const char* locale,
                                bool withId = false) {
    setenv("LXRADMIN_CATALOGUE", dir, 1);
    return std::unique_ptr<CLanguage>(new CLanguage(app, locale, withId));
}

std::string Text(CLanguage& l, const char* key, const char* def) {
    char buf[4096] = "junk";
    l.Translate(buf, sizeof buf, key, def);
    return buf;
}

TEST(CLanguage, AcceptListChoosesFirstBundle) {
    struct Case {
        const char* locale;
        const char* want;
    } cases[] = {
        {"sv,de;q=0.8,en-US;q=0.001", "Verzeichnis"},
        {"de; b=2", "Verzeichnis"},
        {"en,de;q=0.5", "Directory"},
        {"ko;q=0.001", "Directory"},
        {"fr-CA", "Annuaire"},
        // Brazilian Portuguese and Simplified Chinese are stored under the
        // bare language; Traditional Chinese does not fall back to them.
        {"pt-BR", "Diret\xC3\xB3rio"},
        {"pt-PT", "Diret\xC3\xB3rio"},
        {"zh-CN", "\xE7\x9B\xAE\xE5\xBD\x95"},
        {"zh-Hans-SG", "\xE7\x9B\xAE\xE5\xBD\x95"},
        {"zh-TW", "Directory"},
        {"zh-Hant,ja;q=0.5",
         "\xE3\x83\x87\xE3\x82\xA3\xE3\x83\xAC\xE3\x82\xAF\xE3\x83\x88\xE3\x83\xAA"},
    };
    for (const Case& c : cases) {
        auto lang = Open(LXR_CATALOGUE_DIR, "LXRAdmin", c.locale);
        EXPECT_EQ(Text(*lang, "KV-LXR-12001", "Directory"), c.want) << c.locale;
    }
}

TEST(CLanguage, TestCatalogueCases) {
    char buf[4096];
    auto fr = Open(LXR_TEST_CATALOGUE_DIR, "LXRAdmin", "fr-CA", true);
    // URL texts are never prefixed, so they stay usable as redirects.
    EXPECT_EQ(Text(*fr, "KV-LXR-15003", "LXR Administration Service must run under a Web Agent."),
              "/aide/agent.html");
    EXPECT_EQ(Text(*fr, "KV-LXR-15004", "x"), "https://aide.example/chemin");
    EXPECT_EQ(Text(*fr, "KV-LXR-15005", "http://default.example/"), "http://default.example/");
    EXPECT_EQ(Text(*fr, "KV-LXR-15006", "http"), "[KV-LXR-15006] http");
    // Regional bundle first, then its language.
    EXPECT_EQ(Text(*fr, "KV-LXR-12002", "User"), "[KV-LXR-12002] Usager");
    EXPECT_EQ(Text(*fr, "#Account Status", "Account Status"), "[#Account Status] Statut du compte");
    EXPECT_EQ(Text(*fr, "#Caf\xC3\xA9_/", "x"), "[#Caf\xC3\xA9_/] Cl\xC3\xA9 avec octets");
    // A text without arguments is used as it stands, apostrophes and all.
    EXPECT_EQ(Text(*fr, "KV-LXR-12000", "x"), "[KV-LXR-12000] Saisir l'utilisateur {0}");
    fr->Translate(buf, sizeof buf, "KV-LXR-12000", "Marie", "x");
    EXPECT_STREQ(buf, "[KV-LXR-12000] Saisir l'utilisateur Marie");
    // A catalogue text that cannot be formatted gives way to the default.
    fr->Translate(buf, sizeof buf, "KV-LXR-12067", 7, "Unknown return from API (%0)");
    EXPECT_STREQ(buf, "[KV-LXR-12067] Unknown return from API (%0)");
    // Typed arguments follow the bundle's locale, plain ones do not.
    fr->Translate(buf, sizeof buf, "KV-LXR-12153", 1234L, "x", "{0}");
    std::string typed = buf;
    EXPECT_EQ(typed.substr(typed.size() - 16), " octets, 1234, x") << typed;
    EXPECT_EQ(typed.find("1234 octets"), std::string::npos) << typed;  // grouped the French way
    EXPECT_EQ(typed.find("1,234"), std::string::npos) << typed;

    auto gb = Open(LXR_TEST_CATALOGUE_DIR, "LXRAdmin", "en-GB");
    EXPECT_EQ(Text(*gb, "KV-LXR-12060", "LXR Administration Service"),
              "LXR Administration Service (GB)");
}

TEST(CLanguage, BufferLimits) {
    auto lang = Open(kNoCatalogue, "LXRAdmin", "en");
    auto withId = Open(kNoCatalogue, "LXRAdmin", "en", true);
    char buf[16];
    struct Case {
        CLanguage* l;
        int size;
        const char* def;
        int result;
        const char* want;
    } cases[] = {
        {lang.get(), 5, "Operation Successful", 1, "Oper"},
        {lang.get(), 1, "Operation Successful", 1, ""},
        {lang.get(), 16, "Access Denied", 1, "Access Denied"},
        {withId.get(), 16, "Access Denied", 1, "[KV-LXR-12062] "},
        {withId.get(), 10, "Access Denied", 1, "[KV-LXR-1"},
        {withId.get(), 16, nullptr, 0, "[KV-LXR-12062] "},  // no text: prefix only, result 0
        {lang.get(), 16, nullptr, 0, ""},
    };
    for (const Case& c : cases) {
        std::memset(buf, 'x', sizeof buf);
        EXPECT_EQ(c.l->Translate(buf, c.size, "KV-LXR-12062", c.def), c.result) << c.want;
        EXPECT_STREQ(buf, c.want);
        if (c.size < 16) {
            EXPECT_EQ(buf[c.size], 'x') << "wrote past size " << c.size;
        }
    }
    EXPECT_EQ(lang->Translate(nullptr, 16, "KV-LXR-12062", "Access Denied"), 0);
    std::memset(buf, 'x', sizeof buf);
    EXPECT_EQ(lang->Translate(buf, 0, "KV-LXR-12062", "Access Denied"), 0);
    EXPECT_EQ(buf[0], 'x');
    EXPECT_EQ(lang->Translate(buf, 0, "KV-LXR-12062", 1, "x {0}"), 0);
    EXPECT_EQ(lang->Translate(buf, 4, "KV-LXR-12062", 12345, "x {0}"), 1);
    EXPECT_STREQ(buf, "x 1");
}

TEST(GetLanguage, LocaleText) {
    struct Case {
        const char* language;
        const char* country;
        const char* want;
    } cases[] = {
        {"en", "", "en"},      {"en", "US", "en-US"},
        {"en", nullptr, "en"}, {"fr,en;q=0.5", nullptr, "fr,en;q=0.5"},
        {"", nullptr, ""},
    };
    for (const Case& c : cases) {
        std::unique_ptr<CLanguage> l(GetLanguage("LXRAdmin", c.language, c.country, true));
        EXPECT_STREQ(l->Country(), c.want);
        EXPECT_STREQ(l->ISO(), c.want);
        EXPECT_STREQ(l->Application(), "LXRAdmin");
        EXPECT_TRUE(l->IsWithID());
    }
}

TEST(Xlate, AdministratorLocaleWhenNoneGiven) {
    setenv("LXRADMIN_LOCALE", "de", 1);
    auto cli = Open(LXR_CATALOGUE_DIR, "KvCPW", nullptr);
    EXPECT_EQ(Text(*cli, "KV-LXR-12062", "Access Denied"), "Zugriff verweigert");
    EXPECT_STREQ(cli->Country(), "de");
    unsetenv("LXRADMIN_LOCALE");
    auto english = Open(LXR_CATALOGUE_DIR, "KvCPW", nullptr);
    EXPECT_EQ(Text(*english, "KV-LXR-12062", "Access Denied"), "Access Denied");
    EXPECT_STREQ(english->Country(), "en");
}

TEST(Xlate, TranslateReturnsTheKeyItself) {
    auto lang = Open(LXR_CATALOGUE_DIR, "LXRAdmin", "de");
    const char* key = "KV-LXR-99999";
    EXPECT_EQ(lang->Xlate::Translate(key), key);
    EXPECT_STREQ(lang->Xlate::Translate("KV-LXR-12002"), "Benutzer");
    lang->args().clear();
    lang->args().add("x");
    EXPECT_STREQ(lang->FormatPattern("{0}!"), "x!");
    unsetenv("LXRADMIN_CATALOGUE");
}

}  // namespace
