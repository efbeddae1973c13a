#include "config.h"

#include <fcntl.h>
#include <toml++/toml.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "config_image.h"
#include "message.h"
#include "text.h"

namespace lxrapi {

bool IsGroupId(std::string_view id) {
    if (id.empty()) return false;
    for (char c : id)
        if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
              c == '-' || c == '_' || c == '.'))
            return false;
    return true;
}

bool NameSet::Has(std::string_view name) const {
    if (all) return true;
    for (const std::string& n : names)
        if (dns ? DnKey(n) == DnKey(name) : EqualsNoCase(n, name)) return true;
    return false;
}

const GroupConfig* DirectoryConfig::FindGroup(std::string_view name) const {
    for (const GroupConfig& g : groups)
        if (EqualsNoCase(g.id, name) || DnKey(g.dn) == DnKey(name)) return &g;
    return nullptr;
}

const DirectoryConfig* Config::FindDirectory(std::string_view id) const {
    for (const DirectoryConfig& d : directories)
        if (d.id == id) return &d;
    return nullptr;
}

bool IsLdapUrl(std::string_view store) {
    std::string head = Lower(store.substr(0, 8));
    return head.rfind("ldap://", 0) == 0 || head.rfind("ldaps://", 0) == 0 ||
           head.rfind("ldapi://", 0) == 0;
}

namespace {
std::string_view WithoutSlash(std::string_view url) {
    while (!url.empty() && url.back() == '/') url.remove_suffix(1);
    return url;
}
}  // namespace

const LdapConfig* Config::FindLdap(std::string_view url) const {
    for (const LdapConfig& l : ldap)
        if (EqualsNoCase(l.url, WithoutSlash(url))) return &l;
    return nullptr;
}

const Role* Config::FindRole(std::string_view name) const {
    for (const Role& r : roles)
        if (EqualsNoCase(r.name, name)) return &r;
    return nullptr;
}

namespace {

// Collects the first problem with its line; later checks are skipped. The
// message begins with words, never with the path: the program would take a
// message that begins with "/" for an address and redirect the browser to it.
class Reader {
  public:
    explicit Reader(const std::string& path) : path_(path) {}

    bool Fail(int line, const std::string& problem) {
        if (failed_) return false;
        failed_ = true;
        status_ = Status::Unreachable("Configuration file " + Shown(path_) + " line " +
                                      std::to_string(line) + ": " + problem);
        return false;
    }
    bool failed() const { return failed_; }
    Status status() const { return status_; }
    const std::string& path() const { return path_; }

    static int Line(const toml::node& node) { return static_cast<int>(node.source().begin.line); }

    // Refuses keys other than `known`, so that a misspelt key is reported.
    bool OnlyKeys(const toml::table& table, const char* where,
                  std::initializer_list<const char*> known) {
        for (const auto& [key, node] : table) {
            bool ok = false;
            for (const char* k : known) ok = ok || key.str() == k;
            if (!ok) return Fail(Line(node), "unknown key " + Quoted(key.str()) + " in " + where);
        }
        return true;
    }

    bool String(const toml::table& t, const char* key, const char* where, bool required,
                std::string* out) {
        const toml::node* node = t.get(key);
        if (!node) {
            if (required) return Fail(Line(t), std::string(where) + ": '" + key + "' is missing");
            return true;
        }
        if (!node->is_string())
            return Fail(Line(*node), std::string(where) + ": '" + key + "' must be a string");
        *out = node->as_string()->get();
        if (out->find('"') != std::string::npos)
            return Fail(Line(*node),
                        std::string(where) + ": '" + key + "' must not hold a quotation mark");
        return true;
    }

    bool Int(const toml::table& t, const char* key, const char* where, int low, int high,
             int* out) {
        const toml::node* node = t.get(key);
        if (!node) return true;
        if (!node->is_integer() || node->as_integer()->get() < low ||
            node->as_integer()->get() > high)
            return Fail(Line(*node), std::string(where) + ": '" + key +
                                         "' must be a whole number from " + std::to_string(low) +
                                         " to " + std::to_string(high));
        *out = static_cast<int>(node->as_integer()->get());
        return true;
    }

    bool Bool(const toml::table& t, const char* key, const char* where, bool* out) {
        const toml::node* node = t.get(key);
        if (!node) return true;
        if (!node->is_boolean())
            return Fail(Line(*node), std::string(where) + ": '" + key + "' must be true or false");
        *out = node->as_boolean()->get();
        return true;
    }

