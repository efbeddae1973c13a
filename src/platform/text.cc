#include "platform/text.h"

#include <cstring>

bool IsURL(const char* text) {
    if (text == nullptr || *text == '\0') return false;
    return text[0] == '/' || std::strncmp(text, "http:", 5) == 0 ||
           std::strncmp(text, "https:", 6) == 0;
}
