#include "pages/xml_reader.h"

#include <unicode/utf8.h>

#include <cstring>

#include "i18n/language.h"
#include "platform/utf8.h"

const char* LTrim(const char* text) {
    const auto* s = reinterpret_cast<const uint8_t*>(text);
    int32_t at = 0;
    while (s[at] != 0) {
        int32_t next = at;
        UChar32 c;
        U8_NEXT(s, next, -1, c);
        // A malformed sequence decodes as negative and so ends the blanks.
        if (c < 0 || !KvIsWhiteSpace(c)) break;
        at = next;
    }
    return text + at;
}

void MakeLabel(char* buffer, int size, const std::string& prompt, const std::string& fallback) {
    if (buffer == nullptr || size <= 0) return;
    const std::string& label = prompt.empty() ? fallback : prompt;
    const char* text = label.c_str();
    if (text[0] == '#') {
        // The whole prompt is the key and the rest its English default, so a
        // directory can name a catalogue text for its own labels.
        if (Lang != nullptr) {
            Lang->Translate(buffer, size, text, text + 1);
            return;
        }
        ++text;  // no translator outside a request: the default as it stands
    }
    size_t n = std::strlen(text);
    if (n > static_cast<size_t>(size - 1)) n = static_cast<size_t>(size - 1);
    std::memcpy(buffer, text, n);
    buffer[n] = '\0';
}
