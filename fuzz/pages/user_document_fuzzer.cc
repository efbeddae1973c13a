// The user document readers on any bytes: the root start tag, then every row
// through the element readers, as the display page walks it but without
// writing. Checks the readers' contract: the cursor never leaves the
// document, each element reader that succeeds stops on the element's last
// character, and a document read to the end ends on its NUL.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "pages/elements.h"

namespace {

const char* gBegin = nullptr;
const char* gEnd = nullptr;

void CheckInside(const char* cursor) {
    if (cursor < gBegin || cursor > gEnd) std::abort();
}

bool Section(const char*& cursor) {
    SectionElement section;
    bool ok = ReadSection(cursor, section);
    CheckInside(cursor);
    if (ok && *cursor != '>') std::abort();
    return ok;
}

bool Group(const char*& cursor) {
    GroupElement group;
    bool ok = ReadGroup(cursor, group);
    CheckInside(cursor);
    if (ok && (cursor[-1] != '/' || *cursor != '>')) std::abort();
    return ok;
}

bool Attribute(const char*& cursor) {
    AttributeElement attribute;
    bool ok = ReadAttribute(cursor, attribute);
    CheckInside(cursor);
    if (ok && std::strncmp(cursor - 11, "</Attribute>", 12) != 0) std::abort();
    if (ok && attribute.values.size() > static_cast<size_t>(gEnd - gBegin)) std::abort();
    return ok;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string document(reinterpret_cast<const char*>(data), size);
    const char* text = document.c_str();
    gBegin = text;
    gEnd = text + std::strlen(text);

    UserElement user;
    const char* cursor = nullptr;
    bool ok = ReadUserStart(text, cursor, user);
    CheckInside(cursor);
    if (!ok) return 0;
    if (user.name.empty()) std::abort();
    ok = ReadUserRows(cursor, UserRowReaders{Section, Group, Attribute});
    CheckInside(cursor);
    if (ok && *cursor != '\0') std::abort();
    return 0;
}
