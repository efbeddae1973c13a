#include "pages/elements.h"

#include "pages/xml_reader.h"

bool ReadSection(const char*& cursor, SectionElement& section) {
    AttrSlot slots[] = {
        AttrSlot::Text("name=\"", &section.name),
        AttrSlot::Text("prompt=\"", &section.prompt),
    };
    return ReadAttributeList(cursor, slots, ">");
}

bool ReadGroup(const char*& cursor, GroupElement& group) {
    AttrSlot slots[] = {
        AttrSlot::Text("name=\"", &group.name),
        AttrSlot::Text("prompt=\"", &group.prompt),
        AttrSlot::Text("reasoncode=\"", &group.reasoncode),
        AttrSlot::Bool("read=\"", &group.read),
        AttrSlot::Bool("write=\"", &group.write),
        AttrSlot::Member("member=\"", &group.member),
    };
    if (!ReadAttributeList(cursor, slots, "/>")) return false;
    ++cursor;  // onto the ">" of "/>"
    return true;
}

bool ReadAttribute(const char*& cursor, AttributeElement& attribute) {
    AttrSlot slots[] = {
        AttrSlot::Text("name=\"", &attribute.name),
        AttrSlot::Text("prompt=\"", &attribute.prompt),
        AttrSlot::Flag("redisable=\"", &attribute.redisable),
        AttrSlot::Bool("read=\"", &attribute.read),
        AttrSlot::Bool("write=\"", &attribute.write),
    };
    if (!ReadAttributeList(cursor, slots, ">")) return false;
    cursor = LTrim(cursor + 1);
    while (Consume(cursor, "<Value>")) {
        cursor = LTrim(cursor);
        // The value is raw up to its end tag: "<" and ">" may stand in it.
        const char* end = std::strstr(cursor, "</Value>");
        if (end == nullptr) {
            cursor += std::strlen(cursor);
            return false;
        }
        attribute.values.emplace_back(cursor, end);
        cursor = LTrim(end + 8);
    }
    if (!LookingAt(cursor, "</Attribute>")) return false;
    cursor += 11;  // onto its ">"
    return true;
}

bool ReadUserStart(const char* document, const char*& cursor, UserElement& user) {
    cursor = document;
    // Only the five bytes are compared, so "<Users" would start a root too.
    while (*cursor != '\0' && !LookingAt(cursor, "<User")) cursor = LTrim(cursor + 1);
    if (*cursor == '\0') return false;
    cursor = LTrim(cursor + 5);
    AttrSlot slots[] = {
        AttrSlot::Text("name=\"", &user.name),
        AttrSlot::Text("disabled=\"", &user.disabled),
    };
    if (!ReadAttributeList(cursor, slots, ">")) return false;
    if (user.name.empty()) return false;
    cursor = LTrim(cursor + 1);
    return true;
}

bool ReadUserRows(const char*& cursor, const UserRowReaders& readers) {
    bool inSection = false;
    while (*cursor != '\0' && !LookingAt(cursor, "</User>")) {
        if (Consume(cursor, "<Attribute")) {
            cursor = LTrim(cursor);
            if (!readers.attribute(cursor)) return false;
        } else if (!inSection && Consume(cursor, "<Section")) {
            cursor = LTrim(cursor);
            if (!readers.section(cursor)) return false;
            inSection = true;
        } else if (Consume(cursor, "<Group")) {
            cursor = LTrim(cursor);
            if (!readers.group(cursor)) return false;
        } else if (LookingAt(cursor, "</Section>")) {
            inSection = false;
            cursor += 9;  // onto its ">"
        } else {
            return false;
        }
        cursor = LTrim(cursor + 1);
    }
    if (inSection || *cursor == '\0') return false;
    cursor = LTrim(cursor + 7);
    return *cursor == '\0';
}
