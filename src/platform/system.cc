#include "platform/system.h"

#include <unistd.h>

#include <cstdlib>

int KvAccess(const char* path, int mode) {
    return path ? ::access(path, mode) : -1;
}

const char* KvGetAdminLocale() {
    const char* v = std::getenv("LXRADMIN_LOCALE");
    return (v && *v) ? v : "en";
}
