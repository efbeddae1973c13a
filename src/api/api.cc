#include "lxrapi.h"

#include <cstdio>

// Placeholder until the store-backed library lands.
int LXRAdminGetDirectory(const char*, char*, int, char* message, int messageSize, const char*,
                         const char*, const char*) {
    if (message && messageSize > 0) std::snprintf(message, messageSize, "not built yet");
    return -7;
}
int LXRAdminRead(const char*, const char*, const char*, char*, int, char* message, int messageSize,
                 const char*, const char*, const char*, const char*) {
    if (message && messageSize > 0) std::snprintf(message, messageSize, "not built yet");
    return -7;
}
int LXRAdminWrite(const char*, const char*, const char*, char* message, int messageSize,
                  const char*, const char*, const char*, const char*) {
    if (message && messageSize > 0) std::snprintf(message, messageSize, "not built yet");
    return -7;
}
