#include "icu_library.h"

#include <dlfcn.h>

#include <mutex>

#include "loaded_library.h"

namespace lxrapi {

namespace {

// ICU's symbols carry its major version ("ures_open_72"); the headers map
// each plain name to that, so the name is spelt after macro expansion.
#define LXR_ICU_NAME(symbol) LXR_ICU_SPELL(symbol)
#define LXR_ICU_SPELL(symbol) #symbol

constexpr const char* kCommon = "libicuuc.so." U_ICU_VERSION_SHORT;
constexpr const char* kFormats = "libicui18n.so." U_ICU_VERSION_SHORT;

bool Load(IcuLibrary* l, std::string* error) {
    void* common = dlopen(kCommon, RTLD_NOW | RTLD_LOCAL);
    void* formats = common ? dlopen(kFormats, RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!formats) {
        *error = std::string(common ? kFormats : kCommon) + " cannot be loaded";
        return false;
    }
    std::string missing;
    bool ok = true;
#define LXR_FIND(handle, field, symbol) \
    ok = FindSymbol(handle, LXR_ICU_NAME(symbol), &l->field, &missing) && ok
    LXR_FIND(common, open, ures_open);
    LXR_FIND(common, close, ures_close);
    LXR_FIND(common, getStringByKey, ures_getStringByKey);
    LXR_FIND(common, fromUTF8, u_strFromUTF8);
    LXR_FIND(common, toUTF8, u_strToUTF8);
    LXR_FIND(formats, msgOpen, umsg_open);
    LXR_FIND(formats, msgClose, umsg_close);
    LXR_FIND(formats, msgFormat, umsg_format);
#undef LXR_FIND
    if (!ok) *error = "ICU lacks " + missing;
    return ok;  // the handles stay open for the life of the process
}

}  // namespace

const IcuLibrary* Icu(std::string* error) {
    static std::once_flag once;
    static IcuLibrary library;
    static bool loaded = false;
    static std::string failure;
    std::call_once(once, [] { loaded = Load(&library, &failure); });
    if (!loaded) *error = failure;
    return loaded ? &library : nullptr;
}

}  // namespace lxrapi
