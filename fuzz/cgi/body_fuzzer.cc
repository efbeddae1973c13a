// addToFields over arbitrary posted bodies, with and without decoding, and
// with a posted character set in front.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "cgi/fields.h"

namespace {

const char* const kCharsets[] = {"ISO-8859-1", "Shift_JIS", "UTF-8", "no-such-set"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    // First byte: bit 0 decode, bit 1 put "LXRENC=<set>&" in front, bits 2-3
    // choose the set. The rest is the body.
    uint8_t options = data[0];
    std::string body;
    if (options & 2) {
        body = std::string("LXRENC=") + kCharsets[(options >> 2) & 3] + "&";
    }
    body.append(reinterpret_cast<const char*>(data + 1), size - 1);
    size_t length = std::strlen(body.c_str());
    std::vector<char> buffer(body.c_str(), body.c_str() + length + 1);

    FieldMap fields;
    addToFields(fields, buffer.data(), (options & 1) != 0);

    // The text keeps its length and its bytes, but for "&"s turned into NULs.
    for (size_t i = 0; i < length; ++i) {
        if (buffer[i] != body[i] && !(buffer[i] == '\0' && body[i] == '&')) __builtin_trap();
    }
    if (buffer[length] != '\0') __builtin_trap();
    return 0;
}
