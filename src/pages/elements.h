// Readers for the elements of the user document. They only read: each fills
// a plain record from the text at the cursor, so that the rows can be written
// from the record afterwards and the readers can be tested and fuzzed alone.
//
// Cursor contract of ReadSection, ReadGroup and ReadAttribute: called just
// after the element name and the whitespace after it. True with the cursor on
// the element's last character (the ">" of the start tag for a section, the
// ">" of "/>" for a group, the ">" of "</Attribute>" for an attribute); false
// with the cursor where the fault was found and the record partly filled.
#pragma once

#include <string>
#include <vector>

#include "pages/attribute_list.h"

// A heading over the rows up to "</Section>".
struct SectionElement {
    std::string name;
    std::string prompt;
};

// One group membership. `write` is the document's word; the read-only mode
// of the request is applied by the row writer's caller.
struct GroupElement {
    std::string name;
    std::string prompt;
    std::string reasoncode;  // non-empty: membership disables the user
    bool read = false;
    bool write = false;
    Membership member = Membership::kUnknown;
};

// One directory attribute with its values in document order.
struct AttributeElement {
    std::string name;
    std::string prompt;
    bool redisable = false;  // the attribute was present; its value is not read
    bool read = false;
    bool write = false;
    std::vector<std::string> values;
};

// The root's attributes.
struct UserElement {
    std::string name;      // the distinguished name; never empty on success
    std::string disabled;  // why the user is disabled, as the API words it
};

bool ReadSection(const char*& cursor, SectionElement& section);
bool ReadGroup(const char*& cursor, GroupElement& group);
bool ReadAttribute(const char*& cursor, AttributeElement& attribute);

// Finds the first "<User" in `document` (anything before it is skipped
// unread), reads its attributes and steps over its ">" and the whitespace
// after it. False with `cursor` on the fault: the NUL when there is no root,
// the ">" (or the NUL) when `name` is missing or empty, else as for the
// attribute list.
bool ReadUserStart(const char* document, const char*& cursor, UserElement& user);

// Row readers for ReadUserRows: each gets the cursor just after the element
// name and its whitespace and keeps the cursor contract above.
struct UserRowReaders {
    bool (*section)(const char*& cursor);
    bool (*group)(const char*& cursor);
    bool (*attribute)(const char*& cursor);
};

// Walks the rows after the User start tag up to and including "</User>" and
// the whitespace after it, handing each element to its reader. Sections do
// not nest; a "</Section>" outside a section is accepted. False with the
// cursor on the fault: the "<" of a nested "<Section" or of anything that is
// not a row, wherever a reader stopped, the "</User>" of a document whose
// last section is still open, the NUL when "</User>" is missing, or the
// first byte after "</User>" that is not whitespace.
bool ReadUserRows(const char*& cursor, const UserRowReaders& readers);
