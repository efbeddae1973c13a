#include "document_checker.h"

#include <cstring>

namespace lxrapi::testing {

bool DocumentChecker::Fail(const char* what) {
    error = std::string(what) + " at offset " + std::to_string(pos_) + ": \"" +
            text_.substr(pos_, 40) + "\"";
    return false;
}

void DocumentChecker::Skip() {
    while (pos_ < text_.size() && std::strchr(" \t\r\n\f\v", text_[pos_]) && text_[pos_]) ++pos_;
}

bool DocumentChecker::At(const char* literal) const {
    return text_.compare(pos_, std::strlen(literal), literal) == 0;
}

bool DocumentChecker::Eat(const char* literal) {
    if (!At(literal)) return false;
    pos_ += std::strlen(literal);
    return true;
}

// A text attribute's value: leading blanks dropped, raw up to the quotation
// mark; a repeat after a non-empty value is malformed.
bool DocumentChecker::Text(std::string* out, bool* seen) {
    if (*seen && !out->empty()) return Fail("text attribute repeated");
    *seen = true;
    Skip();
    size_t end = text_.find('"', pos_);
    if (end == std::string::npos) return Fail("no closing quotation mark");
    *out = text_.substr(pos_, end - pos_);
    pos_ = end;
    return true;
}

bool DocumentChecker::Bool(bool* out, bool* seen) {
    if (*seen) return Fail("boolean repeated");
    *seen = true;
    Skip();
    if (Eat("true"))
        *out = true;
    else if (Eat("false"))
        *out = false;
    else
        return Fail("boolean not true or false");
    Skip();
    return true;
}

bool DocumentChecker::Attributes(const char* end, std::vector<const char*> names,
                                 std::vector<std::string*> texts, std::vector<bool*> bools,
                                 bool* redisable, std::string* member) {
    std::vector<bool> seen(names.size(), false);
    bool redisableSeen = false, memberSeen = false;
    while (pos_ < text_.size() && !At(end)) {
        bool matched = false;
        for (size_t i = 0; i < names.size() && !matched; ++i) {
            if (!Eat(names[i])) continue;
            matched = true;
            bool s = seen[i];
            bool ok = i < texts.size() ? Text(texts[i], &s) : Bool(bools[i - texts.size()], &s);
            seen[i] = s;
            if (!ok) return false;
        }
        if (!matched && redisable && Eat("redisable=\"")) {
            if (redisableSeen) return Fail("redisable repeated");
            redisableSeen = matched = true;
            *redisable = true;
            size_t q = text_.find('"', pos_);
            if (q == std::string::npos) return Fail("no closing quotation mark");
            pos_ = q;
        }
        if (!matched && member && Eat("member=\"")) {
            if (memberSeen) return Fail("member repeated");
            memberSeen = matched = true;
            Skip();
            if (Eat("true"))
                *member = "true";
            else if (Eat("false"))
                *member = "false";
            else if (Eat("restricted"))
                *member = "restricted";
            else
                return Fail("bad member value");
            Skip();
        }
        if (!matched) return Fail("unknown attribute");
        if (!Eat("\"")) return Fail("expected a quotation mark");
        Skip();
    }
    if (!At(end)) return Fail("element not closed");
    pos_ += std::strlen(end);
    return true;
}

bool DocumentChecker::ReadUser(const std::string& text, CheckedUser* user) {
    text_ = text;
    pos_ = 0;
    *user = CheckedUser();
    while (pos_ < text_.size() && !At("<User")) {
        ++pos_;
        Skip();
    }
    if (!Eat("<User")) return Fail("no <User");
    Skip();
    if (!Attributes(">", {"name=\"", "disabled=\""}, {&user->name, &user->disabled}, {}, nullptr,
                    nullptr))
        return false;
    if (user->name.empty()) return Fail("empty user name");
    bool inSection = false;
    std::string section;
    for (;;) {
        Skip();
        if (pos_ >= text_.size()) return Fail("no </User>");
        if (Eat("</User>")) break;
        if (Eat("<Attribute")) {
            Skip();
            CheckedAttribute a;
            a.section = section;
            if (!Attributes(">", {"name=\"", "prompt=\"", "read=\"", "write=\""},
                            {&a.name, &a.prompt}, {&a.read, &a.write}, &a.redisable, nullptr))
                return false;
            for (;;) {
                Skip();
                if (Eat("</Attribute>")) break;
                if (!Eat("<Value>")) return Fail("expected <Value> or </Attribute>");
                Skip();
                size_t end = text_.find("</Value>", pos_);
                if (end == std::string::npos) return Fail("no </Value>");
                a.values.push_back(text_.substr(pos_, end - pos_));
                pos_ = end + 8;
            }
            user->attributes.push_back(a);
        } else if (!inSection && Eat("<Section")) {
            Skip();
            std::string name, prompt;
            if (!Attributes(">", {"name=\"", "prompt=\""}, {&name, &prompt}, {}, nullptr, nullptr))
                return false;
            inSection = true;
            section = name;
            user->sectionPrompts.push_back(prompt);
        } else if (Eat("<Group")) {
            Skip();
            CheckedGroup g;
            if (!Attributes("/>", {"name=\"", "prompt=\"", "reasoncode=\"", "read=\"", "write=\""},
                            {&g.name, &g.prompt, &g.reasoncode}, {&g.read, &g.write}, nullptr,
                            &g.member))
                return false;
            user->groups.push_back(g);
        } else if (Eat("</Section>")) {
            inSection = false;
            section.clear();
        } else {
            return Fail("unexpected element");
        }
    }
    if (inSection) return Fail("section still open");
    Skip();
    if (pos_ != text_.size()) return Fail("text after </User>");
    return true;
}

bool DocumentChecker::ReadDirectories(const std::string& text,
                                      std::vector<std::pair<std::string, std::string>>* list) {
    text_ = text;
    pos_ = 0;
    list->clear();
    size_t start = text_.find("<UserDirectories>");
    if (start == std::string::npos) return Fail("no <UserDirectories>");
    pos_ = start + 17;
    for (;;) {
        Skip();
        if (Eat("<")) {
            Skip();
            if (Eat("/UserDirectories>")) break;
            if (!Eat("UserDirectory")) return Fail("expected UserDirectory");
            Skip();
            if (!Eat("name=\"")) return Fail("expected name=\"");
            size_t q = text_.find('"', pos_);
            if (q == std::string::npos) return Fail("no closing quotation mark");
            std::string name = text_.substr(pos_, q - pos_);
            pos_ = q + 1;
            if (!Eat(">")) return Fail("expected > right after the name");
            Skip();
            size_t end = text_.find("</UserDirectory>", pos_);
            if (end == std::string::npos) return Fail("no </UserDirectory>");
            list->emplace_back(name, text_.substr(pos_, end - pos_));
            pos_ = end + 16;
        } else {
            return Fail("unexpected text");
        }
    }
    Skip();
    if (pos_ != text_.size()) return Fail("text after </UserDirectories>");
    return true;
}

}  // namespace lxrapi::testing
