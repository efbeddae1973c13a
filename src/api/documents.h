// The documents the API answers with: the directory list and one user's
// entry. Their readers in the program compare fixed texts byte by byte, so the
// writers here emit exactly: `name="` with no blanks, booleans "true" or
// "false", Group always self-closing, values raw up to "</Value>". The
// program shows values unescaped, so every value is written neutralised
// (NeutraliseForPages in page_text.h), whichever store it came from.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "attributes.h"
#include "config.h"

namespace lxrapi {

struct AttributeView {
    const AttributeInfo* info = nullptr;
    bool read = false;
    bool write = false;
    bool redisable = false;
    std::vector<std::string> values;  // in stored order; none for passwords
};

enum class Membership { kMember, kNotMember, kRestricted };

struct GroupView {
    const GroupConfig* group = nullptr;
    bool read = false;
    bool write = false;
    Membership member = Membership::kRestricted;
};

struct UserView {
    std::string dn;
    std::string disabled;                   // reasons joined by ","; empty: not disabled
    std::vector<AttributeView> attributes;  // in table order
    std::vector<GroupView> groups;          // in configuration order
};

// <UserDirectories> with one <UserDirectory name="display name">id</...> each.
std::string WriteDirectoryList(const std::vector<const DirectoryConfig*>& directories);

// <User name=... [disabled=...]> with one Section per section that has
// attributes, the attributes in it, and a last section of groups.
std::string WriteUserDocument(const UserView& user);

// The bytes that one value of an attribute adds to the User document.
size_t ValueBytes(std::string_view value);

}  // namespace lxrapi
