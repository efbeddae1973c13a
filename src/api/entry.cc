#include <algorithm>

#include "store.h"
#include "text.h"

namespace lxrapi {

const EntryAttribute* Entry::Find(std::string_view name) const {
    for (const EntryAttribute& a : attributes)
        if (EqualsNoCase(a.name, name)) return &a;
    return nullptr;
}

std::vector<std::string> Entry::Values(std::string_view name) const {
    const EntryAttribute* a = Find(name);
    return a ? a->values : std::vector<std::string>{};
}

std::string Entry::First(std::string_view name) const {
    const EntryAttribute* a = Find(name);
    return a && !a->values.empty() ? a->values.front() : std::string();
}

void Entry::Set(std::string_view name, std::vector<std::string> values) {
    for (auto it = attributes.begin(); it != attributes.end(); ++it) {
        if (!EqualsNoCase(it->name, name)) continue;
        if (values.empty())
            attributes.erase(it);
        else
            it->values = std::move(values);
        return;
    }
    if (!values.empty()) attributes.push_back({std::string(name), std::move(values)});
}

}  // namespace lxrapi

namespace lxrapi {

Status StoreReader::ListUsers(const ListQuery& query, std::string_view after,
                              const ListVisitor& visit) {
    std::vector<std::string> dns;
    Status s = ListDns(&dns);
    if (!s.ok()) return s;
    std::vector<std::pair<std::string, std::string>> below;  // key, DN
    for (const std::string& dn : dns)
        if (IsBelow(dn, query.base) && DnKey(dn) > after) below.emplace_back(DnKey(dn), dn);
    std::sort(below.begin(), below.end());
    for (const auto& [key, dn] : below) {
        Entry e;
        bool found = false;
        if (!(s = Get(dn, &e, &found)).ok()) return s;
        if (found && !visit(e, key)) break;
    }
    return Status::OK();
}

}  // namespace lxrapi
