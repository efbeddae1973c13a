// The library's texts in the caller's language: which bundle a caller's
// arguments choose, and that every translation can stand in a message.
#include "translation.h"

#include <dirent.h>
#include <gtest/gtest.h>

#include "config.h"
#include "message.h"

namespace lxrapi {
namespace {

TEST(TranslationTest, CallerArgumentsChooseTheLanguage) {
    struct Case {
        const char* language;
        const char* country;
        Text text;
        const char* want;
        const char* locale;
    } cases[] = {
        {"de", "de", Words(Say::NoUserFound, "'nobody'"), "Kein Benutzer 'nobody' gefunden", "de"},
        {"de-AT", "de-AT", Words(Say::DisabledForever), "Für immer deaktiviert", "de"},
        {"fr-CA", "fr-CA", Words(Say::FailureCountReached, "7", "5"),
         "Le nombre d’échecs 7 a atteint le maximum de 5", "fr"},
        {"es", "", Words(Say::AdminNotInRole, "'uid=x'", "'desk'"),
         "El administrador 'uid=x' no puede actuar en el rol 'desk'", "es"},
        {"it", nullptr, Words(Say::PasswordTooShort, "8"),
         "Attributo userPassword: la nuova password è più corta di 8 caratteri", "it"},
        {"pt-BR", "pt-BR", Words(Say::InactiveSince, "2024-01-31 10:00 UTC"),
         "Inativo desde 2024-01-31 10:00 UTC", "pt"},
        {"pt", "BR", Words(Say::NoUserNamed), "Nenhum usuário foi informado", "pt"},
        {"zh-CN", "zh-CN", Words(Say::NoGroupEntry, "'cn=vip'"), "组条目 'cn=vip' 不存在", "zh"},
        // An accept-list: the first entry with a bundle wins.
        {"sv,nl;q=0.5,de;q=0.8", "sv,nl;q=0.5,de;q=0.8", Words(Say::NoUserNamed),
         "Es wurde kein Benutzer angegeben", "de"},
        // English, asked for or by default, and anything without a bundle.
        {"EN", "US", Words(Say::NoUserFound, "'x'"), "No user 'x' was found", ""},
        {"en,de", "en,de", Words(Say::NoUserNamed), "No user was named", ""},
        {"sv", "SE", Words(Say::DisabledForever), "Disabled forever", ""},
        {"", "", Words(Say::NoUserNamed), "No user was named", ""},
        {nullptr, nullptr, Words(Say::NoUserNamed), "No user was named", ""},
        {"../../etc", "", Words(Say::NoUserNamed), "No user was named", ""},
        // A configured reason is shown as written unless a bundle has it.
        {"de", "de", Words(Say::AsConfigured, "Gesperrt {0} ’x'"), "Gesperrt {0} ’x'", "de"},
        {"EN", "US", Words(Say::AsConfigured, "Suspended by security"), "Suspended by security",
         ""},
    };
    for (const Case& c : cases) {
        Translator words(c.language, c.country);
        EXPECT_EQ(words(c.text), c.want) << (c.language ? c.language : "(null)");
        EXPECT_EQ(words.locale(), c.locale) << (c.language ? c.language : "(null)");
    }
}

// A bundle may use the whole of ICU's message syntax; a text ICU cannot
// format is said in English.
TEST(TranslationTest, MessageSyntaxBeyondPlainArguments) {
    Translator words("eo", "", LXRAPI_TEST_CATALOGUE);
    ASSERT_EQ(words.locale(), "eo");
    EXPECT_EQ(words(Words(Say::NoUserFound, "'x'")), "Neniu uzanto 'x' trovita 'ĉi tie'");
    EXPECT_EQ(words(Words(Say::UsersMatch, "2", "'ann'")), "'ann': du uzantoj");
    EXPECT_EQ(words(Words(Say::UsersMatch, "3", "'ann'")), "'ann': 3 uzantoj");
    EXPECT_EQ(words(Words(Say::NoUserNamed)), "No user was named");
    EXPECT_EQ(words(Words(Say::DisabledForever)), "Disabled forever");  // not in the bundle
}

// Every bundle beside the library, whatever languages it holds.
std::vector<std::string> BundleLocales() {
    std::vector<std::string> names;
    std::string tree = ApiCatalogueDirectory() + "/LXRAPI";
    if (DIR* d = opendir(tree.c_str())) {
        while (dirent* e = readdir(d)) {
            std::string name = e->d_name;
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".res") == 0)
                names.push_back(name.substr(0, name.size() - 4));
        }
        closedir(d);
    }
    return names;
}

// A translation must keep every argument (a misplaced apostrophe or brace
// would swallow one), must need no repair by the last guard at the C
// boundary, and a reason must hold no comma. The demo configuration's
// reasons are translated too.
TEST(TranslationTest, EveryTranslationKeepsItsArgumentsAndIsSafe) {
    std::vector<std::string> locales = BundleLocales();
    EXPECT_GE(locales.size(), 8u);
    const std::vector<std::string> args = {"'a1'", "'b2'", "'c3'", "'d4'"};
    Config demo;
    Status loaded = LoadConfig(std::string(LXR_SOURCE_DIR) + "/examples/lxrapi.toml", &demo);
    ASSERT_TRUE(loaded.ok()) << loaded.message();
    for (const std::string& locale : locales) {
        Translator words(locale.c_str(), "");
        ASSERT_EQ(words.locale(), locale);
        for (const DirectoryConfig& d : demo.directories) {
            for (const GroupConfig& g : d.groups) {
                if (g.reason.empty()) continue;
                std::string said = words(Words(Say::AsConfigured, g.reason));
                SCOPED_TRACE(locale + " " + g.reason + ": " + said);
                EXPECT_NE(said, g.reason) << "untranslated";
                EXPECT_EQ(SafeMessage(said), said);
                EXPECT_EQ(said.find(','), std::string::npos);
            }
        }
        for (size_t i = 0; i < TextTable().size(); ++i) {
            const TextEntry& entry = TextTable()[i];
            std::string english = entry.english;
            std::vector<std::string> used;
            for (const std::string& a : args)
                if (english.find("{" + std::to_string(used.size()) + "}") != std::string::npos)
                    used.push_back(a);
            Text text{static_cast<Say>(i), used};
            std::string said = words(text);
            SCOPED_TRACE(locale + " " + entry.key + ": " + said);
            if (text.say != Say::AsConfigured) {
                EXPECT_NE(said, InEnglish(text)) << "untranslated";
            }
            for (const std::string& a : used) EXPECT_NE(said.find(a), std::string::npos);
            EXPECT_TRUE(IsSafeMessage(said));
            EXPECT_EQ(SafeMessage(said), said);
            if (entry.reason) {
                EXPECT_EQ(said.find(','), std::string::npos);
            }
        }
    }
}

TEST(TranslationTest, FillInPutsArgumentsInPlace) {
    struct Case {
        const char* pattern;
        std::vector<std::string> args;
        const char* want;
    } cases[] = {
        {"{1} before {0}", {"a", "b"}, "b before a"},
        {"{0} and {0}", {"x"}, "x and x"},
        {"missing {2}", {"a"}, "missing "},
        {"{x} {} {12", {"a"}, "{x} {} {12"},
        {"{0}", {"{1}"}, "{1}"},  // an argument is not read again
    };
    for (const Case& c : cases) EXPECT_EQ(FillIn(c.pattern, c.args), c.want) << c.pattern;
}

}  // namespace
}  // namespace lxrapi
