#include "platform/env.h"

#include <cstdlib>

const char* CKvGetEnv::set(const char* name) {
    value_ = name ? std::getenv(name) : nullptr;
    return value_;
}
