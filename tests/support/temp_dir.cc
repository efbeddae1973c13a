#include "support/temp_dir.h"

#include <stdlib.h>

#include <filesystem>

namespace lxrtest {

TempDir::TempDir() {
    const char* base = ::getenv("TMPDIR");
    std::string pattern = std::string(base && *base ? base : "/tmp") + "/lxr-test-XXXXXX";
    if (::mkdtemp(pattern.data()) != nullptr) path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
}

}  // namespace lxrtest
