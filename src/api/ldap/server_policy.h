// The password-services fields that an OpenLDAP server with its password
// policy overlay keeps and enforces at every bind: how they are read from the
// server's own attributes into the values the pages know, how a posted value
// becomes a change of those attributes, and why the server would refuse the
// user's next login. Nothing here talks to the server (see ldap_store.cc).
#pragma once

#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "account_state.h"
#include "status.h"
#include "store.h"

namespace lxrapi {

// The value of pwdAccountLockedTime that locks until an administrator unlocks.
constexpr const char* kLockedForever = "000001010000Z";

// The most access log records one user's login history reads.
constexpr int kMaxLogRecords = 1000;

// The server's attributes the user's entry is read with.
const std::vector<std::string>& ServerPolicyAttributes();

// A generalized time as the server stores it: YYYYMMDDhh[mm[ss]], an
// optional fraction, then "Z" or an offset (+hh or +hhmm).
bool ParseGeneralizedTime(std::string_view text, std::time_t* when);

// The policy in effect for a user (a pwdPolicy entry).
struct ServerPolicy {
    bool found = false;  // false: the DN names no entry, so no policy applies
    std::string dn;
    int maxFailure = 0;
    bool lockout = false;
    long lockoutDuration = 0;  // seconds; 0: until an administrator unlocks
    long maxAge = 0;           // seconds; 0: passwords do not expire
    long maxIdle = 0;          // seconds; 0: no idle limit
    int graceLimit = 0;
    bool mustChange = false;
};

ServerPolicy ReadServerPolicy(const Entry* policy, std::string_view dn);

// True for the fields whose value the server holds (or that are kept only
// beside a server value, as a comment).
bool KeptByServer(std::string_view attribute);

// Replaces the fields the server keeps in `entry` (read with
// ServerPolicyAttributes) by the values its own attributes give, in the forms
// the pages know; `history` are the user's access log records, newest first.
void ShowServerState(const std::vector<Entry>& history, Entry* entry);

// The effect on the server's attributes of writing `values` to a field the
// server keeps.
struct ServerWrite {
    std::vector<EntryAttribute> set;  // attributes to replace (no values: remove)
    bool password = false;            // a new password, set by the password operation
    bool clearHistory = false;        // delete the user's access log records
};

// Fails with kBadRequest for values the server cannot hold (a login history
// can only be cleared). Fields the server sets itself (last login, last
// password change) give no change.
Status MapServerWrite(const Entry& raw, std::string_view attribute,
                      const std::vector<std::string>& values, std::time_t now, ServerWrite* write);

// Why the server refuses (or restricts) the user's next login, with the
// fields that would refuse it again.
AccountState EvaluateServerAccount(const Entry& raw, const ServerPolicy& policy, std::time_t now);

}  // namespace lxrapi
