// Password lifetime and inactivity-day overrides under the server's password
// policy. The server reads one policy per user: the entry its
// pwdPolicySubentry names, else the default policy, and a user's own policy
// replaces the default completely. An override is therefore a per-user
// policy: the user's policy as it was, copied with pwdMaxAge or pwdMaxIdle
// changed, kept below the [[ldap]] table's `policy_base`. Copies are named
// by their content, so every user with the same policy and the same days
// shares one entry. The policy the user had before (none: the default) is
// kept in our own attribute kvlxrPreviousPolicy, so that removing the last
// override gives it back. Nothing here talks to the server (see
// ldap_store.cc).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config.h"
#include "status.h"
#include "store.h"

namespace lxrapi {

// Our attribute beside the user that remembers the policy before the
// override.
constexpr const char* kPreviousPolicy = "kvlxrPreviousPolicy";

// True for the fields an override keeps: kvlxrExpirePasswordDays (pwdMaxAge)
// and kvlxrAccountInactivityDays (pwdMaxIdle).
bool IsOverrideField(std::string_view attribute);

// The policies of a user as read: `overridden` when the user's
// pwdPolicySubentry is one of our copies below `policy_base`; `previous` is
// the user's own policy apart from the override ("" none: the default);
// `base` the policy an override is copied from.
struct UserPolicies {
    bool overridden = false;
    std::string subentry;
    std::string previous;
    std::string base;
};
UserPolicies PoliciesOf(const Entry& user, const LdapConfig& config);

// One override field as the write leaves it: `seconds` < 0 when the field
// has no override (the base policy's value holds).
struct OverrideValue {
    const char* field;
    long seconds = -1;
};

// The days of an override field's value ("30 comment"), in seconds; -1 for
// an empty value (no override), kTooManyDays beyond kMostDays: a policy's
// seconds are kept within 32 bits, a size every server reads alike.
constexpr long kTooManyDays = -2;
constexpr long kMostDays = 24855;
long OverrideSeconds(const std::string& value);

// The value of every override field after a write that has set the
// attributes `posted` so far: a posted field's from `user` (the write's view
// of the entry, our attributes), another's from `current` (the user's
// per-user policy as read, null when there is none) when `user` still keeps
// an override of it there.
std::vector<OverrideValue> OverridesAfter(const Entry& user, const Entry* current, bool overridden,
                                          const std::vector<std::string>& posted);

// The per-user policy: the pwd attributes of `base` (the policy entry
// `baseDn`) with the overrides set, named by its content below
// `policyBase`. Fails with kUpdateFailed when `base` has pwdMinDelay: such a
// policy stops slapd 2.5.13 at the first failed login, so no copy of it is
// written (`field` names the posted field in the message).
Status CopyPolicy(const Entry& base, std::string_view baseDn,
                  const std::vector<OverrideValue>& overrides, std::string_view policyBase,
                  std::string_view field, Entry* copy);

// True when two policy entries set the same pwd attributes to the same
// values (an existing copy may be reused).
bool SamePolicy(const Entry& a, const Entry& b);

// Replaces the override fields of `entry` (read with the server's
// attributes) by what the server applies: the days of `policy`, the user's
// per-user policy (null: none, so no override is shown), with the comment
// kept in our attribute when its days still match.
void ShowOverrides(const Entry* policy, Entry* entry);

}  // namespace lxrapi
