// Test-only: a strict reader of the user document and the directory list
// with the program's rules (fixed literals compared byte by byte, booleans
// exactly "true"/"false", Group self-closing, values raw up to "</Value>"),
// so that the tests prove the writer's output is accepted.
#pragma once

#include <string>
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
    // True when `text` is a well-formed user document; else `error` says
    // where it failed.
    bool ReadUser(const std::string& text, CheckedUser* user);
    // Directory list: (display name, identifier) pairs.
    bool ReadDirectories(const std::string& text,
                         std::vector<std::pair<std::string, std::string>>* list);
    std::string error;

  private:
    bool Fail(const char* what);
    void Skip();
    bool At(const char* literal) const;
    bool Eat(const char* literal);
    bool Text(std::string* out, bool* seen);
    bool Bool(bool* out, bool* seen);
    bool Attributes(const char* end, std::vector<const char*> names,
                    std::vector<std::string*> texts, std::vector<bool*> bools, bool* redisable,
                    std::string* member);

    std::string text_;
    size_t pos_ = 0;
};

}  // namespace lxrapi::testing
