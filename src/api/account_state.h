// Why a user cannot log in now, and which stored values would lock the user
// out again at the next login even after the present reason is lifted.
#pragma once

#include <ctime>
#include <set>
#include <string>
#include <vector>

#include "config.h"
#include "store.h"
#include "translation.h"

namespace lxrapi {

struct GroupMembership {
    const GroupConfig* group;
    bool member;
};

struct AccountState {
    // Each reason to be shown to the administrator; none holds a comma (the
    // page breaks the list at commas) nor a quotation mark, in any language.
    std::vector<Text> reasons;
    // Lower-case names of the attributes whose value would disable again.
    std::set<std::string> redisable;

    // The reasons in the administrator's language, joined by ",".
    std::string DisabledText(const Translator& words = Translator()) const;
};

AccountState EvaluateAccount(const Entry& user, const Policy& policy,
                             const std::vector<GroupMembership>& groups, std::time_t now);

// What the lists of users ask of the reasons and values above, so that a
// list always agrees with the reasons a user's page shows.
// A lockout after failed logins, or an administrator's lock on the server.
bool IsLockout(const Text& reason);
// The password has expired (with or without grace logins left).
bool IsPasswordExpiry(const Text& reason);
// When the inactivity rule counts the user's idle time from: the later of the
// last login and the base date; false when neither is stored. `fromBase`
// (optional) tells whether a base date is stored.
bool LastActivity(const Entry& user, std::time_t* since, bool* fromBase = nullptr);
// True when the user must change the password at the next login.
bool MustChangePassword(const Entry& user);

// `state` with the reasons of the disabling groups the user is a member of.
AccountState WithGroupReasons(AccountState state, const std::vector<GroupMembership>& groups);

}  // namespace lxrapi
