#include "account_state.h"

#include <algorithm>
#include <cstdlib>

#include "clock.h"
#include "text.h"

namespace lxrapi {

std::string AccountState::DisabledText(const Translator& words) const {
    std::string text;
    for (const Text& r : reasons) {
        if (!text.empty()) text += ",";
        text += words(r);
    }
    return text;
}

namespace {

// The stamp in word `index` (from 0) of the attribute's first value.
bool StampOf(const Entry& user, const char* attribute, size_t index, std::time_t* when) {
    std::string value = user.First(attribute);
    std::vector<std::string_view> words = Words(value);
    return words.size() > index && ParseStamp(words[index], when);
}

// The leading count of the first value, or -1.
long CountOf(const Entry& user, const char* attribute) {
    std::string value = user.First(attribute);
    std::vector<std::string_view> words = Words(value);
    if (words.empty() || !AllDigits(words[0]) || words[0].size() > 9) return -1;
    return std::strtol(std::string(words[0]).c_str(), nullptr, 10);
}

// A per-user days override when present, else the policy's default.
long DaysOf(const Entry& user, const char* attribute, int policyDays) {
    long days = CountOf(user, attribute);
    return days >= 0 ? days : policyDays;
}

void CheckFailures(const Entry& user, const char* attribute, Say reached, int max,
                   AccountState* state) {
    long count = CountOf(user, attribute);
    if (max <= 0 || count < max) return;
    state->reasons.push_back(Words(reached, std::to_string(count), std::to_string(max)));
    state->redisable.insert(Lower(attribute));
}

}  // namespace

AccountState EvaluateAccount(const Entry& user, const Policy& policy,
                             const std::vector<GroupMembership>& groups, std::time_t now) {
    AccountState state;
    std::time_t when = 0;

    std::string untilValue = user.First("kvlxrDisableUntil");
    std::vector<std::string_view> until = Words(untilValue);
    if (!until.empty() && until[0] == "FOREVER")
        state.reasons.push_back(Words(Say::DisabledForever));
    else if (StampOf(user, "kvlxrDisableUntil", 0, &when) && when > now)
        state.reasons.push_back(Words(Say::DisabledUntil, FormatReadable(when)));

    if (StampOf(user, "kvlxrDisableAfter", 0, &when) && when < now) {
        state.reasons.push_back(Words(Say::DisabledAfter, FormatReadable(when)));
        state.redisable.insert("kvlxrdisableafter");
    }
    if (StampOf(user, "kvlxrMustLoginBy", 0, &when) && when < now) {
        state.reasons.push_back(Words(Say::NotLoggedInBy, FormatReadable(when)));
        state.redisable.insert("kvlxrmustloginby");
    }

    CheckFailures(user, "kvlxrFailureCount", Say::FailureCountReached, policy.maxFailures, &state);
    CheckFailures(user, "kvfpsLockoutCounter", Say::LockoutCounterReached, policy.maxFailures,
                  &state);

    long lifetime = DaysOf(user, "kvlxrExpirePasswordDays", policy.passwordExpireDays);
    if (lifetime > 0 && StampOf(user, "kvlxrLastPasswordChange", 0, &when) &&
        when + lifetime * 86400 < now) {
        state.reasons.push_back(
            Words(Say::PasswordExpired, FormatReadable(when + lifetime * 86400)));
        state.redisable.insert("kvlxrexpirepassworddays");
        state.redisable.insert("kvlxrlastpasswordchange");
    }

    long limit = DaysOf(user, "kvlxrAccountInactivityDays", policy.inactivityDays);
    std::time_t since = 0;
    bool haveBase = false;
    if (limit > 0 && LastActivity(user, &since, &haveBase)) {
        if (since + limit * 86400 < now) {
            state.reasons.push_back(Words(Say::InactiveSince, FormatReadable(since)));
            state.redisable.insert("kvlxraccountinactivitydays");
            // Only a stored base date can be reset to now from the page; an
            // unset one offers no control, so it carries no warning either.
            if (haveBase) state.redisable.insert("kvlxrbasedate");
        }
    }

    return WithGroupReasons(std::move(state), groups);
}

bool IsLockout(const Text& reason) {
    switch (reason.say) {
        case Say::FailureCountReached:
        case Say::LockoutCounterReached:
        case Say::LockedByAdministrator:
        case Say::LockedByFailures:
        case Say::LockedByFailuresUntil:
            return true;
        default:
            return false;
    }
}

bool IsPasswordExpiry(const Text& reason) {
    return reason.say == Say::PasswordExpired || reason.say == Say::ExpiredGraceLeft ||
           reason.say == Say::ExpiredNoGrace;
}

bool LastActivity(const Entry& user, std::time_t* since, bool* fromBase) {
    std::time_t last = 0, base = 0;
    bool haveLast = StampOf(user, "kvlxrLastLogin", 0, &last);
    bool haveBase = StampOf(user, "kvlxrBaseDate", 0, &base);
    if (fromBase) *fromBase = haveBase;
    *since = haveLast && haveBase ? std::max(last, base) : haveLast ? last : base;
    return haveLast || haveBase;
}

bool MustChangePassword(const Entry& user) {
    for (const std::string& v : user.Values("kvlxrImmediateChange"))
        if (!Trim(v).empty()) return true;
    return false;
}

AccountState WithGroupReasons(AccountState state, const std::vector<GroupMembership>& groups) {
    for (const GroupMembership& g : groups)
        if (g.member && !g.group->reason.empty())
            state.reasons.push_back(Words(Say::AsConfigured, g.group->reason));
    return state;
}

}  // namespace lxrapi
