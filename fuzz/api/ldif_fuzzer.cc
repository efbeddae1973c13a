// LDIF import on any text. What is read must come back unchanged when it is
// written out again and read once more, since the directory tool exports
// what it imported this way.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "store.h"
#include "tool/ldif_io.h"

namespace {

bool Same(const lxrapi::Entry& a, const lxrapi::Entry& b) {
    if (a.dn != b.dn || a.attributes.size() != b.attributes.size()) return false;
    for (size_t i = 0; i < a.attributes.size(); ++i) {
        if (a.attributes[i].name != b.attributes[i].name ||
            a.attributes[i].values != b.attributes[i].values)
            return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    // Values given by URL ("cn:< file:///...", maybe across a folded line)
    // would make the import read local files, /dev/zero among them.
    std::string unfolded;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && i + 1 < text.size() && text[i + 1] == ' ') {
            ++i;
            continue;
        }
        if (text[i] != '\r') unfolded += text[i];
    }
    if (unfolded.find(":<") != std::string::npos) return 0;
    std::vector<lxrapi::Entry> entries;
    lxrapi::Status s = lxrapi::ParseLdif(text, "fuzz.ldif", &entries);
    if (!s.ok()) {
        if (!entries.empty() || s.message().rfind("fuzz.ldif", 0) != 0) std::abort();
        return 0;
    }
    std::string again;
    for (const lxrapi::Entry& e : entries) {
        if (e.dn.empty()) std::abort();
        again += lxrapi::FormatLdif(e);
    }
    std::vector<lxrapi::Entry> reread;
    if (!lxrapi::ParseLdif(again, "again.ldif", &reread).ok()) std::abort();
    if (reread.size() != entries.size()) std::abort();
    for (size_t i = 0; i < entries.size(); ++i) {
        if (!Same(entries[i], reread[i])) std::abort();
    }
    return 0;
}
