#include "platform/system.h"

#include <unistd.h>

#include <cstdlib>

#include "platform/env.h"

int KvAccess(const char* path, int mode) {
    return path ? ::access(path, mode) : -1;
}

const char* KvGetAdminLocale() {
    const char* v = EnvText("LXRADMIN_LOCALE");
    return v ? v : "en";
}

std::string ExecutableDirectory() {
    char path[4096];
    ssize_t n = ::readlink("/proc/self/exe", path, sizeof path - 1);
    if (n <= 0) return std::string();
    std::string exe(path, static_cast<size_t>(n));
    size_t slash = exe.rfind('/');
    return slash == std::string::npos ? std::string() : exe.substr(0, slash);
}
