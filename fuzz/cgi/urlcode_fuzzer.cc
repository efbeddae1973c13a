// URLDecode and URLEncode over arbitrary bytes, and the round trip where it
// must hold.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "cgi/fields.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    const char* s = text.c_str();  // ends at the first NUL, as CGI text does

    std::string decoded = URLDecode(s);
    std::string encoded = URLEncode(s);
    URLEncode(decoded.c_str());
    URLDecode(encoded.c_str());

    // Decoding never grows a text.
    if (decoded.size() > std::strlen(s)) __builtin_trap();

    // Printable ASCII (and the blank) comes back unchanged from a round trip;
    // control white space does not (a tab is encoded as "+"), nor do letters
    // beyond ASCII (cut to one byte).
    bool printable = true;
    for (const char* p = s; *p; ++p) {
        if (*p < 0x20 || *p > 0x7E) printable = false;
    }
    if (printable && URLDecode(encoded.c_str()) != s) __builtin_trap();
    return 0;
}