    bool Names(const toml::table& t, const char* key, const char* where, bool dns, NameSet* out) {
        out->dns = dns;
        const toml::node* node = t.get(key);
        if (!node) return true;
        if (node->is_string() && node->as_string()->get() == "*") {
            out->all = true;
            return true;
        }
        const toml::array* array = node->as_array();
        if (!array)
            return Fail(Line(*node),
                        std::string(where) + ": '" + key + "' must be '*' or a list of strings");
        for (const toml::node& item : *array) {
            if (!item.is_string() || item.as_string()->get().empty())
                return Fail(Line(item),
                            std::string(where) + ": '" + key + "' must hold non-empty strings");
            const std::string& s = item.as_string()->get();
            if (s == "*")
                out->all = true;
            else
                out->names.push_back(s);
        }
        return true;
    }

    std::string Resolve(const std::string& store) const {
        if (!store.empty() && store[0] == '/') return store;
        if (IsLdapUrl(store)) return std::string(WithoutSlash(store));
        size_t slash = path_.rfind('/');
        std::string folder = slash == std::string::npos ? "." : path_.substr(0, slash);
        if (folder.empty()) folder = "/";
        return folder + "/" + store;
    }

  private:
    std::string path_;
    bool failed_ = false;
    Status status_;
};

// The value of a DN's first component: "vpn-users" for
// "cn=vpn-users,ou=groups,o=example".
std::string FirstValue(const std::string& dn) {
    size_t equals = dn.find('=');
    size_t comma = dn.find(',', equals);
    return std::string(Trim(std::string_view(dn).substr(equals + 1, comma - equals - 1)));
}

bool ReadGroup(Reader& r, const toml::table& t, const std::string& where,
               const DirectoryConfig& directory, GroupConfig* g) {
    if (!r.OnlyKeys(t, where.c_str(), {"id", "dn", "prompt", "reason"})) return false;
    if (!r.String(t, "id", where.c_str(), false, &g->id) ||
        !r.String(t, "dn", where.c_str(), true, &g->dn) ||
        !r.String(t, "prompt", where.c_str(), false, &g->prompt) ||
        !r.String(t, "reason", where.c_str(), false, &g->reason))
        return false;
    if (g->dn.find('=') == std::string::npos)
        return r.Fail(Reader::Line(t), where + ": 'dn' is not a distinguished name");
    if (g->reason.find(',') != std::string::npos)
        return r.Fail(Reader::Line(t), where + ": 'reason' must not hold a comma");
    const toml::node* id = t.get("id");
    int line = id ? Reader::Line(*id) : Reader::Line(t);
    if (!id) {
        g->id = FirstValue(g->dn);
        if (!IsGroupId(g->id))
            return r.Fail(line, where + ": the first value of its DN, " + Quoted(g->id) +
                                    ", cannot name the group on the page (only letters, digits, "
                                    "'-', '_' and '.'); give the group an 'id'");
    } else if (!IsGroupId(g->id)) {
        return r.Fail(line, where + ": 'id' " + Quoted(g->id) +
                                " may hold only letters, digits, '-', '_' and '.'");
    }
    for (const GroupConfig& other : directory.groups)
        if (EqualsNoCase(other.id, g->id))
            return r.Fail(line, where + ": the group identifier " + Quoted(g->id) +
                                    " is used twice in the directory");
    return true;
}

bool ReadDirectory(Reader& r, const toml::table& t, int index, Config* config) {
    DirectoryConfig d;
    d.line = Reader::Line(t);
    std::string where = "directory " + std::to_string(index + 1);
    if (!r.OnlyKeys(t, where.c_str(), {"id", "name", "store", "base", "naming", "group"}))
        return false;
    if (!r.String(t, "id", where.c_str(), true, &d.id)) return false;
    if (d.id.empty() || d.id.find_first_of("/ \t") != std::string::npos)
        return r.Fail(d.line, where + ": 'id' must be non-empty, without '/' or blanks");
    if (config->FindDirectory(d.id))
        return r.Fail(d.line, where + ": the identifier " + Quoted(d.id) + " is used twice");
    where = "directory " + Quoted(d.id);
    if (!r.String(t, "name", where.c_str(), false, &d.name) ||
        !r.String(t, "store", where.c_str(), true, &d.store) ||
        !r.String(t, "base", where.c_str(), true, &d.base))
        return false;
    if (d.name.empty()) d.name = d.id;
    if (d.store.empty()) return r.Fail(d.line, where + ": 'store' is empty");
    if (d.base.find('=') == std::string::npos)
        return r.Fail(d.line, where + ": 'base' is not a distinguished name");
    d.store = r.Resolve(d.store);
    if (IsLdapUrl(d.store) && !config->FindLdap(d.store))
        return r.Fail(d.line, where + ": no [[ldap]] has the url " + Quoted(d.store));
    NameSet naming;
    if (!r.Names(t, "naming", where.c_str(), false, &naming)) return false;
    if (naming.all) return r.Fail(d.line, where + ": 'naming' must list attribute names");
    d.naming = naming.names.empty() ? std::vector<std::string>{"uid", "cn", "mail"} : naming.names;
    if (const toml::node* groups = t.get("group")) {
        const toml::array* array = groups->as_array();
        if (!array || !array->is_array_of_tables())
            return r.Fail(Reader::Line(*groups), where + ": 'group' must be [[directory.group]]");
        for (const toml::node& g : *array) {
            GroupConfig group;
            std::string whereGroup = where + " group " + std::to_string(d.groups.size() + 1);
            if (!ReadGroup(r, *g.as_table(), whereGroup, d, &group)) return false;
            d.groups.push_back(group);
        }
    }
    config->directories.push_back(d);
    return true;
}

bool ReadRole(Reader& r, const toml::table& t, int index, Config* config) {
    Role role;
    role.line = Reader::Line(t);
    std::string where = "role " + std::to_string(index + 1);
    if (!r.OnlyKeys(t, where.c_str(),
                    {"name", "administrators", "directories", "read", "write", "groups_read",
                     "groups_write"}))
        return false;
    if (!r.String(t, "name", where.c_str(), true, &role.name)) return false;
    if (role.name.empty()) return r.Fail(role.line, where + ": 'name' is empty");
    if (config->FindRole(role.name))
        return r.Fail(role.line, where + ": the role " + Quoted(role.name) + " is defined twice");
    where = "role " + Quoted(role.name);
    if (!t.get("administrators")) return r.Fail(role.line, where + ": 'administrators' is missing");
    if (!r.Names(t, "administrators", where.c_str(), true, &role.administrators) ||
        !r.Names(t, "directories", where.c_str(), false, &role.directories) ||
        !r.Names(t, "read", where.c_str(), false, &role.read) ||
        !r.Names(t, "write", where.c_str(), false, &role.write) ||
        !r.Names(t, "groups_read", where.c_str(), true, &role.groupsRead) ||
        !r.Names(t, "groups_write", where.c_str(), true, &role.groupsWrite))
        return false;
    if (role.administrators.all)
        return r.Fail(role.line, where + ": 'administrators' must list DNs, not '*'");
    for (const std::string& id : role.directories.names)
        if (!config->FindDirectory(id))
            return r.Fail(role.line, where + ": unknown directory " + Quoted(id));
    config->roles.push_back(role);
    return true;
}

bool ReadPolicy(Reader& r, const toml::table& t, Policy* p) {
    if (!r.OnlyKeys(t, "[policy]",
                    {"max_failures", "password_expire_days", "inactivity_days", "password"}))
        return false;
    if (!r.Int(t, "max_failures", "[policy]", 0, 1000, &p->maxFailures) ||
        !r.Int(t, "password_expire_days", "[policy]", 0, 36500, &p->passwordExpireDays) ||
        !r.Int(t, "inactivity_days", "[policy]", 0, 36500, &p->inactivityDays))
        return false;
    const toml::node* node = t.get("password");
    if (!node) return true;
    const toml::table* pw = node->as_table();
    if (!pw) return r.Fail(Reader::Line(*node), "[policy]: 'password' must be a table");
    const char* w = "[policy.password]";
    PasswordRules& rules = p->password;
    if (!r.OnlyKeys(*pw, w,
                    {"min_length", "max_length", "min_digits", "min_upper", "min_lower",
                     "min_other", "reject_user_name", "scheme"}) ||
        !r.Int(*pw, "min_length", w, 1, 1024, &rules.minLength) ||
        !r.Int(*pw, "max_length", w, 1, 1024, &rules.maxLength) ||
        !r.Int(*pw, "min_digits", w, 0, 1024, &rules.minDigits) ||
        !r.Int(*pw, "min_upper", w, 0, 1024, &rules.minUpper) ||
        !r.Int(*pw, "min_lower", w, 0, 1024, &rules.minLower) ||
        !r.Int(*pw, "min_other", w, 0, 1024, &rules.minOther) ||
        !r.Bool(*pw, "reject_user_name", w, &rules.rejectUserName) ||
        !r.String(*pw, "scheme", w, false, &rules.scheme))
        return false;
    if (rules.minLength > rules.maxLength)
        return r.Fail(Reader::Line(*pw), std::string(w) + ": min_length exceeds max_length");
    if (rules.scheme != "argon2id" && rules.scheme != "sha512-crypt")
        return r.Fail(Reader::Line(*pw),
                      std::string(w) + ": 'scheme' must be 'argon2id' or 'sha512-crypt'");
    return true;
}

// One [[ldap]] table: a server, how to bind to it, and where its audit is kept.
bool ReadLdap(Reader& r, const toml::table& t, int index, Config* config) {
    LdapConfig l;
    l.line = Reader::Line(t);
    std::string where = "ldap " + std::to_string(index + 1);
    if (t.get("password"))
        return r.Fail(Reader::Line(*t.get("password")),
                      where +
                          ": a password is not written here; name a file with "
                          "'password_file' or an environment variable with 'password_env'");
    if (!r.OnlyKeys(t, where.c_str(),
                    {"url", "bind_dn", "password_file", "password_env", "tls", "ca_file",
                     "tls_verify", "timeout_ms", "audit", "auxiliary_class", "policy",
                     "default_policy", "access_log", "policy_base"}) ||
        !r.String(t, "url", where.c_str(), true, &l.url))
        return false;
    if (!IsLdapUrl(l.url) || l.url.find_first_of(" \t") != std::string::npos)
        return r.Fail(l.line, where + ": 'url' must begin with ldap://, ldaps:// or ldapi://");
    l.url = std::string(WithoutSlash(l.url));
    if (config->FindLdap(l.url))
        return r.Fail(l.line, where + ": the url " + Quoted(l.url) + " is declared twice");
    where = "ldap " + Quoted(l.url);
    std::string tls = "none", policy;
    if (!r.String(t, "bind_dn", where.c_str(), false, &l.bindDn) ||
        !r.String(t, "password_file", where.c_str(), false, &l.passwordFile) ||
        !r.String(t, "password_env", where.c_str(), false, &l.passwordEnv) ||
        !r.String(t, "tls", where.c_str(), false, &tls) ||
        !r.String(t, "ca_file", where.c_str(), false, &l.caFile) ||
        !r.Bool(t, "tls_verify", where.c_str(), &l.verifyCertificate) ||
        !r.Int(t, "timeout_ms", where.c_str(), 100, 600000, &l.timeoutMs) ||
        !r.String(t, "audit", where.c_str(), true, &l.audit) ||
        !r.String(t, "auxiliary_class", where.c_str(), false, &l.auxiliaryClass) ||
        !r.String(t, "policy", where.c_str(), false, &policy) ||
        !r.String(t, "default_policy", where.c_str(), false, &l.defaultPolicy) ||
        !r.String(t, "access_log", where.c_str(), false, &l.accessLog) ||
        !r.String(t, "policy_base", where.c_str(), false, &l.policyBase))
        return false;
    if (policy != "" && policy != "ppolicy")
        return r.Fail(l.line, where + ": 'policy' must be 'ppolicy' or left out");
    l.serverPolicy = policy == "ppolicy";
    if (l.serverPolicy && l.defaultPolicy.find('=') == std::string::npos)
        return r.Fail(l.line, where + ": policy 'ppolicy' needs 'default_policy', the DN of the " +
                                  "server's default policy entry");
    if (!l.serverPolicy && (t.get("default_policy") || t.get("access_log") || t.get("policy_base")))
        return r.Fail(l.line, where + ": 'default_policy', 'access_log' and 'policy_base' need " +
                                  "policy = 'ppolicy'");
    if (!l.policyBase.empty() && l.policyBase.find('=') == std::string::npos)
        return r.Fail(l.line, where + ": 'policy_base' is not a distinguished name");
    if (!l.bindDn.empty() && l.bindDn.find('=') == std::string::npos)
        return r.Fail(l.line, where + ": 'bind_dn' is not a distinguished name");
    if (!l.passwordFile.empty() && !l.passwordEnv.empty())
        return r.Fail(l.line, where + ": give 'password_file' or 'password_env', not both");
    bool password = !l.passwordFile.empty() || !l.passwordEnv.empty();
    if (l.bindDn.empty() == password)
        return r.Fail(l.line, l.bindDn.empty()
                                  ? where + ": a password needs a 'bind_dn'"
                                  : where + ": 'bind_dn' needs 'password_file' or 'password_env'");
    if (tls != "none" && tls != "starttls")
        return r.Fail(l.line, where + ": 'tls' must be 'none' or 'starttls'");
    l.startTls = tls == "starttls";
    if (l.startTls && Lower(l.url).rfind("ldaps://", 0) == 0)
        return r.Fail(l.line, where + ": an ldaps:// url is TLS already; leave out 'tls'");
    if (l.audit.empty()) return r.Fail(l.line, where + ": 'audit' is empty");
    if (IsLdapUrl(l.audit))
        return r.Fail(l.line, where + ": 'audit' must name a file made with lxrdir create");
    l.audit = r.Resolve(l.audit);
    if (!l.passwordFile.empty()) l.passwordFile = r.Resolve(l.passwordFile);
    if (!l.caFile.empty()) l.caFile = r.Resolve(l.caFile);
    config->ldap.push_back(l);
    return true;
}

template <typename Fn>
bool EachTable(Reader& r, const toml::table& root, const char* key, Fn fn) {
    const toml::node* node = root.get(key);
    if (!node) return true;
    const toml::array* array = node->as_array();
    if (!array || !array->is_array_of_tables())
        return r.Fail(Reader::Line(*node),
                      std::string("'") + key + "' must be written [[" + key + "]]");
    int i = 0;
    for (const toml::node& item : *array)
        if (!fn(*item.as_table(), i++)) return false;
    return true;
}

// A table that holds one whole number, such as [store] busy_timeout_ms.
bool OneSetting(Reader& r, const toml::table& root, const char* table, const char* key, int low,
                int high, int* out) {
    const toml::node* node = root.get(table);
    if (!node) return true;
    const toml::table* t = node->as_table();
    if (!t) return r.Fail(Reader::Line(*node), std::string("'") + table + "' must be a table");
    std::string where = std::string("[") + table + "]";
    return r.OnlyKeys(*t, where.c_str(), {key}) && r.Int(*t, key, where.c_str(), low, high, out);
}

bool ReadRoot(Reader& r, const toml::table& root, Config* config) {
    if (!r.OnlyKeys(root, "the file",
                    {"administrators", "store", "read", "policy", "directory", "role", "ldap"}))
        return false;
    if (!OneSetting(r, root, "store", "busy_timeout_ms", 0, 600000, &config->busyTimeoutMs) ||
        !OneSetting(r, root, "read", "history_limit", 1, 100000, &config->historyLimit))
        return false;
    if (const toml::node* node = root.get("policy")) {
        if (!node->as_table()) return r.Fail(Reader::Line(*node), "'policy' must be a table");
        if (!ReadPolicy(r, *node->as_table(), &config->policy)) return false;
    }
    if (!EachTable(r, root, "ldap",
                   [&](const toml::table& t, int i) { return ReadLdap(r, t, i, config); }))
        return false;
    if (!EachTable(r, root, "directory",
                   [&](const toml::table& t, int i) { return ReadDirectory(r, t, i, config); }))
        return false;
    if (config->directories.empty()) return r.Fail(1, "no [[directory]] is declared");
    if (const toml::node* node = root.get("administrators")) {
        const toml::table* t = node->as_table();
        if (!t) return r.Fail(Reader::Line(*node), "'administrators' must be a table");
        if (!r.OnlyKeys(*t, "[administrators]", {"store"}) ||
            !r.String(*t, "store", "[administrators]", true, &config->adminStore))
            return false;
        config->adminStore = r.Resolve(config->adminStore);
        if (IsLdapUrl(config->adminStore) && !config->FindLdap(config->adminStore))
            return r.Fail(Reader::Line(*t), "[administrators]: no [[ldap]] has the url " +
                                                Quoted(config->adminStore));
    } else {
        config->adminStore = config->directories.front().store;
    }
    if (!EachTable(r, root, "role",
                   [&](const toml::table& t, int i) { return ReadRole(r, t, i, config); }))
        return false;
    if (config->roles.empty()) return r.Fail(1, "no [[role]] is declared");
    return true;
}

Status CannotOpen(const std::string& path) {
    return Status::Unreachable("Configuration file " + Shown(path) +
                               " cannot be opened: " + std::strerror(errno));
}

// The line of the first byte outside the ASCII range that stands outside a
// string and a comment, or 0. TOML allows such characters only in strings
// and comments, and the TOML library (3.3) reaches a branch it assumes
// unreachable, undefined behaviour, on some of them elsewhere ("[policyҙ]"),
// so they are refused before it sees them.
int StrayNonAsciiLine(std::string_view text) {
    enum State { kPlain, kComment, kBasic, kLiteral, kMultiBasic, kMultiLiteral };
    State state = kPlain;
    int line = 1;
    // Every request reads the whole file, so a byte is looked at once and a
    // triple quote only where a quote stands.
    auto triple = [&](size_t i, char q) {
        return i + 2 < text.size() && text[i + 1] == q && text[i + 2] == q;
    };
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '\n') {
            ++line;
            if (state == kComment || state == kBasic || state == kLiteral) state = kPlain;
            continue;
        }
        switch (state) {
            case kPlain:
                if (static_cast<unsigned char>(c) >= 0x80) return line;
                if (c == '#') {
                    state = kComment;
                } else if (c == '"' || c == '\'') {
                    bool multi = triple(i, c);
                    state = c == '"' ? (multi ? kMultiBasic : kBasic)
                                     : (multi ? kMultiLiteral : kLiteral);
                    if (multi) i += 2;
                }
                break;
            case kComment:
                break;
            case kBasic:
            case kMultiBasic:
                if (c == '\\' && i + 1 < text.size() && text[i + 1] != '\n') {
                    ++i;
                } else if (c == '"' && (state == kBasic || triple(i, c))) {
                    if (state == kMultiBasic) i += 2;
                    state = kPlain;
                }
                break;
            case kLiteral:
            case kMultiLiteral:
                if (c == '\'' && (state == kLiteral || triple(i, c))) {
                    if (state == kMultiLiteral) i += 2;
                    state = kPlain;
                }
                break;
        }
    }
    return 0;
}

}  // namespace

