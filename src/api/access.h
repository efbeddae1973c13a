// Who may do what: the administrator's DN from the path the program passes,
// the role named by the identity argument, and the role's grants.
#pragma once

#include <string>
#include <string_view>

#include "config.h"
#include "status.h"
#include "store.h"

namespace lxrapi {

// The DN at the end of an administrator path. Accepted forms:
// "NAMESPACE//SERVER/DN" (as the program builds it, e.g. LDAP://ldap1/uid=a,o=org),
// "//SERVER/DN", and a bare DN. After "//" the server runs to the next "/";
// everything after that "/" is the DN, so a DN may hold "/" itself.
std::string AdministratorDn(std::string_view path);

// The role named by `identity` (without regard to case). Fails with
// kAccessDenied for an empty or unknown name.
Status FindRole(const Config& config, std::string_view identity, const Role** role);

// Checks that the administrator entry exists (kAdminUnreadable otherwise) and
// that the administrator is listed in the role, directly or as a member of a
// listed group (kAccessDenied otherwise). Reads the administrators' store.
Status CheckAdministrator(const Config& config, StoreProvider& stores, const Role& role,
                          std::string_view administratorPath, std::string* adminDn);

// The role's grants for one attribute or group. Writing needs an attribute
// the page can edit.
bool MayRead(const Role& role, std::string_view attribute);
bool MayWrite(const Role& role, std::string_view attribute);
bool MayReadGroup(const Role& role, std::string_view groupDn);
bool MayWriteGroup(const Role& role, std::string_view groupDn);
bool MaySeeDirectory(const Role& role, const DirectoryConfig& directory);

}  // namespace lxrapi
