#include "page_text.h"

#include <gtest/gtest.h>

namespace lxrapi {
namespace {

// Values from elsewhere are handed out in a form the pages can show: each
// character that could end HTML text, an attribute value or a single-quoted
// script string becomes a look-alike, and nothing else changes.
TEST(PageTextTest, NeutralisingLeavesNothingThatEndsPageText) {
    struct Case {
        const char* in;
        const char* out;
    } cases[] = {
        {"", ""},
        {"20260530101010Z SUCCESS 10.0.0.5 a & b", "20260530101010Z SUCCESS 10.0.0.5 a & b"},
        {"20260901000000Z <svg/onload=alert(1)>",
         "20260901000000Z \u2039svg/onload=alert(1)\u203a"},
        {"FOREVER \"><script>", "FOREVER \u201d\u203a\u2039script\u203a"},
        {"K=t 20260101000000Z 1.2.3.4 don't", "K=t 20260101000000Z 1.2.3.4 don\u2019t"},
        {"x');alert(1);//\\", "x\u2019);alert(1);//\uff3c"},
        {"a\tb\r\nc", "a b  c"},
        {"bell\a nul-free\x1f del\x7f", "bell? nul-free? del?"},
        {"Gr\u00f6\u00dfe \u2019 \u20ac", "Gr\u00f6\u00dfe \u2019 \u20ac"},
        {"</Value></Attribute>", "\u2039/Value\u203a\u2039/Attribute\u203a"},
    };
    for (const Case& c : cases) {
        std::string out = NeutraliseForPages(c.in);
        EXPECT_EQ(out, c.out) << c.in;
        EXPECT_EQ(FindPageBreaker(out), std::string::npos) << out;
        EXPECT_EQ(NeutraliseForPages(out), out) << "not stable: " << out;
    }
    // Every single byte, alone.
    for (int c = 0; c < 256; ++c) {
        std::string one(1, static_cast<char>(c));
        EXPECT_EQ(FindPageBreaker(NeutraliseForPages(one)), std::string::npos) << c;
        EXPECT_EQ(NeutraliseForPages(one) == one, !BreaksPages(static_cast<unsigned char>(c))) << c;
    }
}

}  // namespace
}  // namespace lxrapi
