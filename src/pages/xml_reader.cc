#include "pages/xml_reader.h"

#include <unicode/utf8.h>

#include "platform/utf8.h"

const char* LTrim(const char* text) {
    if (text == nullptr) return nullptr;
    const auto* s = reinterpret_cast<const uint8_t*>(text);
    int32_t at = 0;
    while (s[at] != 0) {
        // ASCII, nearly every byte of a document, is decided here: its
        // white space is tab to carriage return and the blank.
        if (s[at] < 0x80) {
            if (s[at] != ' ' && (s[at] < '\t' || s[at] > '\r')) break;
            ++at;
            continue;
        }
        int32_t next = at;
        UChar32 c;
        U8_NEXT(s, next, -1, c);
        // A malformed sequence decodes as negative and so ends the blanks.
        if (c < 0 || !KvIsWhiteSpace(c)) break;
        at = next;
    }
    return text + at;
}
