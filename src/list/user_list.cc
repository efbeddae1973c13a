#include "user_list.h"

#include <strings.h>

#include <cstring>

#include "pages/attribute_list.h"
#include "pages/xml_reader.h"

namespace {

// The names of a writable="..." value, split at blanks and commas.
std::vector<std::string> SplitNames(const std::string& text) {
    std::vector<std::string> names;
    std::string name;
    for (char c : text + " ") {
        if (c == ' ' || c == ',' || c == '\t' || c == '\n' || c == '\r') {
            if (!name.empty()) names.push_back(name);
            name.clear();
        } else {
            name += c;
        }
    }
    return names;
}

bool ReadUserAttributes(const char*& cursor, ListedUser& user, const char* end) {
    AttrSlot slots[] = {
        AttrSlot::Text("name=\"", &user.name),
        AttrSlot::Text("dn=\"", &user.dn),
        AttrSlot::Text("userPath=\"", &user.userPath),
        AttrSlot::Text("lastLogin=\"", &user.lastLogin),
        AttrSlot::Text("failures=\"", &user.failures),
    };
    return ReadAttributeList(cursor, slots, end);
}

// After "<User" and its blanks: the attributes, then "/>" or ">" with
// Reasons up to "</User>". The cursor ends after the element.
bool ReadUser(const char*& cursor, ListedUser& user) {
    const char* start = cursor;
    if (!ReadUserAttributes(cursor, user, ">")) {
        // The attribute loop stops at "/>" as at any other unknown text:
        // read the tag again as a self-closing one.
        if (!LookingAt(cursor, "/>")) return false;
        cursor = start;
        user = ListedUser();
        if (!ReadUserAttributes(cursor, user, "/>")) return false;
    }
    if (Consume(cursor, "/>")) return true;
    Consume(cursor, ">");
    for (;;) {
        cursor = LTrim(cursor);
        if (Consume(cursor, "</User>")) return true;
        if (!Consume(cursor, "<Reason>")) return false;
        const char* end = std::strstr(cursor, "</Reason>");
        if (end == nullptr) {
            cursor += std::strlen(cursor);
            return false;
        }
        user.reasons.emplace_back(LTrim(cursor), end);
        cursor = end + std::strlen("</Reason>");
    }
}

}  // namespace

bool ReadUserList(const char* document, UserList& list, const char*& fault) {
    const char* cursor = std::strstr(document, "<UserList");
    if (cursor == nullptr) {
        fault = document + std::strlen(document);
        return false;
    }
    cursor = LTrim(cursor + std::strlen("<UserList"));
    std::string writable;
    AttrSlot slots[] = {
        AttrSlot::Text("directory=\"", &list.directory),
        AttrSlot::Text("list=\"", &list.list),
        AttrSlot::Text("continuation=\"", &list.continuation),
        AttrSlot::Text("writable=\"", &writable),
    };
    if (!ReadAttributeList(cursor, slots, ">")) return fault = cursor, false;
    ++cursor;
    list.writable = SplitNames(writable);
    for (;;) {
        cursor = LTrim(cursor);
        if (Consume(cursor, "</UserList>")) break;
        if (!Consume(cursor, "<User")) return fault = cursor, false;
        const char* afterName = cursor;
        cursor = LTrim(cursor);
        if (cursor == afterName && *cursor != '>' && *cursor != '/') return fault = cursor, false;
        list.users.emplace_back();
        if (!ReadUser(cursor, list.users.back())) return fault = cursor, false;
    }
    cursor = LTrim(cursor);
    if (*cursor != '\0') return fault = cursor, false;
    return true;
}

bool Writable(const UserList& list, const char* attribute) {
    for (const std::string& name : list.writable) {
        if (strcasecmp(name.c_str(), attribute) == 0) return true;
    }
    return false;
}
