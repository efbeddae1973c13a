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

Status VisitByKey(StoreReader& reader, const std::vector<std::string>& dns, std::string_view base,
                  std::string_view after, const ListVisitor& visit) {
    std::vector<std::pair<std::string, std::string>> below;  // key, DN
    for (const std::string& dn : dns)
        if (IsBelow(dn, base) && DnKey(dn) > after) below.emplace_back(DnKey(dn), dn);
    std::sort(below.begin(), below.end());
    for (size_t i = 0; i < below.size(); ++i) {
        if (i > 0 && below[i].first == below[i - 1].first) continue;
        Entry e;
        bool found = false;
        Status s = reader.Get(below[i].second, &e, &found);
        if (!s.ok()) return s;
        if (found && !visit(e, below[i].first)) break;
    }
    return Status::OK();
}

Status StoreReader::ListUsers(const ListQuery& query, std::string_view after,
                              const ListVisitor& visit) {
    std::vector<std::string> dns;
    Status s = ListDns(&dns);
    if (!s.ok()) return s;
    return VisitByKey(*this, dns, query.base, after, visit);
}

}  // namespace lxrapi
