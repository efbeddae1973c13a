#include "driver/api_boundary.h"

#include <cstring>

#include "i18n/language.h"
#include "platform/formatter.h"

// Zero-initialised and never assigned: every API call receives a null
// qualifier, as the API has always been called.
const char* Qualifier;

namespace {

struct ResultMessage {
    const char* key;
    const char* text;
};

// Indexed by result + 7: the rows for the results -7 to 0.
constexpr ResultMessage kResultMessages[8] = {
    {"KV-LXR-12066", "Communications Error"},
    {"KV-LXR-12065", "INTERNAL ERROR: Comm buffer too small."},
    {"KV-LXR-12064", "User update failed."},
    {"KV-LXR-12068", "INTERNAL ERROR: Bad request format."},
    {"KV-LXR-12063", "Unable to read User Entry."},
    {"KV-LXR-12061", "Unable to read Administrator Entry."},
    {"KV-LXR-12062", "Access Denied"},
    {"KV-LXR-12069", "Operation Successful"},
};

}  // namespace

// Known results go through Lang (no key shown), unknown ones through
// LangWithID; the asymmetry is kept. Without translators the texts are copied
// without regard to `size`: callers pass 1024 or 8192 bytes, far more than the
// longest text.
void GetMsg(int result, char* buffer, int size) {
    // Unsigned arithmetic: results below -7 and above 0 fall outside 0..7
    // without overflow.
    unsigned index = static_cast<unsigned>(result) + 7u;
    if (index < 8u) {
        const ResultMessage& row = kResultMessages[index];
        if (Lang) {
            Lang->Translate(buffer, size, row.key, row.text);
        } else {
            std::strcpy(buffer, row.text);
        }
        return;
    }
    if (LangWithID) {
        // Translated into a private buffer that is then dropped, leaving the
        // caller's buffer empty: an unknown result shows an empty message.
        // This is how the program has always answered and it stays.
        char discarded[4096];
        LangWithID->Translate(discarded, sizeof discarded, "KV-LXR-12067", result,
                              "Unknown return from API (%0)");
        return;
    }
    prtFormatter.sprintf("Unknown return from API (%ld)", static_cast<long>(result));
    std::strcpy(buffer, prtFormatter.c_str());
}
