#include "icu_library.h"

#include <dlfcn.h>

#include "loaded_library.h"

namespace lxrapi {

namespace {

// ICU's symbols carry its major version ("ures_open_72"); the headers map
// each plain name to that, so the name is spelt after macro expansion.
#define LXR_ICU_NAME(symbol) LXR_ICU_SPELL(symbol)
#define LXR_ICU_SPELL(symbol) #symbol

constexpr const char* kCommon = "libicuuc.so." U_ICU_VERSION_SHORT;
constexpr const char* kFormats = "libicui18n.so." U_ICU_VERSION_SHORT;

#define LXR_FIND(field, symbol) \
    ok = FindSymbol(handle, LXR_ICU_NAME(symbol), &l->field, &missing) && ok

void* Open(const char* name, std::string* error) {
    void* handle = dlopen(name, RTLD_NOW | RTLD_LOCAL);
    if (!handle) *error = std::string(name) + " cannot be loaded";
    return handle;
}

bool Load(IcuLibrary* l, std::string* error) {
    void* handle = Open(kCommon, error);
    if (!handle) return false;
    std::string missing;
    bool ok = true;
    LXR_FIND(open, ures_open);
    LXR_FIND(close, ures_close);
    LXR_FIND(getStringByKey, ures_getStringByKey);
    LXR_FIND(fromUTF8, u_strFromUTF8);
    LXR_FIND(toUTF8, u_strToUTF8);
    if (!ok) *error = "ICU lacks " + missing;
    return ok;  // the handle stays open for the life of the process
}

bool LoadFormats(IcuFormatLibrary* l, std::string* error) {
    void* handle = Open(kFormats, error);
    if (!handle) return false;
    std::string missing;
    bool ok = true;
    LXR_FIND(msgOpen, umsg_open);
    LXR_FIND(msgClose, umsg_close);
    LXR_FIND(msgFormat, umsg_format);
    if (!ok) *error = "ICU lacks " + missing;
    return ok;
}

#undef LXR_FIND

}  // namespace

const IcuLibrary* Icu(std::string* error) {
    return LoadOnce(&Load, error);
}

const IcuFormatLibrary* IcuFormats(std::string* error) {
    return LoadOnce(&LoadFormats, error);
}

}  // namespace lxrapi
