// The one translated line every page writer fills: a catalogue text in a
// 4096-byte buffer.
#pragma once

#include <cstring>

#include "i18n/language.h"

// The text of `key` from `language` (Lang or LangWithID), cut to 4095 bytes.
// Pages may be written before the translators exist (a failure early in the
// request); the English default is used then, without a key prefix.
struct PageText {
    char buffer[4096];

    PageText(CLanguage* language, const char* key, const char* defaultText) {
        buffer[0] = '\0';
        if (language != nullptr) {
            language->Translate(buffer, sizeof buffer, key, defaultText);
        } else if (defaultText != nullptr) {
            std::strncpy(buffer, defaultText, sizeof buffer - 1);
            buffer[sizeof buffer - 1] = '\0';
        }
    }
};
