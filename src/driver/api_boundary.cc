#include "driver/api_boundary.h"

#include <cstring>

#include "i18n/language.h"
#include "platform/formatter.h"
#include "state/request_state.h"

namespace {

struct ResultMessage {
    int result;
    const char* key;
    const char* text;
};

constexpr ResultMessage kResultMessages[] = {
    {LXRAPI_UNREACHABLE, "KV-LXR-12066", "Communications Error"},
    {LXRAPI_BUFFER_TOO_SMALL, "KV-LXR-12065", "INTERNAL ERROR: Comm buffer too small."},
    {LXRAPI_UPDATE_FAILED, "KV-LXR-12064", "User update failed."},
    {LXRAPI_BAD_REQUEST, "KV-LXR-12068", "INTERNAL ERROR: Bad request format."},
    {LXRAPI_USER_UNREADABLE, "KV-LXR-12063", "Unable to read User Entry."},
    {LXRAPI_ADMIN_UNREADABLE, "KV-LXR-12061", "Unable to read Administrator Entry."},
    {LXRAPI_ACCESS_DENIED, "KV-LXR-12062", "Access Denied"},
    {LXRAPI_OK, "KV-LXR-12069", "Operation Successful"},
};

}  // namespace

// Known results go through Lang (no key shown), unknown ones through
// LangWithID; the asymmetry is kept. Without translators the texts are copied
// without regard to `size`: callers pass 1024 or 8192 bytes, far more than the
// longest text.
void GetMsg(int result, char* buffer, int size) {
    for (const ResultMessage& row : kResultMessages) {
        if (row.result != result) continue;
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
