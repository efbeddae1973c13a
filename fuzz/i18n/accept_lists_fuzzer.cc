// One header text through both accept-list readers. Checks what the callers
// rely on: every preferred locale is "*" or a catalogue file name (letters,
// digits and "_" only, so it can never name a path) whose chain of parents
// ends, and the sorted accept
// header has no more entries than the header has commas plus one, each a
// piece of the header.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "cgi/response.h"
#include "i18n/locale_list.h"

namespace {

bool IsFileName(const std::string& name) {
    if (name == "*") return true;
    if (name.size() < 2) return false;
    for (char c : name) {
        bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        bool digit = c >= '0' && c <= '9';
        if (!letter && !digit && c != '_') return false;
    }
    return name.front() != '_' && name.back() != '_';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The header as the environment hands it over: up to the first NUL.
    std::string text(reinterpret_cast<const char*>(data), size);
    text = text.c_str();

    for (const std::string& name : PreferredLocales(text.c_str())) {
        if (!IsFileName(name)) std::abort();
        // The parent chain ends (Traditional Chinese goes to the longer
        // "zh_Hant", which has no parent).
        int steps = 0;
        for (std::string p = name; !p.empty(); p = ParentLocale(p))
            if (++steps > 8) std::abort();
    }

    std::string header = text;
    std::vector<std::string> sorted;
    int found = SortAcceptHeader(header, sorted);
    if (found != (text.empty() ? 0 : 1)) std::abort();
    size_t commas = 0;
    for (char c : text) commas += c == ',';
    if (sorted.size() > commas + 1) std::abort();
    for (const std::string& entry : sorted) {
        if (text.find(entry) == std::string::npos) std::abort();
    }
    return 0;
}
