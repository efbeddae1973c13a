// Test-only: reads the library's user documents and directory lists with the
// program's own readers (src/pages), so that the tests prove the documents
// the library writes are the ones LXRAdmin reads, and hands back what was
// read as plain records.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace lxrapi::testing {

struct CheckedAttribute {
    std::string name, prompt, section;
    bool read = false, write = false, redisable = false;
    std::vector<std::string> values;
};

struct CheckedGroup {
    std::string name, prompt, reasoncode, member = "restricted";
    bool read = false, write = false;
};

struct CheckedUser {
    std::string name, disabled;
    std::vector<CheckedAttribute> attributes;
    std::vector<CheckedGroup> groups;
    std::vector<std::string> sectionPrompts;
};

class DocumentChecker {
  public:
    // True when the program reads `text` to its end as a user document; else
    // `error` says at which offset it stopped.
    bool ReadUser(const std::string& text, CheckedUser* user);
    // Directory list: (display name, identifier) pairs, by display name.
    bool ReadDirectories(const std::string& text,
                         std::vector<std::pair<std::string, std::string>>* list);
    std::string error;

  private:
    bool Fail(const std::string& text, const char* cursor);
};

}  // namespace lxrapi::testing
