// One generational-redirect entry taken apart for display, shared by the
// read-only and the editable redirect tables. Internal to the handlers.
#pragma once

#include <string>

namespace fields {

// A value "KEY=TARGET stamp address comment", each part one word.
struct RedirectEntry {
    std::string key;      // the part before the first "=" (the whole first word without one)
    std::string target;   // the part after the first "=", or ""
    std::string label;    // the key's catalogue text, the key itself as key and default
    std::string date;     // the stamp shown as GMT text; "" when absent or not a date
    std::string address;  // third word
    std::string comment;  // fourth word only: later words are not shown
};

// Reads the four words of `value` (leading blanks already skipped).
RedirectEntry ReadRedirectEntry(const char* value);

// Opens the redirect table with its header row; the editable table has a
// Clear column in front.
void WriteRedirectHead(bool clearColumn);

// Writes the row's date cell (only when there is a date: such rows are one
// cell short of the header, as the table has always been), the address and
// comment cells and the row end.
void WriteRedirectTail(const RedirectEntry& entry);

}  // namespace fields
