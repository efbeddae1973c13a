#include "pages/directory_list.h"

#include <strings.h>

#include "pages/attribute_list.h"
#include "pages/xml_reader.h"

namespace {

// One "UserDirectory" entry, with the cursor just after its "<" and blanks;
// leaves the cursor after the entry's end tag and the whitespace after it.
bool ReadEntry(const char*& cursor, std::string& name, std::string& id) {
    if (!Consume(cursor, "UserDirectory")) return false;
    cursor = LTrim(cursor);
    if (!Consume(cursor, "name=\"")) return false;
    cursor = LTrim(cursor);
    const char* close = std::strchr(cursor, '"');
    if (close == nullptr) {
        cursor += std::strlen(cursor);
        return false;
    }
    name.assign(cursor, close);
    cursor = close + 1;
    if (!Consume(cursor, ">")) return false;
    cursor = LTrim(cursor);
    // The identifier is raw up to the end tag, trailing blanks included: it
    // goes back to the API exactly as it came.
    const char* end = std::strstr(cursor, "</UserDirectory>");
    if (end == nullptr) {
        cursor += std::strlen(cursor);
        return false;
    }
    id.assign(cursor, end);
    cursor = LTrim(end + 16);
    return true;
}

}  // namespace

bool KeepDirectory(const std::string& name, const std::string& id, const std::string& filter) {
    if ((!id.empty() && id[0] == '#') || (!name.empty() && name[0] == '#')) return false;
    if (filter.empty()) return true;
    return id.compare(0, filter.size(), filter) == 0 ||
           strcasecmp(name.c_str(), filter.c_str()) == 0;
}

bool ReadDirectoryList(const char* document, DirectoryTable& table, const std::string& filter,
                       const char*& cursor) {
    cursor = document;
    while (*cursor != '\0' && !LookingAt(cursor, "<UserDirectories>")) cursor = LTrim(cursor + 1);
    if (!Consume(cursor, "<UserDirectories>")) return false;
    cursor = LTrim(cursor);
    for (;;) {
        if (!Consume(cursor, "<")) return false;
        cursor = LTrim(cursor);
        if (Consume(cursor, "/UserDirectories>")) break;
        std::string name, id;
        if (!ReadEntry(cursor, name, id)) return false;
        if (KeepDirectory(name, id, filter)) table[name] = id;
    }
    cursor = LTrim(cursor);
    return *cursor == '\0';
}
