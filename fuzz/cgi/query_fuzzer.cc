// ParseQueryString over arbitrary query strings, LXRAdminARGS nesting
// included.
#include <cstddef>
#include <cstdint>
#include <string>

#include "cgi/fields.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // A query string never holds a NUL; the text ends at the first one.
    std::string query(reinterpret_cast<const char*>(data), size);
    Args.clear();
    ParseQueryString(query.c_str());
    // Names are taken as they stand, so none can be longer than the query.
    for (const auto& entry : Args) {
        if (entry.first.size() > size) __builtin_trap();
    }
    Args.clear();
    return 0;
}
