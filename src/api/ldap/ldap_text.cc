#include "ldap/ldap_text.h"

#include "attributes.h"
#include "ldap/ldap_library.h"
#include "message.h"
#include "text.h"

namespace lxrapi {

namespace {

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The RDNs of `dn`, last (topmost) first, as libldap writes them back.
bool Rdns(const std::string& dn, std::vector<std::string>* rdns) {
    std::string error;
    const LdapLibrary* l = Ldap(&error);
    if (!l) return false;
    LDAPDN parsed = nullptr;
    if (l->str2dn(dn.c_str(), &parsed, LDAP_DN_FORMAT_LDAPV3) != LDAP_SUCCESS) return false;
    bool ok = true;
    std::vector<std::string> out;
    for (int i = 0; parsed && parsed[i]; ++i) {
        char* text = nullptr;
        if (l->rdn2str(parsed[i], &text, LDAP_DN_FORMAT_LDAPV3 | LDAP_DN_PRETTY) != LDAP_SUCCESS) {
            ok = false;
            break;
        }
        out.emplace_back(text);
        l->memfree(text);
    }
    l->dnfree(parsed);
    rdns->assign(out.rbegin(), out.rend());
    return ok;
}

}  // namespace

bool IsAttributeDescription(std::string_view name) {
    if (name.empty()) return false;
    if (IsDigit(name[0])) {  // numeric OID: digits separated by single dots
        bool dot = true;
        for (char c : name) {
            if (c == '.' ? dot : !IsDigit(c)) return false;
            dot = c == '.';
        }
        return !dot;
    }
    if (!IsLetter(name[0])) return false;
    bool afterSemicolon = false;
    for (char c : name) {
        bool ok = IsLetter(c) || IsDigit(c) || c == '-' || (c == ';' && !afterSemicolon);
        if (c == ';' && afterSemicolon) ok = false;
        afterSemicolon = c == ';';
        if (!ok) return false;
    }
    return !afterSemicolon;
}

bool EscapeFilterValue(std::string_view value, std::string* escaped) {
    std::string error;
    const LdapLibrary* l = Ldap(&error);
    if (!l) return false;
    berval in;
    in.bv_val = const_cast<char*>(value.data());
    in.bv_len = value.size();
    berval out{0, nullptr};
    if (l->bv2escaped_filter_value(&in, &out) != 0) return false;
    escaped->assign(out.bv_val, out.bv_len);
    l->ber_memfree(out.bv_val);
    return true;
}

Status ValueFilter(const std::vector<std::string>& attributes, std::string_view value,
                   std::string* filter) {
    if (attributes.empty()) return Status::BadRequest("No attribute to search by");
    std::string v;
    if (!EscapeFilterValue(value, &v))
        return Status::BadRequest("The name " + Quoted(value, 100) + " cannot be searched for");
    std::string out;
    for (const std::string& a : attributes) {
        if (!IsAttributeDescription(a))
            return Status::BadRequest("The attribute " + Quoted(a, 100) +
                                      " cannot be named in a search");
        out += "(" + a + "=" + v + ")";
    }
    *filter = attributes.size() == 1 ? out : "(|" + out + ")";
    return Status::OK();
}

std::string CommonSuffix(const std::vector<std::string>& dns) {
    if (dns.empty()) return std::string();
    std::vector<std::string> common;  // topmost first
    bool first = true;
    for (const std::string& dn : dns) {
        std::vector<std::string> rdns;
        if (!Rdns(dn, &rdns) || rdns.empty()) return std::string();
        if (first) {
            common = rdns;
            first = false;
            continue;
        }
        size_t n = 0;
        while (n < common.size() && n < rdns.size() && DnKey(common[n]) == DnKey(rdns[n])) ++n;
        common.resize(n);
    }
    std::string suffix;
    for (auto it = common.rbegin(); it != common.rend(); ++it)
        suffix += (suffix.empty() ? "" : ",") + *it;
    return suffix;
}

bool ChangedByValue(std::string_view attribute) {
    if (EqualsNoCase(attribute, "member")) return true;
    const AttributeInfo* info = FindAttribute(attribute);
    return info && (info->form == ValueForm::kRedirect || info->form == ValueForm::kHistoryEntry ||
                    info->form == ValueForm::kSecret);
}

std::vector<std::string> Distinct(const std::vector<std::string>& values) {
    std::vector<std::string> out;
    for (const std::string& v : values) {
        bool seen = false;
        for (const std::string& o : out) seen = seen || o == v;
        if (!seen) out.push_back(v);
    }
    return out;
}

ValueDelta Delta(const std::vector<std::string>& before, const std::vector<std::string>& after,
                 bool keepOrder) {
    auto has = [](const std::vector<std::string>& list, const std::string& v) {
        for (const std::string& x : list)
            if (x == v) return true;
        return false;
    };
    std::vector<std::string> from = Distinct(before), to = Distinct(after);
    ValueDelta d;
    // With `keepOrder`, the values of `before` that stay stay in place only
    // up to the first one out of `after`'s order; from there on they move.
    size_t inPlace = 0;
    bool moving = false;
    for (const std::string& v : from) {
        if (!has(to, v)) {
            d.removed.push_back(v);
        } else if (keepOrder && (moving || to[inPlace] != v)) {
            moving = true;
            d.removed.push_back(v);
        } else {
            ++inPlace;
        }
    }
    for (size_t i = 0; i < to.size(); ++i)
        if (keepOrder ? i >= inPlace : !has(from, to[i])) d.added.push_back(to[i]);
    return d;
}

bool KeepsOrder(std::string_view attribute) {
    const AttributeInfo* info = FindAttribute(attribute);
    return info && (info->form == ValueForm::kRedirect || info->form == ValueForm::kHistoryEntry);
}

namespace {
// The key of a redirect entry: its first word up to "=".
std::string RedirectKey(std::string_view value) {
    std::string_view rest = value;
    std::string_view first = TakeWord(rest);
    return std::string(first.substr(0, first.find('=')));
}
}  // namespace

std::string NewKeysAbsent(std::string_view attribute, const std::vector<std::string>& before,
                          const std::vector<std::string>& added) {
    const AttributeInfo* info = FindAttribute(attribute);
    if (!info || info->form != ValueForm::kRedirect) return std::string();
    std::vector<std::string> keys;
    for (const std::string& v : added) {
        std::string key = RedirectKey(v);
        bool known = key.empty();
        for (const std::string& b : before) known = known || EqualsNoCase(RedirectKey(b), key);
        for (const std::string& k : keys) known = known || k == key;
        if (!known) keys.push_back(key);
    }
    std::string filter;
    for (const std::string& key : keys) {
        std::string escaped;
        if (!EscapeFilterValue(key, &escaped)) continue;
        filter += "(!(" + std::string(info->name) + "=" + escaped + "=*))";
    }
    return keys.size() > 1 ? "(&" + filter + ")" : filter;
}

bool NeedsAuxiliaryClass(std::string_view attribute) {
    return FindAttribute(attribute) && !EqualsNoCase(attribute, "userPassword");
}

}  // namespace lxrapi
