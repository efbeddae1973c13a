// The directory list reader on any bytes. The first byte chooses the length
// of a DIR filter (0 to 7) taken from the bytes after it; the rest is the
// document. Checks the reader's contract: the cursor never leaves the
// document, success ends on the NUL, and only admitted entries are kept.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "pages/directory_list.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    size_t filterLength = data[0] % 8;
    if (filterLength > size - 1) filterLength = size - 1;
    std::string filter(reinterpret_cast<const char*>(data + 1), filterLength);
    filter = filter.c_str();  // as a query argument it ends at a NUL
    std::string document(reinterpret_cast<const char*>(data + 1 + filterLength),
                         size - 1 - filterLength);
    const char* text = document.c_str();
    size_t length = std::strlen(text);

    DirectoryTable table;
    const char* cursor = nullptr;
    bool ok = ReadDirectoryList(text, table, filter, cursor);
    if (cursor < text || cursor > text + length) std::abort();
    if (ok && *cursor != '\0') std::abort();
    for (const auto& entry : table) {
        if (!KeepDirectory(entry.first, entry.second, filter)) std::abort();
    }
    return 0;
}
