// The cursor helpers and the attribute-list loop shared by every element
// reader of the administration documents. The texts are compared byte for
// byte and case-sensitively at the cursor; nothing is decoded.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>

// True when the text at `cursor` starts with `literal`; the cursor stays.
// The first byte is compared before the library is asked: most tries of a
// reader's literals fail there.
inline bool LookingAt(const char* cursor, const char* literal) {
    if (*literal != '\0' && *cursor != *literal) return false;
    return std::strncmp(cursor, literal, std::strlen(literal)) == 0;
}

// Steps over `literal` when the text at `cursor` starts with it; otherwise
// false with the cursor unmoved.
inline bool Consume(const char*& cursor, const char* literal) {
    if (!LookingAt(cursor, literal)) return false;
    size_t n = std::strlen(literal);
    cursor += n;
    return true;
}

// What a group says of the user's membership; "restricted", and a missing
// `member`, both mean the administrator may not know it.
enum class Membership { kUnknown, kMember, kNotMember };

// One accepted attribute of an element: its literal (name, "=" and the
// opening quotation mark, matched as one text) and where its value goes.
struct AttrSlot {
    enum Kind { kText, kBool, kMember, kFlag };

    const char* literal;
    Kind kind;
    std::string* text = nullptr;   // kText: the raw value is appended here
    bool* flag = nullptr;          // kBool: true/false; kFlag: set when present
    Membership* member = nullptr;  // kMember
    bool seen = false;             // given once already (kBool, kMember, kFlag)

    static AttrSlot Text(const char* l, std::string* t) { return {l, kText, t, nullptr, nullptr}; }
    static AttrSlot Bool(const char* l, bool* f) { return {l, kBool, nullptr, f, nullptr}; }
    static AttrSlot Flag(const char* l, bool* f) { return {l, kFlag, nullptr, f, nullptr}; }
    static AttrSlot Member(const char* l, Membership* m) {
        return {l, kMember, nullptr, nullptr, m};
    }
};

// Reads attributes at `cursor` until the text `end` (">" or "/>") and leaves
// the cursor on the first byte of `end`. Each attribute is one of `slots`,
// given in any order: a text value runs raw to the next quotation mark with
// its leading blanks dropped; a boolean is "true" or "false" and a membership
// also "restricted", blanks allowed around the word; a flag's value is
// skipped unread. Whitespace after each closing quotation mark is skipped.
//
// False with the cursor on the fault: the first byte of an unknown or
// repeated attribute (a text repeated after a non-empty value, any other kind
// repeated at all), the first byte of a word that is not accepted, the byte
// where a closing quotation mark was wanted, or the NUL when the text ends
// before `end`.
bool ReadAttributeList(const char*& cursor, AttrSlot* slots, size_t count, const char* end);

template <size_t N>
bool ReadAttributeList(const char*& cursor, AttrSlot (&slots)[N], const char* end) {
    return ReadAttributeList(cursor, slots, N, end);
}
