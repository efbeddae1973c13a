// UTF-8 text utilities on ICU: iteration, upper-casing, conversion of other
// character sets into UTF-8, and Unicode character classes.
#pragma once

#include <string>

// Walks a UTF-8 text one code point at a time.
class CKvUTF8CharIterator {
  public:
    explicit CKvUTF8CharIterator(const char* text);
    // The next code point, or 0 at the end of the text. A byte that does not
    // start a well-formed sequence is returned as its own value (0x80..0xFF)
    // and the walk moves on by one byte, so no input ever stalls the walk.
    int next();

  private:
    const char* text_;
    int length_ = 0;
    int offset_ = 0;
};

// The text upper-cased by the root locale's rules (full mappings: "\xC3\x9F"
// becomes "SS"). Bytes that are not well-formed UTF-8 are copied unchanged.
// A null text gives "".
std::string CKvUTF8ToUpper(const char* text);

// `text` converted from the character set `charset` into UTF-8. A null text
// gives ""; an unknown or empty character-set name, or one naming UTF-8 (in
// any spelling ICU accepts, "utf8" too), gives the text unchanged. Bytes the
// character set does not define become U+FFFD.
std::string CKvToUTF8(const char* text, const char* charset);

bool KvIsWhiteSpace(int codePoint);  // Unicode White_Space, CR and LF included
bool KvIsAlpha(int codePoint);       // Unicode alphabetic
bool KvIsDigit(int codePoint);       // Unicode decimal digit
