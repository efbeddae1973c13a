#include "platform/utf8.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <cstring>

CKvUTF8CharIterator::CKvUTF8CharIterator(const char* text)
    : text_(text ? text : ""), length_(static_cast<int>(std::strlen(text_))) {}

int CKvUTF8CharIterator::next() {
    if (offset_ >= length_) return 0;
    const auto* s = reinterpret_cast<const uint8_t*>(text_);
    int start = offset_;
    UChar32 c;
    U8_NEXT(s, offset_, length_, c);
    if (c < 0) {
        offset_ = start + 1;
        return s[start];
    }
    return c;
}

std::string CKvUTF8ToUpper(const char* text) {
    std::string out;
    if (text == nullptr) return out;
    // Straight from UTF-8 to UTF-8 with the root rules: no locale object and
    // no locale data are needed, which matters on every request.
    UErrorCode status = U_ZERO_ERROR;
    icu::StringByteSink<std::string> sink(&out);
    icu::CaseMap::utf8ToUpper("", 0, icu::StringPiece(text), sink, nullptr, status);
    if (U_FAILURE(status)) return text;
    return out;
}

std::string CKvToUTF8(const char* text, const char* charset) {
    if (text == nullptr) return std::string();
    if (charset == nullptr || *charset == '\0') return text;
    // UTF-8 is what the pages post: nothing to convert, and no converter data
    // to load for it. Name matching ignores case, "-" and "_".
    if (ucnv_compareNames(charset, "UTF-8") == 0) return text;
    UErrorCode status = U_ZERO_ERROR;
    UConverter* conv = ucnv_open(charset, &status);
    if (U_FAILURE(status) || conv == nullptr) return text;
    icu::UnicodeString u(text, static_cast<int32_t>(std::strlen(text)), conv, status);
    ucnv_close(conv);
    if (U_FAILURE(status)) return text;
    std::string out;
    u.toUTF8String(out);
    return out;
}

bool KvIsWhiteSpace(int c) {
    return c == '\r' || c == '\n' || u_isUWhiteSpace(c);
}
bool KvIsAlpha(int c) {
    return u_isUAlphabetic(c);
}
bool KvIsDigit(int c) {
    return u_isdigit(c);
}
