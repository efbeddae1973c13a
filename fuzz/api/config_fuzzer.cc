// The configuration reader on any text. A text is either refused with the
// one message form operators are told to look for, or read into a
// configuration whose names the rest of the API relies on.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "config.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    lxrapi::Config config;
    lxrapi::Status s = lxrapi::ParseConfig(text, "/etc/lxr/lxrapi.toml", &config);
    if (!s.ok()) {
        if (s.message().rfind("Configuration file ", 0) != 0) std::abort();
        return 0;
    }
    for (const lxrapi::DirectoryConfig& d : config.directories) {
        if (config.FindDirectory(d.id) == nullptr) std::abort();
        for (const lxrapi::GroupConfig& g : d.groups) {
            if (!lxrapi::IsGroupId(g.id) || d.FindGroup(g.id) == nullptr) std::abort();
        }
        if (lxrapi::IsLdapUrl(d.store) && config.FindLdap(d.store) == nullptr) std::abort();
    }
    for (const lxrapi::Role& r : config.roles) {
        if (config.FindRole(r.name) == nullptr) std::abort();
    }
    return 0;
}
