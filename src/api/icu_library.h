// ICU's C functions for the library's own bundles, loaded from the system's
// shared ICU when a caller first asks for a language other than English.
// The library is loaded by every CGI request and ICU brings a shared C++
// runtime and its data with it; an English request never needs them, so the
// library does not link ICU but finds its functions at run time.
#pragma once

#define U_SHOW_CPLUSPLUS_API 0
#include <unicode/umsg.h>
#include <unicode/ures.h>
#include <unicode/ustring.h>

#include <string>

namespace lxrapi {

struct IcuLibrary {
    decltype(&::ures_open) open;
    decltype(&::ures_close) close;
    decltype(&::ures_getStringByKey) getStringByKey;
    decltype(&::u_strFromUTF8) fromUTF8;
    decltype(&::u_strToUTF8) toUTF8;
    decltype(&::umsg_open) msgOpen;
    decltype(&::umsg_close) msgClose;
    decltype(&::umsg_format) msgFormat;
};

// The functions, loaded once per process (thread-safe); null when ICU cannot
// be loaded, with the reason in `*error`.
const IcuLibrary* Icu(std::string* error);

}  // namespace lxrapi