Status ParseConfig(std::string_view text, const std::string& path, Config* config) {
    *config = Config();
    config->path = path;
    Reader reader(path);
    if (int line = StrayNonAsciiLine(text)) {
        reader.Fail(line, "a character that is not ASCII stands outside quotes and comments");
        return reader.status();
    }
    toml::table root;
    try {
        root = toml::parse(text, path);
    } catch (const toml::parse_error& e) {
        reader.Fail(static_cast<int>(e.source().begin.line), Shown(e.description()));
        return reader.status();
    }
    if (!ReadRoot(reader, root, config)) return reader.status();
    return Status::OK();
}

// Read with plain POSIX calls: a file stream would set up the C++ locale
// machinery, which costs a CGI process more than reading the file does.
Status ReadConfigFile(const std::string& path, std::string* text) {
    text->clear();
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return CannotOpen(path);
    char block[8192];
    for (;;) {
        ssize_t n = ::read(fd, block, sizeof block);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;  // a read error ends the text there, as a stream copy would
        text->append(block, static_cast<size_t>(n));
    }
    ::close(fd);
    return Status::OK();
}

Status LoadConfig(const std::string& path, Config* config) {
    std::string text;
    Status s = ReadConfigFile(path, &text);
    return s.ok() ? ParseConfig(text, path, config) : s;
}

std::string ConfigPath() {
    const char* env = std::getenv("LXRAPI_CONFIG");
    return env && *env ? env : "lxrapi.toml";
}

// The text, not the file's times, decides whether the file changed: reading
// a few kilobytes costs about what a stat does, and two changes within one
// tick of the file system's clock cannot be mistaken for none.
Status CurrentConfig(std::shared_ptr<const Config>* config) {
    static std::mutex mutex;
    static std::shared_ptr<const Config> cached;
    static std::string cachedPath, cachedText;
    std::lock_guard<std::mutex> lock(mutex);
    std::string path = ConfigPath();
    std::string text;
    Status s = ReadConfigFile(path, &text);
    if (!s.ok()) return s;
    if (cached && cachedPath == path && cachedText == text) {
        *config = cached;
        return Status::OK();
    }
    auto fresh = std::make_shared<Config>();
    s = ParseConfigCached(text, path, fresh.get());
    if (!s.ok()) return s;
    cached = fresh;
    cachedPath = path;
    cachedText = std::move(text);
    *config = cached;
    return Status::OK();
}

}  // namespace lxrapi
