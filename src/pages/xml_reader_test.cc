#include "pages/xml_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "i18n/language.h"
#include "platform/utf8.h"
#include "support/translators.h"

namespace {

using lxrtest::UseCatalogue;

TEST(LTrim, SkipsUnicodeBlanksAndLineEnds) {
    struct Case {
        const char* text;
        const char* rest;
    } cases[] = {
        {"", ""},
        {"x", "x"},
        {" \t\r\n x ", "x "},
        {"\r\n", ""},
        {"\v\f<", "<"},
        {"\xC2\xA0<a>", "<a>"},              // U+00A0 no-break space
        {"\xE3\x80\x80\xE2\x80\xA8z", "z"},  // U+3000, U+2028
        {"\xC2\x85"
         "z",
         "z"},               // U+0085 next line
        {"\x85z", "\x85z"},  // a stray continuation byte is no blank
        {"\xC2", "\xC2"},    // a sequence cut short by the NUL
        {"\xE2\x80", "\xE2\x80"},
        {"\xC3\xA9 ", "\xC3\xA9 "},  // a letter
        {"\xE2\x80\x8B"
         "a",
         "\xE2\x80\x8B"
         "a"},  // U+200B is not White_Space
    };
    for (const Case& c : cases) {
        EXPECT_STREQ(LTrim(c.text), c.rest) << "text: " << c.text;
    }
}

// ASCII is decided without the Unicode tables; it must agree with them.
TEST(LTrim, AsciiAgreesWithKvIsWhiteSpace) {
    for (int c = 1; c < 0x80; ++c) {
        const char text[] = {static_cast<char>(c), 'x', '\0'};
        EXPECT_EQ(LTrim(text), KvIsWhiteSpace(c) ? text + 1 : text) << "byte " << c;
    }
}

TEST(MakeLabel, PromptFallbackAndCatalogueKeys) {
    UseCatalogue({{"#Greeting", "Bonjour"}, {"#Empty", ""}});
    struct Case {
        const char* prompt;
        const char* fallback;
        const char* label;
    } cases[] = {
        {"Failures", "kvlxrFailureCount", "Failures"},
        {"", "kvlxrFailureCount", "kvlxrFailureCount"},
        {"", "", ""},
        {"#Greeting", "x", "Bonjour"},           // the whole prompt is the key
        {"#Missing text", "x", "Missing text"},  // else the rest is the default
        {"", "#Greeting", "Bonjour"},            // a fallback may be a key too
        {"#", "x", ""},
        {"#Empty", "x", ""},
        {" #Greeting", "x", " #Greeting"},  // only a leading "#" counts
        {"a&amp;b", "x", "a&amp;b"},        // copied as it stands
    };
    for (const Case& c : cases) {
        char buffer[1024];
        MakeLabel(buffer, sizeof buffer, c.prompt, c.fallback);
        EXPECT_STREQ(buffer, c.label) << "prompt: " << c.prompt;
    }
}

TEST(MakeLabel, CutToTheBuffer) {
    UseCatalogue({{"#Long", std::string(2000, 'L')}});
    char buffer[1024];
    MakeLabel(buffer, sizeof buffer, std::string(1500, 'p'), "x");
    EXPECT_EQ(std::string(buffer), std::string(1023, 'p'));
    MakeLabel(buffer, sizeof buffer, "#Long", "x");
    EXPECT_EQ(std::string(buffer), std::string(1023, 'L'));
    char small[4];
    MakeLabel(small, sizeof small, "abcdef", "x");
    EXPECT_STREQ(small, "abc");
}

TEST(MakeLabel, WithoutTranslatorTheDefaultStands) {
    CLanguage* saved = Lang;
    Lang = nullptr;
    char buffer[64];
    MakeLabel(buffer, sizeof buffer, "#Key text", "x");
    Lang = saved;
    EXPECT_STREQ(buffer, "Key text");
}

}  // namespace
