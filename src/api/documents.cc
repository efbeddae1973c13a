#include "documents.h"

#include "page_text.h"

namespace lxrapi {

namespace {

constexpr std::string_view kValueOpen = "      <Value>";
constexpr std::string_view kValueClose = "</Value>\n";

const char* Bool(bool b) {
    return b ? "true" : "false";
}

const char* MemberText(Membership m) {
    switch (m) {
        case Membership::kMember:
            return "true";
        case Membership::kNotMember:
            return "false";
        case Membership::kRestricted:
            return "restricted";
    }
    return "restricted";
}

void OpenSection(std::string& out, const char* name, const char* prompt) {
    out += "  <Section name=\"";
    out += name;
    out += "\" prompt=\"";
    out += prompt;
    out += "\">\n";
}

void WriteAttribute(std::string& out, const AttributeView& a) {
    out += "    <Attribute name=\"";
    out += a.info->name;
    out += "\" prompt=\"";
    out += a.info->prompt;
    out += "\"";
    if (a.redisable) out += " redisable=\"true\"";
    out += " read=\"";
    out += Bool(a.read);
    out += "\" write=\"";
    out += Bool(a.write);
    out += "\">\n";
    // Values may come from elsewhere (an LDIF import, another LDAP client,
    // the login services' log) and so hold anything; none may end its text on
    // the page, nor its element here.
    for (const std::string& v : a.values) {
        out += kValueOpen;
        out += NeutraliseForPages(v);
        out += kValueClose;
    }
    out += "    </Attribute>\n";
}

void WriteGroup(std::string& out, const GroupView& g) {
    out += "    <Group name=\"";
    out += g.group->id;  // not the DN: the page makes a form field name of it
    out += "\" prompt=\"";
    out += g.group->prompt;
    out += "\"";
    if (!g.group->reason.empty()) {
        out += " reasoncode=\"";
        out += g.group->reason;
        out += "\"";
    }
    out += " read=\"";
    out += Bool(g.read);
    out += "\" write=\"";
    out += Bool(g.write);
    out += "\" member=\"";
    out += MemberText(g.member);
    out += "\"/>\n";
}

}  // namespace

size_t ValueBytes(std::string_view value) {
    return kValueOpen.size() + value.size() + kValueClose.size();
}

std::string WriteDirectoryList(const std::vector<const DirectoryConfig*>& directories) {
    std::string out = "<UserDirectories>\n";
    for (const DirectoryConfig* d : directories) {
        out += "  <UserDirectory name=\"";
        out += d->name;
        out += "\">";
        out += d->id;
        out += "</UserDirectory>\n";
    }
    out += "</UserDirectories>\n";
    return out;
}

std::string WriteUserDocument(const UserView& user) {
    std::string out;
    out.reserve(4096);
    out += "<User name=\"";
    out += user.dn;
    out += "\"";
    if (!user.disabled.empty()) {
        out += " disabled=\"";
        out += user.disabled;
        out += "\"";
    }
    out += ">\n";
    size_t i = 0;
    while (i < user.attributes.size()) {
        Section section = user.attributes[i].info->section;
        OpenSection(out, SectionName(section), SectionPrompt(section));
        for (; i < user.attributes.size() && user.attributes[i].info->section == section; ++i)
            WriteAttribute(out, user.attributes[i]);
        out += "  </Section>\n";
    }
    if (!user.groups.empty()) {
        OpenSection(out, "groups", "#Groups");
        for (const GroupView& g : user.groups) WriteGroup(out, g);
        out += "  </Section>\n";
    }
    out += "</User>\n";
    return out;
}

}  // namespace lxrapi
