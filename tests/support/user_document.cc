#include "support/user_document.h"

namespace lxrtest {
namespace {

// The row readers take no context, so the document being filled is held
// here for the length of one ReadUserDocument call.
UserDocument* filling = nullptr;

bool Section(const char*& cursor) {
    SectionElement section;
    if (!ReadSection(cursor, section)) return false;
    filling->sectionPrompts.push_back(section.prompt);
    return true;
}

bool Group(const char*& cursor) {
    GroupElement group;
    if (!ReadGroup(cursor, group)) return false;
    filling->groups.push_back(group);
    return true;
}

bool Attribute(const char*& cursor) {
    AttributeElement attribute;
    if (!ReadAttribute(cursor, attribute)) return false;
    filling->attributes.push_back(attribute);
    return true;
}

}  // namespace

bool ReadUserDocument(const std::string& text, UserDocument& document, std::string& error) {
    document = UserDocument();
    const char* cursor = nullptr;
    filling = &document;
    bool ok = ReadUserStart(text.c_str(), cursor, document.user) &&
              ReadUserRows(cursor, UserRowReaders{Section, Group, Attribute}) && *cursor == '\0';
    filling = nullptr;
    error = ok ? "" : "stopped at: " + std::string(cursor);
    return ok;
}

bool ReadDirectories(const std::string& text, DirectoryTable& table, std::string& error) {
    table.clear();
    const char* cursor = nullptr;
    bool ok = ReadDirectoryList(text.c_str(), table, "", cursor);
    error = ok ? "" : "stopped at: " + std::string(cursor);
    return ok;
}

}  // namespace lxrtest
