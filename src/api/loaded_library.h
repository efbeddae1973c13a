// Finding the functions of a library loaded at run time (dlopen).
#pragma once

#include <dlfcn.h>

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

}  // namespace lxrapi
