#include <cstring>

#include "i18n/language.h"
#include "pages/xml_reader.h"

// Kept apart from LTrim so that the readers link without the translators
// (the fuzz targets build them alone).
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
