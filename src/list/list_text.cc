#include "list_text.h"

CLanguage* ListLang = nullptr;

namespace {
// Long enough for any one line of the page.
constexpr int kTextSize = 4096;
}  // namespace

void OpenListText() {
    ListLang = GetLanguage("LXRList", Lang ? Lang->ISO() : "", nullptr, false);
}

std::string ListText(const char* key, const char* english) {
    if (ListLang == nullptr) return english;
    char buffer[kTextSize] = {};
    ListLang->Translate(buffer, sizeof buffer, key, english);
    return buffer;
}

std::string ListText(const char* key, const std::string& argument, const char* english) {
    if (ListLang == nullptr) OpenListText();
    char buffer[kTextSize] = {};
    ListLang->Translate(buffer, sizeof buffer, key, argument.c_str(), english);
    return buffer;
}
