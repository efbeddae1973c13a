#include "i18n/bundle.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "support/capture.h"
#include "support/temp_dir.h"

namespace {

TEST(CatalogueKey, Mapping) {
    struct Case {
        const char* key;
        const char* want;
    } cases[] = {
        {"KV-LXR-12000", "KV-LXR-12000"},
        {"KV-LXR-12200 ", "KV-LXR-12200_20"},
        {"#Account Status", "_23Account_20Status"},
        {"#Activity and History", "_23Activity_20and_20History"},
        {"a_b", "a_5Fb"},  // "_" itself is escaped, so the mapping has no collisions
        {"#Caf\xC3\xA9", "_23Caf_C3_A9"},
        {"", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(CatalogueKey(c.key), c.want) << c.key;
    EXPECT_EQ(CatalogueKey(nullptr), "");
}

TEST(ChooseCatalogueLocale, FirstEntryWithABundle) {
    const std::string dir = LXR_TEST_CATALOGUE_DIR;  // fr, fr_CA, en_GB
    struct Case {
        const char* locale;
        const char* want;
    } cases[] = {
        {"fr", "fr"},
        {"fr-CA", "fr_CA"},
        {"fr-BE", "fr"},  // region without a bundle:
                          // the language's
        {"de,fr;q=0.5", "fr"},
        {"de;q=0.9,fr", "fr"},
        {"en,fr;q=0.5", ""},  // English needs no
                              // bundle: the defaults
        {"en-US,fr", ""},
        {"en-GB,fr", "en_GB"},  // unless one is installed
        {"*,fr", ""},
        {"fr;q=0,de", ""},
        {"ja", ""},
        {"", ""},
        {"../LXRAdmin/fr", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ChooseCatalogueLocale(dir, "LXRAdmin", c.locale), c.want) << c.locale;
    }
    EXPECT_EQ(ChooseCatalogueLocale(dir, "KvCPW", "fr"), "");  // no such tree
    EXPECT_EQ(ChooseCatalogueLocale(dir, "../testdata", "fr"), "");
    EXPECT_EQ(ChooseCatalogueLocale("/no/such/dir", "LXRAdmin", "fr"), "");
    EXPECT_EQ(ChooseCatalogueLocale("", "LXRAdmin", "fr"), "");
}

TEST(CatalogueDirectory, EnvironmentOrBesideTheExecutable) {
    setenv("LXRADMIN_CATALOGUE", "/opt/cat", 1);
    EXPECT_EQ(CatalogueDirectory(), "/opt/cat");
    setenv("LXRADMIN_CATALOGUE", "", 1);
    char exe[4096];
    ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
    ASSERT_GT(n, 0);
    std::string path(exe, static_cast<size_t>(n));
    EXPECT_EQ(CatalogueDirectory(), path.substr(0, path.rfind('/')) + "/catalogue");
    unsetenv("LXRADMIN_CATALOGUE");
}

TEST(GetBundle, UnreadableFileMeansNoBundle) {
    lxrtest::TempDir dir;
    std::string tree = dir.File("LXRAdmin");
    ASSERT_EQ(mkdir(tree.c_str(), 0700), 0);
    std::ofstream(tree + "/de.res") << "not a resource bundle";
    lxrtest::ScopedEnv catalogue("LXRADMIN_CATALOGUE", dir.path().c_str());
    EXPECT_EQ(CKvXlate::GetBundle("LXRAdmin", "de"), nullptr);
}

// A formatted text and the text it must be.
struct Formatted {
    bool ok;
    std::string text;
};

template <class... A>
Formatted Format(const char* pattern, const char* locale, const A&... a) {
    CpaArgList args;
    (args.add(a), ...);
    Formatted f;
    f.ok = FormatMessagePattern(f.text, pattern, args, locale);
    return f;
}

TEST(FormatMessagePattern, Placeholders) {
    struct Case {
        Formatted got;
        const char* want;
    } cases[] = {
        {Format("{0}", "", 1234), "1234"},  // plain: no grouping
        {Format("{0}", "de", -8L), "-8"},
        {Format("{0,number}", "de", 1234), "1.234"},  // typed: the locale's rules
        {Format("{0,number} / {0}", "", 1234L), "1,234 / 1234"},
        {Format("{1} {0,number,integer} {0} { 0 }", "de", 1234567L, 5),
         "5 1.234.567 1234567 1234567"},
        {Format("Unable to open: {0} ({2})\n       Message: {1}", "", "u.xml", "No such file", 2),
         "Unable to open: u.xml (2)\n       Message: No such file"},
        {Format(" Error {1} returned.\nMessage: {0}", "", "Access Denied", -1),
         " Error -1 returned.\nMessage: Access Denied"},
        {Format("Unknown return from API (%0)", "", -8), "Unknown return from API (%0)"},
        {Format("{0}{1}", "", "\xC3\xA9", "{1}"), "\xC3\xA9{1}"},  // arguments are not re-read
        {Format("it''s {0}", "", "x"), "it's x"},
        {Format("l'x {0}", "", "y"), "l'x y"},
        {Format("l'{0}", "", "x"), "l{0}"},  // an apostrophe before a brace quotes it
        {Format("'{0}' {0}", "", "x"), "{0} x"},
        {Format("{2} and {0}", "", "a"), "{2} and a"},  // a missing argument stays visible
        {Format("no braces, it's plain", "", 1), "no braces, it's plain"},
        {Format("", "", 1), ""},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(c.got.ok) << c.want;
        EXPECT_EQ(c.got.text, c.want);
    }
}

TEST(FormatMessagePattern, Malformed) {
    const char* bad[] = {"{0", "x {0,nosuchtype} y", "{}", "{a}{0}"};
    for (const char* p : bad) {
        Formatted f = Format(p, "", 1);
        EXPECT_FALSE(f.ok) << p;
        EXPECT_EQ(f.text, "") << p;
    }
    Formatted textAsNumber = Format("{0,number}", "", "t");
    EXPECT_FALSE(textAsNumber.ok);
    EXPECT_EQ(textAsNumber.text, "");
    CpaArgList none;
    std::string out;
    EXPECT_FALSE(FormatMessagePattern(out, nullptr, none));
}

}  // namespace
