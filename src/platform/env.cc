#include "platform/env.h"

#include <cstdlib>

const char* EnvText(const char* name) {
    const char* value = CKvGetEnv(name).c_str();
    return value != nullptr && *value != '\0' ? value : nullptr;
}

const char* CKvGetEnv::set(const char* name) {
    value_ = name ? std::getenv(name) : nullptr;
    return value_;
}
