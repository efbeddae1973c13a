// Cursor readers for the administration documents. Each reader walks one
// `const char*` forward and compares the fixed texts byte for byte; on a fault
// it returns false with the cursor where the fault was found.
#pragma once

#include <string>

// The first character of `text` that is not Unicode white space (CR and LF
// included); the terminating NUL when there is none. Never null for a
// non-null argument.
const char* LTrim(const char* text);

// The label of a row: `prompt`, else `fallback`; a label beginning with "#"
// is translated with the whole label as key and the rest as default. Written
// into `buffer` of `size` bytes.
void MakeLabel(char* buffer, int size, const std::string& prompt, const std::string& fallback);
