#include "access.h"

#include "attributes.h"
#include "message.h"
#include "text.h"

namespace lxrapi {

std::string AdministratorDn(std::string_view path) {
    path = Trim(path);
    size_t slashes = path.find("//");
    if (slashes == std::string_view::npos) return std::string(path);
    size_t serverEnd = path.find('/', slashes + 2);
    if (serverEnd == std::string_view::npos) return std::string();
    return std::string(Trim(path.substr(serverEnd + 1)));
}

Status FindRole(const Config& config, std::string_view identity, const Role** role) {
    if (Trim(identity).empty()) return Status::AccessDenied(Words(Say::NoRoleGiven));
    *role = config.FindRole(Trim(identity));
    if (!*role) return Status::AccessDenied(Words(Say::UnknownRole, Quoted(identity, 100)));
    return Status::OK();
}

Status CheckAdministrator(const Config& config, StoreProvider& stores, const Role& role,
                          std::string_view administratorPath, std::string* adminDn) {
    std::string dn = AdministratorDn(administratorPath);
    if (dn.empty())
        return Status::AdminUnreadable(
            Words(Say::AdminPathNamesNoEntry, Quoted(administratorPath, 200)));
    Store* store = nullptr;
    Status s = stores.Open(config.adminStore, &store);
    if (!s.ok()) return s;
    bool allowed = false;
    s = store->Read([&](StoreReader& r) {
        Entry admin;
        bool found = false;
        Status st = r.Get(dn, &admin, &found);
        if (!st.ok()) return st;
        if (!found) return Status::AdminUnreadable(Words(Say::NoAdminEntry, Quoted(dn)));
        for (const std::string& listed : role.administrators.names) {
            if (DnKey(listed) == DnKey(dn)) allowed = true;
            if (allowed) break;
            bool member = false;
            if (!(st = r.IsMember(listed, dn, &member)).ok()) return st;
            allowed = member;
        }
        return Status::OK();
    });
    if (!s.ok()) return s;
    if (!allowed)
        return Status::AccessDenied(Words(Say::AdminNotInRole, Quoted(dn), Quoted(role.name)));
    *adminDn = dn;
    return Status::OK();
}

bool MayRead(const Role& role, std::string_view attribute) {
    return role.read.Has(attribute);
}

bool MayWrite(const Role& role, std::string_view attribute) {
    const AttributeInfo* info = FindAttribute(attribute);
    return info && info->editable && role.write.Has(attribute);
}

bool MayReadGroup(const Role& role, std::string_view groupDn) {
    return role.groupsRead.Has(groupDn);
}

bool MayWriteGroup(const Role& role, std::string_view groupDn) {
    return role.groupsWrite.Has(groupDn);
}

bool MaySeeDirectory(const Role& role, const DirectoryConfig& directory) {
    return role.directories.Has(directory.id);
}

}  // namespace lxrapi
