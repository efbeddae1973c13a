#include "update_document.h"

#include "message.h"
#include "page_text.h"

namespace lxrapi {

namespace {

class Cursor {
  public:
    explicit Cursor(std::string_view text)
        : text_(text), lines_(text.find('\n') != std::string_view::npos) {}

    void SkipBlanks() {
        while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\t' ||
                                       text_[pos_] == '\r' || text_[pos_] == '\n'))
            ++pos_;
    }
    bool Peek(std::string_view literal) const {
        return text_.substr(pos_, literal.size()) == literal;
    }
    bool Consume(std::string_view literal) {
        if (!Peek(literal)) return false;
        pos_ += literal.size();
        return true;
    }
    // Text up to (not including) `end`, which is consumed too.
    bool Until(std::string_view end, std::string* out) {
        size_t at = text_.find(end, pos_);
        if (at == std::string_view::npos) return false;
        out->assign(text_.substr(pos_, at - pos_));
        pos_ = at + end.size();
        return true;
    }
    // The text of a Value whose start tag was just consumed, and its end tag.
    // In a document of several lines (the page builds one value per line) the
    // value runs to the LAST "</Value>" on its line, so that a posted value
    // holding "</Value>" and further elements stays one value, which the
    // value checks then refuse. A document on one line (the command line
    // joins a file's lines) has values up to the next "</Value>".
    bool Value(std::string* out) {
        static constexpr std::string_view kEnd = "</Value>";
        if (!lines_) return Until(kEnd, out);
        size_t lineEnd = text_.find('\n', pos_);
        std::string_view line =
            text_.substr(pos_, lineEnd == text_.npos ? text_.npos : lineEnd - pos_);
        size_t at = line.rfind(kEnd);
        if (at == std::string_view::npos) return false;
        out->assign(line.substr(0, at));
        pos_ += at + kEnd.size();
        return true;
    }
    bool AtEnd() const { return pos_ >= text_.size(); }

    Status Fail(const std::string& expected) const {
        return Status::BadRequest("Update document: expected " + expected + " at offset " +
                                  std::to_string(pos_));
    }

  private:
    std::string_view text_;
    bool lines_;
    size_t pos_ = 0;
};

// name="..." member="..." in either order, then "/>".
Status ReadGroup(Cursor& c, GroupUpdate* g) {
    bool haveName = false, haveMember = false;
    while (!c.Consume("/>")) {
        if (!haveName && c.Consume("name=\"")) {
            if (!c.Until("\"", &g->name)) return c.Fail("the end of the group name");
            haveName = true;
        } else if (!haveMember && c.Consume("member=\"")) {
            if (!c.Until("\"", &g->member)) return c.Fail("the end of the member value");
            haveMember = true;
        } else {
            return c.Fail(haveName && haveMember ? "the end of the Group element"
                                                 : "a name or member attribute");
        }
        c.SkipBlanks();
    }
    if (!haveName || !haveMember) return c.Fail("a Group with both name and member");
    return Status::OK();
}

Status ReadAttribute(Cursor& c, AttributeUpdate* a) {
    if (!c.Consume("name=\"") || !c.Until("\"", &a->name))
        return c.Fail("the name of the Attribute");
    c.SkipBlanks();
    if (c.Consume("/>")) {
        a->selfClosing = true;
        return Status::OK();
    }
    if (!c.Consume(">")) return c.Fail("the end of the Attribute start tag");
    for (;;) {
        c.SkipBlanks();
        if (c.Consume("</Attribute>")) return Status::OK();
        if (c.Consume("<Value/>")) {
            a->values.emplace_back();
        } else if (c.Consume("<Value>")) {
            std::string value;
            if (!c.Value(&value)) return c.Fail("the end of the Value on its line");
            a->values.push_back(std::move(value));
        } else {
            return c.Fail("a Value or the end of the Attribute");
        }
    }
}

// Refuses a name holding a character that could end the page text it is
// shown in. DNs may hold an apostrophe ("O'Brien") or a backslash (an escaped
// ","), which the pages only ever show inside double quotes; attribute names
// hold neither.
Status CheckName(const char* what, const std::string& name, bool dn) {
    for (unsigned char c : name) {
        if (!BreaksPages(c) || (dn && (c == '\'' || c == '\\'))) continue;
        return Status::BadRequest(std::string("Update document: the ") + what + " " +
                                  Quoted(name, 200) + " holds " + DescribeCharacter(c));
    }
    return Status::OK();
}

Status CheckNames(const UpdateDocument& d) {
    Status s = CheckName("user name", d.userDn, true);
    for (size_t i = 0; s.ok() && i < d.groups.size(); ++i)
        s = CheckName("group name", d.groups[i].name, true);
    for (size_t i = 0; s.ok() && i < d.attributes.size(); ++i)
        s = CheckName("attribute name", d.attributes[i].name, false);
    return s;
}

}  // namespace

Status ParseUpdateDocument(std::string_view text, UpdateDocument* document) {
    *document = UpdateDocument();
    Cursor c(text);
    c.SkipBlanks();
    if (c.Peek("<?xml")) {
        std::string declaration;
        if (!c.Until("?>", &declaration)) return c.Fail("the end of the XML declaration");
        c.SkipBlanks();
    }
    if (!c.Consume("<User")) return c.Fail("a User element");
    c.SkipBlanks();
    if (!c.Consume("name=\"") || !c.Until("\"", &document->userDn))
        return c.Fail("the name of the User");
    if (document->userDn.empty()) return c.Fail("a non-empty user name");
    c.SkipBlanks();
    if (!c.Consume(">")) return c.Fail("the end of the User start tag");
    for (;;) {
        c.SkipBlanks();
        if (c.Consume("</User>")) break;
        Status s;
        if (c.Consume("<Group")) {
            c.SkipBlanks();
            document->groups.emplace_back();
            s = ReadGroup(c, &document->groups.back());
        } else if (c.Consume("<Attribute")) {
            c.SkipBlanks();
            document->attributes.emplace_back();
            s = ReadAttribute(c, &document->attributes.back());
        } else {
            s = c.Fail("a Group, an Attribute or the end of the User");
        }
        if (!s.ok()) return s;
    }
    c.SkipBlanks();
    if (!c.AtEnd()) return c.Fail("nothing after the end of the User");
    return CheckNames(*document);
}

}  // namespace lxrapi
