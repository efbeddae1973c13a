// Finding the functions of a library loaded at run time (dlopen).
#pragma once

#include <dlfcn.h>

#include <mutex>
#include <string>

namespace lxrapi {

// Sets `*function` to the symbol `name` of `handle`; when it is missing,
// leaves it null and names it in `*missing` unless an earlier one is there.
template <typename T>
bool FindSymbol(void* handle, const char* name, T* function, std::string* missing) {
    *function = reinterpret_cast<T>(dlsym(handle, name));
    if (!*function && missing->empty()) *missing = name;
    return *function != nullptr;
}

// The functions of a library, filled in by `load` once per process
// (thread-safe) and kept for its life; null when `load` failed, with the
// reason in `*error`. One table per type `T`.
template <typename T>
const T* LoadOnce(bool (*load)(T*, std::string*), std::string* error) {
    static std::once_flag once;
    static T library;
    static bool loaded = false;
    static std::string failure;
    std::call_once(once, [load] { loaded = load(&library, &failure); });
    if (!loaded) *error = failure;
    return loaded ? &library : nullptr;
}

}  // namespace lxrapi
