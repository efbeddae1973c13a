// The API's configuration: directories, password-services policy and
// administrator roles, read from one TOML file (see docs/configuration.md).
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "status.h"

namespace lxrapi {

// A set of names from the configuration: either "*" (everything) or a list.
// Names compare without regard to case; DNs by their DnKey.
struct NameSet {
    bool all = false;
    std::vector<std::string> names;  // as written
    bool dns = false;                // entries are DNs

    bool Has(std::string_view name) const;
};

// A group shown on the user's page. The page names the group's form fields
// "GROUP-" + the Group element's name and the browser URL-encodes field names
// when it posts them, which the program does not undo; so the element's name
// is the short `id`, which needs no encoding, rather than the DN.
struct GroupConfig {
    std::string id;      // the Group element's name: letters, digits, "-", "_", "." (IsGroupId)
    std::string dn;      // the group's entry, whose member values list the users
    std::string prompt;  // label shown for the group ("#..." to translate)
    std::string reason;  // non-empty: members are disabled for this reason
};

// True for a non-empty text of ASCII letters, digits, "-", "_" and ".".
bool IsGroupId(std::string_view id);

struct DirectoryConfig {
    std::string id;                   // what the selection page posts back as USERDIR
    std::string name;                 // display name
    std::string store;                // absolute path of the store, or an LDAP URL (IsLdapUrl)
    std::string base;                 // DN under which the directory's users live
    std::vector<std::string> naming;  // attributes a typed user name is matched against
    std::vector<GroupConfig> groups;  // in the order shown
    int line = 0;

    // The group whose identifier (without regard to case) or DN (by DnKey)
    // is `name`; null when none is.
    const GroupConfig* FindGroup(std::string_view name) const;
};

// True when a store location is an LDAP URL (ldap://, ldaps:// or ldapi://,
// without regard to case) rather than the path of an embedded store.
bool IsLdapUrl(std::string_view store);

// An LDAP server that directory stores name by its URL (docs/ldap.md). The
// bind password is never written in the configuration: it comes from a file
// or an environment variable, read when the store is opened, so that it can
// be changed without touching this file.
struct LdapConfig {
    std::string url;                // as `store` names it, without a trailing "/"
    std::string bindDn;             // empty: anonymous
    std::string passwordFile;       // absolute path of a file holding the password, or ""
    std::string passwordEnv;        // name of the environment variable holding it, or ""
    bool startTls = false;          // StartTLS before the bind (ldaps:// is TLS from the start)
    std::string caFile;             // absolute path of the CA certificates; "": the system's
    bool verifyCertificate = true;  // false accepts any server certificate (tests only)
    int timeoutMs = 5000;           // connect and per-operation limit
    std::string audit;              // absolute path of the audit store (an lxrdir file)
    std::string auxiliaryClass = "kvlxrAccount";  // added to entries that gain our attributes
    // policy = "ppolicy": the server's password policy overlay holds the
    // lockout, start and end dates, forced change, grace logins and last
    // login; Read and Write map those fields onto its attributes, so that
    // what the page changes is what the server enforces at the next bind.
    bool serverPolicy = false;
    std::string defaultPolicy;  // the overlay's default policy entry (users without their own)
    std::string accessLog = "cn=accesslog";  // the access log database's suffix; "": no history
    // Where the per-user policies of lifetime and inactivity overrides are
    // created (ldap/policy_override.h); "": those fields cannot be written.
    std::string policyBase;
    int line = 0;
};

struct PasswordRules {
    int minLength = 8;
    int maxLength = 32;
    int minDigits = 0;
    int minUpper = 0;
    int minLower = 0;
    int minOther = 0;
    bool rejectUserName = true;       // refuse a password that holds the user's naming values
    std::string scheme = "argon2id";  // or "sha512-crypt"
};

struct Policy {
    int maxFailures = 5;         // failure count at which a user is locked out (0: never)
    int passwordExpireDays = 0;  // default password lifetime (0: never expires)
    int inactivityDays = 0;      // default inactivity limit (0: none)
    PasswordRules password;
};

struct Role {
    std::string name;
    NameSet administrators;           // DNs of administrators or of groups of them
    NameSet directories;              // directory identifiers
    NameSet read, write;              // attribute names
    NameSet groupsRead, groupsWrite;  // group DNs
    int line = 0;
};

struct Config {
    std::string path;          // the file it came from
    std::string adminStore;    // absolute path of the store that holds administrators
    int busyTimeoutMs = 5000;  // how long a store waits for a lock
    int historyLimit = 100;    // [read] history_limit: entries of each history shown at most
    Policy policy;
    std::vector<DirectoryConfig> directories;
    std::vector<Role> roles;
    std::vector<LdapConfig> ldap;  // [[ldap]]: the LDAP servers stores name

    const DirectoryConfig* FindDirectory(std::string_view id) const;
    // The [[ldap]] whose url is `url` (without regard to case or a trailing "/").
    const LdapConfig* FindLdap(std::string_view url) const;
    const Role* FindRole(std::string_view name) const;
};

// Parses the configuration text; `path` names it in messages and anchors the
// relative store paths (LDAP URLs are kept as written). Fails with kUnreachable and "Configuration
// file PATH line N: PROBLEM".
Status ParseConfig(std::string_view text, const std::string& path, Config* config);

// Reads the file at `path` whole into `text`; an unreadable file fails with
// "Configuration file PATH cannot be opened: REASON".
Status ReadConfigFile(const std::string& path, std::string* text);

// Reads and parses the file at `path`; fails as ReadConfigFile and
// ParseConfig do.
Status LoadConfig(const std::string& path, Config* config);

// The file to use: LXRAPI_CONFIG, else lxrapi.toml in the working directory.
std::string ConfigPath();

// The configuration for this process. The file is read at every call and
// parsed only when its text differs from the last call's; a new process
// takes the parse of an unchanged text from its image (config_image.h).
// Fails as LoadConfig does.
Status CurrentConfig(std::shared_ptr<const Config>* config);

}  // namespace lxrapi
