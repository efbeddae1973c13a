#include "document_checker_test_support.h"

#include "pages/directory_list.h"
#include "pages/elements.h"

namespace lxrapi::testing {
namespace {

// The row readers take no context, so the document being read is kept here.
CheckedUser* gUser = nullptr;
std::string gSection;

bool Section(const char*& cursor) {
    SectionElement section;
    if (!ReadSection(cursor, section)) return false;
    gSection = section.name;
    gUser->sectionPrompts.push_back(section.prompt);
    return true;
}

bool Group(const char*& cursor) {
    GroupElement group;
    if (!ReadGroup(cursor, group)) return false;
    CheckedGroup& out = gUser->groups.emplace_back();
    out.name = group.name;
    out.prompt = group.prompt;
    out.reasoncode = group.reasoncode;
    out.read = group.read;
    out.write = group.write;
    out.member = group.member == ::Membership::kMember      ? "true"
                 : group.member == ::Membership::kNotMember ? "false"
                                                            : "restricted";
    return true;
}

bool Attribute(const char*& cursor) {
    AttributeElement attribute;
    if (!ReadAttribute(cursor, attribute)) return false;
    CheckedAttribute& out = gUser->attributes.emplace_back();
    out.name = attribute.name;
    out.prompt = attribute.prompt;
    out.section = gSection;
    out.read = attribute.read;
    out.write = attribute.write;
    out.redisable = attribute.redisable;
    out.values = attribute.values;
    return true;
}

}  // namespace

bool DocumentChecker::Fail(const std::string& text, const char* cursor) {
    size_t at = cursor == nullptr ? 0 : static_cast<size_t>(cursor - text.c_str());
    error = "stopped at offset " + std::to_string(at) + ": \"" + text.substr(at, 40) + "\"";
    return false;
}

bool DocumentChecker::ReadUser(const std::string& text, CheckedUser* user) {
    *user = CheckedUser();
    gUser = user;
    gSection.clear();
    UserElement root;
    const char* cursor = nullptr;
    if (!ReadUserStart(text.c_str(), cursor, root)) return Fail(text, cursor);
    user->name = root.name;
    user->disabled = root.disabled;
    if (!ReadUserRows(cursor, UserRowReaders{Section, Group, Attribute})) return Fail(text, cursor);
    return *cursor == '\0' || Fail(text, cursor);
}

bool DocumentChecker::ReadDirectories(const std::string& text,
                                      std::vector<std::pair<std::string, std::string>>* list) {
    DirectoryTable table;
    const char* cursor = nullptr;
    if (!ReadDirectoryList(text.c_str(), table, "", cursor)) return Fail(text, cursor);
    list->assign(table.begin(), table.end());
    return true;
}

}  // namespace lxrapi::testing
