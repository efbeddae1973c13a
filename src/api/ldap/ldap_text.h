// The parts of the LDAP store that need no server: search filters built from
// outside text, the suffix that a set of group entries share, and how a
// change of one attribute becomes an LDAP modification.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "status.h"

namespace lxrapi {

// True for an attribute description a filter may name: a letter followed by
// letters, digits and "-" (options after ";" allowed), or a numeric OID.
bool IsAttributeDescription(std::string_view name);

// A filter matching entries that hold `value` in any of `attributes`:
// "(uid=v)" for one, "(|(uid=v)(cn=v))" for several. The value is escaped by
// libldap (ldap_bv2escaped_filter_value), so "*", "(", ")", "\" and NUL in a
// typed user name match themselves. Fails with kBadRequest when an attribute
// cannot be named in a filter or there is none.
Status ValueFilter(const std::vector<std::string>& attributes, std::string_view value,
                   std::string* filter);

// `value` escaped for a filter by libldap; false when that fails.
bool EscapeFilterValue(std::string_view value, std::string* escaped);

// The DN that every one of `dns` is or lies below, compared RDN by RDN
// without regard to ASCII case or blanks around "," and "=" (multi-valued
// and escaped RDNs parsed by libldap); "" when they share nothing or one of
// them is not a DN. Written as the first DN spells it.
std::string CommonSuffix(const std::vector<std::string>& dns);

// How a write replaces one attribute's values. Most attributes hold one
// value that the administrator sets: the whole attribute is replaced, so two
// administrators changing different attributes of one user both keep their
// change. Group members, redirects and histories hold many values that
// others change at the same time: only the values this write removes are
// deleted (by exact value) and only the new ones added, so that a concurrent
// change to another value is kept, and a value that someone else changed
// first makes the server refuse the modification instead of overwriting it.
bool ChangedByValue(std::string_view attribute);

// The exact values to delete and to add to turn `before` into `after`; a
// value given twice counts once (a directory keeps no duplicates). A server
// adds values at the end, so with `keepOrder` a value that stays but would
// then stand in the wrong place is deleted and added again (the redirects
// are shown in their stored order, and an entry replaced keeps its place).
struct ValueDelta {
    std::vector<std::string> removed;
    std::vector<std::string> added;
    bool empty() const { return removed.empty() && added.empty(); }
};
ValueDelta Delta(const std::vector<std::string>& before, const std::vector<std::string>& after,
                 bool keepOrder = false);

// True for the attributes whose values are shown in their stored order: the
// redirects and the histories (not group members, which may be thousands).
bool KeepsOrder(std::string_view attribute);

// The generational redirects hold one entry per key (the first word up to
// "="). Deleting an exact old value guards a replaced entry, but two writers
// adding the same key afresh would both succeed; so a change that adds
// values of `attribute` under keys `before` has no entry for carries this
// filter as an assertion (RFC 4528): it holds while none of those keys has an
// entry. "" when the change adds no new key (or the attribute has no keys).
std::string NewKeysAbsent(std::string_view attribute, const std::vector<std::string>& before,
                          const std::vector<std::string>& added);

// `values` without exact repeats, in their order.
std::vector<std::string> Distinct(const std::vector<std::string>& values);

// True for the attributes whose values need the auxiliary object class
// (the password-services attributes, but not userPassword).
bool NeedsAuxiliaryClass(std::string_view attribute);

}  // namespace lxrapi
