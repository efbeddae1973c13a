#include "i18n/negotiate.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "i18n/language.h"

namespace {

const char* const kSources[] = {"HTTP_COOKIE",     "HTTP_LANGUAGECOOKIE",  "HTTP_KV_LANGUAGE",
                                "HTTP_KV_COUNTRY", "HTTP_ACCEPT_LANGUAGE", "HTTP_KV_LANGUAGE1",
                                "HTTP_KV_COUNTRY1"};

void ResetTranslators() {
    delete Lang;
    delete LangWithID;
    Lang = nullptr;
    LangWithID = nullptr;
}

// The locale text SetLanguage settles on for one request's environment,
// given as the values of kSources in order (null: unset).
std::string Negotiate(const char* const (&values)[7]) {
    for (size_t i = 0; i < 7; ++i) {
        if (values[i]) {
            setenv(kSources[i], values[i], 1);
        } else {
            unsetenv(kSources[i]);
        }
    }
    ResetTranslators();
    SetLanguage("LXRAdmin");
    EXPECT_NE(Lang, nullptr);
    EXPECT_NE(LangWithID, nullptr);
    if (!Lang || !LangWithID) return "<none>";
    EXPECT_FALSE(Lang->IsWithID());
    EXPECT_TRUE(LangWithID->IsWithID());
    EXPECT_STREQ(Lang->Country(), LangWithID->Country());
    EXPECT_STREQ(Lang->Application(), "LXRAdmin");
    return Lang->Country();
}

TEST(SetLanguage, Sources) {
    struct Case {
        const char* values[7];  // cookie, cookie name, kv lang, kv country, accept, lang1, country1
        const char* want;
    } cases[] = {
        // Cookie, with the entry counted to the absolute index of the ";".
        {{"KVLOCALE=de; b=2", 0, 0, 0, 0, 0, 0}, "de"},
        {{"a=1; KVLOCALE=de; b=2", 0, 0, 0, 0, 0, 0}, "de; b=2"},
        {{"KVLOCALE=de", 0, 0, 0, 0, 0, 0}, "de"},
        {{"x=1;KVLOCALE=fr", 0, 0, 0, 0, 0, 0}, "fr"},
        {{"LANG=fr; KVLOCALE=de", "LANG", 0, 0, 0, 0, 0}, "fr"},
        {{"a=b; KVLOCALE=de", "LANG", 0, 0, 0, 0, 0}, "de"},  // named cookie absent
        {{"a=b; KVLOCALE=de", "", 0, 0, 0, 0, 0}, "de"},      // empty name: not set
        {{"MYKVLOCALE=it", 0, 0, 0, 0, 0, 0}, "it"},          // plain substring search
        {{"KVLOCALE=de=AT", 0, 0, 0, 0, 0, 0}, "de=AT"},      // after the first "="
        {{"KVLOCALE= de", 0, 0, 0, 0, 0, 0}, " de"},          // untrimmed
        // A named cookie that is found ends the cookie search even when empty.
        {{"LANG; KVLOCALE=de", "LANG", "es", 0, 0, 0, 0}, "es"},
        {{"KVLOCALE=", 0, "es", "MX", 0, 0, 0}, "es-MX"},
        {{"KVLOCALE", 0, "es", 0, 0, 0, 0}, "es"},
        {{"", 0, "es", 0, 0, 0, 0}, "es"},
        // Cookie over agent headers over the browser.
        {{"KVLOCALE=de", 0, "es", "MX", "fr", "ja", 0}, "de"},
        {{"other=1", 0, "es", "", "fr", 0, 0}, "es"},
        {{0, 0, "", "MX", "fr", 0, 0}, "fr"},
        // Browser preference with the agent's fallback language last.
        {{0, 0, 0, 0, "fr,en;q=0.5", "en", "US"}, "fr,en;q=0.5,en-US;q=0.001"},
        {{0, 0, 0, 0, 0, "ja", 0}, "ja;q=0.001"},
        {{0, 0, 0, 0, "", "ja", ""}, "ja;q=0.001"},
        {{0, 0, 0, 0, "fr", 0, "US"}, "fr"},
        // Nothing at all: the empty locale.
        {{0, 0, 0, 0, 0, 0, 0}, ""},
        {{"", "", "", "", "", "", ""}, ""},
    };
    for (const Case& c : cases) EXPECT_EQ(Negotiate(c.values), c.want) << c.want;
    ResetTranslators();
}

TEST(SetLanguage, NoSourceKeepsExistingTranslators) {
    for (const char* name : kSources) unsetenv(name);
    ResetTranslators();
    Lang = GetLanguage("LXRAdmin", "de", nullptr, false);
    LangWithID = GetLanguage("LXRAdmin", "de", nullptr, true);
    CLanguage* before = Lang;
    SetLanguage("LXRAdmin");
    EXPECT_EQ(Lang, before);
    EXPECT_STREQ(LangWithID->Country(), "de");
    ResetTranslators();
}

}  // namespace
