// The API's documents read back by the program's own readers, so that a test
// of the API proves the pages accept what it writes.
#pragma once

#include <string>
#include <vector>

#include "pages/directory_list.h"
#include "pages/elements.h"

namespace lxrtest {

struct UserDocument {
    UserElement user;
    std::vector<std::string> sectionPrompts;
    std::vector<AttributeElement> attributes;
    std::vector<GroupElement> groups;
};

// True when `text` reads to its end as the display page reads it; else
// `error` quotes the text from where reading stopped.
bool ReadUserDocument(const std::string& text, UserDocument& document, std::string& error);

// The directory list as the selection page reads it (no filter).
bool ReadDirectories(const std::string& text, DirectoryTable& table, std::string& error);

}  // namespace lxrtest
