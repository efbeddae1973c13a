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

struct GroupConfig {
    std::string dn;      // the group's entry; also the Group element's name
    std::string prompt;  // label shown for the group ("#..." to translate)
    std::string reason;  // non-empty: members are disabled for this reason
};

struct DirectoryConfig {
    std::string id;                   // what the selection page posts back as USERDIR
    std::string name;                 // display name
    std::string store;                // absolute path of the store
    std::string base;                 // DN under which the directory's users live
    std::vector<std::string> naming;  // attributes a typed user name is matched against
    std::vector<GroupConfig> groups;  // in the order shown
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
    Policy policy;
    std::vector<DirectoryConfig> directories;
    std::vector<Role> roles;

    const DirectoryConfig* FindDirectory(std::string_view id) const;
    const Role* FindRole(std::string_view name) const;
};

// Parses the configuration text; `path` names it in messages and anchors the
// relative store paths. Fails with kUnreachable and "file:line: problem".
Status ParseConfig(std::string_view text, const std::string& path, Config* config);

// Reads and parses the file at `path`.
Status LoadConfig(const std::string& path, Config* config);

// The file to use: LXRAPI_CONFIG, else lxrapi.toml in the working directory.
std::string ConfigPath();

// The configuration for this process, parsed once and again only when the
// file changes (its size, time or inode). Fails as LoadConfig does.
Status CurrentConfig(std::shared_ptr<const Config>* config);

}  // namespace lxrapi
