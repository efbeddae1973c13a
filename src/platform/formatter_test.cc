#include "platform/formatter.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <iterator>
#include <string>

namespace {

template <class... A>
std::string Format(const char* format, const A&... a) {
    CKvFormatter f;
    return f.sprintf(format, a...);
}

// One formatted result and the text it must be.
struct Case {
    std::string got;
    const char* want;
};

void Check(const Case* cases, size_t n) {
    for (size_t i = 0; i < n; ++i) EXPECT_EQ(cases[i].got, cases[i].want) << "case " << i;
}

TEST(FormatArgs, Conversions) {
    const Case cases[] = {
        {Format("plain"), "plain"},
        {Format("100%%"), "100%"},
        {Format("%d %ld %i", 7, -12L, 0), "7 -12 0"},
        {Format("%ld", 5000000000LL), "5000000000"},
        {Format("%02ld:%02ld", 5L, 30L), "05:30"},
        {Format("%x", 0xe9), "e9"},
        {Format("%02lX", 0x2fL), "2F"},
        {Format("%02lX", 0x2014L), "2014"},
        {Format("%02lX", 7L), "07"},
        {Format("%u", 3000000000UL), "3000000000"},
        {Format("%c%c", 'a', 66), "aB"},
        {Format("[%5s][%-3s][%.2s]", "ab", "c", "xyz"), "[   ab][c  ][xy]"},
        {Format("%s, %ld %s %ld %02ld:%02ld:%02ld GMT", "Tue", 3L, "Feb", 2004L, 1L, 2L, 3L),
         "Tue, 3 Feb 2004 01:02:03 GMT"},
    };
    Check(cases, std::size(cases));
}

TEST(FormatArgs, MismatchedArguments) {
    const char* none = nullptr;
    const Case cases[] = {
        {Format("%s|%s", "abc"), "abc|"},  // a missing text is empty
        {Format("%d|%x"), "0|0"},          // a missing number is 0
        {Format("%s", 42), "42"},          // a number as text
        {Format("%d", "x"), "0"},          // a text as number
        {Format("%c", "xyz"), "x"},        // a text as character: its first byte
        {Format("%s", none), "(null)"},
        {Format("%x", -1), "ffffffff"},  // unsigned without "l": 32 bits, as C
        {Format("%lx", -1L), "ffffffffffffffff"},
    };
    Check(cases, std::size(cases));
}

TEST(FormatArgs, OddFormats) {
    const Case cases[] = {
        {Format("50%", 1), "50%"},       // ends after "%"
        {Format("%-0", 1), "%-0"},       // ends inside a conversion
        {Format("%f|%s", "a"), "%f|a"},  // unknown conversion takes no argument
    };
    Check(cases, std::size(cases));
    std::string wide = Format("%300d", 1);
    EXPECT_EQ(wide.size(), 300u);
    EXPECT_EQ(wide.back(), '1');
    std::string longText(5000, 'q');
    EXPECT_EQ(Format("<%10s>", longText.c_str()), "<" + longText + ">");
}

// Zero-padded decimals are written without the C library; they must read
// as snprintf writes them, signs and overlong numbers included.
TEST(FormatArgs, ZeroPaddedDecimalsAsSnprintf) {
    const char* formats[] = {"%02ld", "%04ld", "%03d", "%010ld", "%00d", "%ld"};
    const long long values[] = {0, 7, 42, 123, -5, -123, 5000000000LL};
    for (const char* format : formats) {
        std::string spec(format);
        spec.replace(spec.size() - (spec[spec.size() - 2] == 'l' ? 2 : 1), std::string::npos,
                     "lld");
        for (long long v : values) {
            char want[64];
            std::snprintf(want, sizeof want, spec.c_str(), v);
            EXPECT_EQ(Format(format, v), want) << format << " " << v;
        }
    }
}

TEST(FormatArgs, ManyArguments) {
    std::string format, want;
    CpaArgList args;
    for (int i = 0; i < 20; ++i) {  // past the ones a list holds inline
        format += "%d,";
        want += std::to_string(i) + ",";
        args.add(i);
    }
    std::string got;
    FormatArgs(got, format.c_str(), args);
    EXPECT_EQ(got, want);
}

TEST(CKvFormatter, SprintfKeepsItsText) {
    CKvFormatter f;
    const char* text = f.sprintf("%s=%d", std::string("n"), 3);
    EXPECT_STREQ(text, "n=3");
    EXPECT_STREQ(f.c_str(), "n=3");
    f.sprintf("%s", "next");
    EXPECT_STREQ(f.c_str(), "next");
}

TEST(CKvFormatter, PrintfWritesToStandardOutput) {
    CKvFormatter f;
    testing::internal::CaptureStdout();
    int n = f.printf("<h1>%s</h1>%ld\n", "T", 9L);
    FlushFormattedOutput();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "<h1>T</h1>9\n");
    EXPECT_EQ(n, 12);
}

// Standard output leaves in chunks; texts longer than a chunk and raw
// writes keep every byte in order.
TEST(CKvFormatter, LongOutputKeepsItsBytes) {
    std::string big;
    for (int i = 0; big.size() < 100000; ++i) big += std::to_string(i) + "%\n";
    CKvFormatter f;
    testing::internal::CaptureStdout();
    f.printf("<");
    f.printf("%s", big);
    f.write("50%", 3);
    f.printf("%s|%d>", big, 7);
    FlushFormattedOutput();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "<" + big + "50%" + big + "|7>");
}

}  // namespace
