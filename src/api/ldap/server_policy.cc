#include "ldap/server_policy.h"

#include <cstdio>
#include <cstdlib>

#include "clock.h"
#include "text.h"

namespace lxrapi {

namespace {

// The disabled reasons the server's own state gives, kept together so that
// each can become one catalogue entry. None holds a comma (the page breaks
// the list at commas) nor a quotation mark.

// Times the server stores from 21060206062816Z on are beyond its clock and
// never take effect.
constexpr std::time_t kServerTimeLimit = 4294967295;

int Number(std::string_view digits) {
    int n = 0;
    for (char c : digits) n = n * 10 + (c - '0');
    return n;
}

long Long(const Entry& e, const char* attribute) {
    std::string v = e.First(attribute);
    return AllDigits(v) && !v.empty() && v.size() < 10 ? std::strtol(v.c_str(), nullptr, 10) : 0;
}

bool True(const Entry& e, const char* attribute) {
    return e.First(attribute) == "TRUE";
}

// The words after the first one of `value`: the comment beside a date.
std::string CommentOf(const std::string& value) {
    size_t start = value.find_first_not_of(" \t");
    if (start == std::string::npos) return {};
    size_t end = value.find_first_of(" \t", start);
    if (end == std::string::npos) return {};
    size_t comment = value.find_first_not_of(" \t", end);
    return comment == std::string::npos ? std::string() : value.substr(comment);
}

std::string FirstWord(const std::string& value) {
    std::vector<std::string_view> words = Words(value);
    return words.empty() ? std::string() : std::string(words[0]);
}

// The page's stamp for a server time; "" when it cannot be read.
std::string StampOf(const std::string& generalized) {
    std::time_t when = 0;
    return ParseGeneralizedTime(generalized, &when) ? FormatStamp(when) : std::string();
}

// "STAMP COMMENT", or the stamp alone.
std::string WithComment(const std::string& stamp, const std::string& comment) {
    return comment.empty() ? stamp : stamp + " " + comment;
}

// `count` distinct server times at `when`, as the server writes them
// (microseconds), for counts set by hand.
std::vector<std::string> Times(long count, std::time_t when) {
    std::vector<std::string> times;
    std::string stamp = FormatStamp(when);
    for (long i = 0; i < count; ++i) {
        char fraction[32];
        std::snprintf(fraction, sizeof fraction, ".%06ldZ", i);
        times.push_back(stamp.substr(0, 14) + fraction);
    }
    return times;
}

// The newest of a set of server times, and their count.
std::string Newest(const std::vector<std::string>& times) {
    std::string newest;
    std::time_t best = 0, when = 0;
    for (const std::string& t : times)
        if (ParseGeneralizedTime(t, &when) && (newest.empty() || when >= best))
            best = when, newest = FormatStamp(when);
    return newest;
}

bool LockedForever(const Entry& raw) {
    return raw.First("pwdAccountLockedTime") == kLockedForever;
}

}  // namespace

const std::vector<std::string>& ServerPolicyAttributes() {
    static const std::vector<std::string> names = {"pwdAccountLockedTime",
                                                   "pwdFailureTime",
                                                   "pwdStartTime",
                                                   "pwdEndTime",
                                                   "pwdReset",
                                                   "pwdGraceUseTime",
                                                   "pwdLastSuccess",
                                                   "pwdChangedTime",
                                                   "pwdPolicySubentry",
                                                   "pwdHistory"};
    return names;
}

bool ParseGeneralizedTime(std::string_view text, std::time_t* when) {
    size_t digits = 0;
    while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') ++digits;
    if (digits != 10 && digits != 12 && digits != 14) return false;
    std::string stamp(text.substr(0, digits));
    stamp.append(14 - digits, '0');
    std::string_view rest = text.substr(digits);
    if (!rest.empty() && (rest[0] == '.' || rest[0] == ',')) {
        size_t end = 1;
        while (end < rest.size() && rest[end] >= '0' && rest[end] <= '9') ++end;
        if (end == 1) return false;
        rest = rest.substr(end);
    }
    long offset = 0;
    if (rest == "Z") {
        offset = 0;
    } else if ((rest.size() == 3 || rest.size() == 5) && (rest[0] == '+' || rest[0] == '-') &&
               AllDigits(rest.substr(1))) {
        int hours = Number(rest.substr(1, 2)),
            minutes = rest.size() == 5 ? Number(rest.substr(3)) : 0;
        if (hours > 23 || minutes > 59) return false;
        offset = (rest[0] == '+' ? 1 : -1) * (hours * 3600L + minutes * 60L);
    } else {
        return false;
    }
    if (!ParseStamp(stamp + "Z", when)) return false;
    *when -= offset;
    return true;
}

ServerPolicy ReadServerPolicy(const Entry* policy, std::string_view dn) {
    ServerPolicy p;
    p.dn = std::string(dn);
    if (!policy) return p;
    p.found = true;
    p.maxFailure = static_cast<int>(Long(*policy, "pwdMaxFailure"));
    p.lockout = True(*policy, "pwdLockout");
    p.lockoutDuration = Long(*policy, "pwdLockoutDuration");
    p.maxAge = Long(*policy, "pwdMaxAge");
    p.maxIdle = Long(*policy, "pwdMaxIdle");
    p.graceLimit = static_cast<int>(Long(*policy, "pwdGraceAuthNLimit"));
    p.mustChange = True(*policy, "pwdMustChange");
    return p;
}

bool KeptByServer(std::string_view attribute) {
    static const char* const kNames[] = {
        "kvlxrFailureCount",       "kvlxrDisableUntil",    "kvlxrDisableAfter",
        "kvlxrImmediateChange",    "kvlxrGraceLoginsUsed", "kvlxrLastLogin",
        "kvlxrLastPasswordChange", "kvlxrLoginHistory",    "userPassword"};
    for (const char* n : kNames)
        if (EqualsNoCase(attribute, n)) return true;
    return false;
}

void ShowServerState(const std::vector<Entry>& history, Entry* entry) {
    const Entry raw = *entry;
    std::vector<std::string> failures = raw.Values("pwdFailureTime");
    entry->Set("kvlxrFailureCount", failures.empty()
                                        ? std::vector<std::string>{}
                                        : std::vector<std::string>{std::to_string(failures.size()) +
                                                                   " " + Newest(failures)});

    // The comments live beside the server's values, in our own attributes.
    std::string until = raw.First("kvlxrDisableUntil"), start = StampOf(raw.First("pwdStartTime"));
    std::string untilComment = CommentOf(until);
    if (FirstWord(until) != "FOREVER" && FirstWord(until) != start) untilComment.clear();
    if (LockedForever(raw))
        entry->Set("kvlxrDisableUntil", {"FOREVER " + CommentOf(until)});
    else
        entry->Set("kvlxrDisableUntil",
                   start.empty() ? std::vector<std::string>{}
                                 : std::vector<std::string>{WithComment(start, untilComment)});

    std::string after = raw.First("kvlxrDisableAfter"), end = StampOf(raw.First("pwdEndTime"));
    entry->Set("kvlxrDisableAfter",
               end.empty() ? std::vector<std::string>{}
                           : std::vector<std::string>{WithComment(
                                 end, FirstWord(after) == end ? CommentOf(after) : "")});

    std::string flag = raw.First("kvlxrImmediateChange");
    entry->Set("kvlxrImmediateChange", True(raw, "pwdReset")
                                           ? std::vector<std::string>{flag.empty() ? "YES" : flag}
                                           : std::vector<std::string>{});

    size_t grace = raw.Values("pwdGraceUseTime").size();
    entry->Set("kvlxrGraceLoginsUsed", grace == 0
                                           ? std::vector<std::string>{}
                                           : std::vector<std::string>{std::to_string(grace)});

    std::string last = StampOf(raw.First("pwdLastSuccess"));
    entry->Set("kvlxrLastLogin",
               last.empty() ? std::vector<std::string>{} : std::vector<std::string>{last});
    std::string changed = StampOf(raw.First("pwdChangedTime"));
    entry->Set("kvlxrLastPasswordChange",
               changed.empty() ? std::vector<std::string>{} : std::vector<std::string>{changed});

    // The access log records no client address; the page's address word
    // says so.
    std::vector<std::string> records;
    for (const Entry& r : history) {
        std::string stamp = r.First("reqStart").substr(0, 14);
        if (stamp.size() != 14 || !AllDigits(stamp)) continue;
        std::string result = r.First("reqResult");
        records.push_back(stamp + "Z " + (result == "0" ? "SUCCESS" : "FAILED") + " not-recorded " +
                          (result == "0" ? "bind" : "bind-result-" + result));
    }
    entry->Set("kvlxrLoginHistory", records);
}

Status MapServerWrite(const Entry& raw, std::string_view attribute,
                      const std::vector<std::string>& values, std::time_t now, ServerWrite* write) {
    *write = ServerWrite();
    std::string value = values.empty() ? std::string() : std::string(Trim(values[0]));
    std::string first = FirstWord(value);
    std::time_t when = 0;
    bool stamp = ParseStamp(first, &when);
    auto set = [&](const char* name, std::vector<std::string> v) {
        write->set.push_back({name, std::move(v)});
    };
    auto unlockForever = [&] {
        if (LockedForever(raw)) set("pwdAccountLockedTime", {});
    };
    auto keep = [&](const char* name) {
        set(name, value.empty() ? std::vector<std::string>{} : std::vector<std::string>{value});
    };

    if (EqualsNoCase(attribute, "userPassword")) {
        write->password = true;
    } else if (EqualsNoCase(attribute, "kvlxrDisableUntil")) {
        if (first == "FOREVER") {
            set("pwdAccountLockedTime", {kLockedForever});
            set("pwdStartTime", {});
        } else {
            set("pwdStartTime",
                stamp ? std::vector<std::string>{FormatStamp(when)} : std::vector<std::string>{});
            unlockForever();
        }
        keep("kvlxrDisableUntil");
    } else if (EqualsNoCase(attribute, "kvlxrDisableAfter")) {
        set("pwdEndTime",
            stamp ? std::vector<std::string>{FormatStamp(when)} : std::vector<std::string>{});
        keep("kvlxrDisableAfter");
    } else if (EqualsNoCase(attribute, "kvlxrImmediateChange")) {
        set("pwdReset",
            value.empty() ? std::vector<std::string>{} : std::vector<std::string>{"TRUE"});
        keep("kvlxrImmediateChange");
    } else if (EqualsNoCase(attribute, "kvlxrFailureCount") ||
               EqualsNoCase(attribute, "kvlxrGraceLoginsUsed")) {
        bool failures = EqualsNoCase(attribute, "kvlxrFailureCount");
        long count = AllDigits(first) && !first.empty() && first.size() < 4
                         ? std::strtol(first.c_str(), nullptr, 10)
                         : 0;
        std::vector<std::string> words;
        for (std::string_view w : Words(value)) words.emplace_back(w);
        std::time_t at = now;
        if (words.size() > 1) ParseStamp(words[1], &at);
        set(failures ? "pwdFailureTime" : "pwdGraceUseTime", Times(count, at));
        // Removing the failures lifts the lock they caused, not an
        // administrator's.
        if (failures && count == 0 && raw.Find("pwdAccountLockedTime") && !LockedForever(raw))
            set("pwdAccountLockedTime", {});
    } else if (EqualsNoCase(attribute, "kvlxrLoginHistory")) {
        bool any = false;
        for (const std::string& v : values) any = any || !Trim(v).empty();
        if (any)
            return Status::BadRequest(
                "Attribute kvlxrLoginHistory: the server's access log keeps the login history; "
                "it can only be cleared");
        write->clearHistory = true;
    }
    // kvlxrLastLogin and kvlxrLastPasswordChange: set by the server alone.
    return Status::OK();
}

AccountState EvaluateServerAccount(const Entry& raw, const ServerPolicy& policy, std::time_t now) {
    AccountState state;
    std::time_t when = 0;
    auto readable = [](std::time_t t) { return FormatReadable(t); };
    auto at = [&](const char* attribute, std::time_t* t) {
        return ParseGeneralizedTime(raw.First(attribute), t) && *t < kServerTimeLimit;
    };

    std::string locked = raw.First("pwdAccountLockedTime");
    if (policy.lockout && locked == kLockedForever) {
        state.reasons.push_back(Words(Say::LockedByAdministrator));
    } else if (policy.lockout && at("pwdAccountLockedTime", &when) && when <= now) {
        std::string failures = std::to_string(raw.Values("pwdFailureTime").size());
        if (policy.lockoutDuration == 0)
            state.reasons.push_back(Words(Say::LockedByFailures, failures));
        else if (when + policy.lockoutDuration > now)
            state.reasons.push_back(Words(Say::LockedByFailuresUntil, failures,
                                          readable(when + policy.lockoutDuration)));
        state.redisable.insert("kvlxrfailurecount");
    }

    if (at("pwdStartTime", &when) && when > now)
        state.reasons.push_back(Words(Say::NotYetValid, readable(when)));
    if (at("pwdEndTime", &when) && when <= now) {
        state.reasons.push_back(Words(Say::NoLongerValid, readable(when)));
        state.redisable.insert("kvlxrdisableafter");
    }

    if (policy.maxAge > 0 && at("pwdChangedTime", &when) && when + policy.maxAge < now) {
        long left = policy.graceLimit - static_cast<long>(raw.Values("pwdGraceUseTime").size());
        std::string expired = readable(when + policy.maxAge);
        state.reasons.push_back(left > 0
                                    ? Words(Say::ExpiredGraceLeft, expired, std::to_string(left))
                                    : Words(Say::ExpiredNoGrace, expired));
        state.redisable.insert("kvlxrlastpasswordchange");
        state.redisable.insert("kvlxrgraceloginsused");
    }

    // The idle limit counts from the last login, else from the last change.
    if (policy.maxIdle > 0 && policy.lockout &&
        (at("pwdLastSuccess", &when) || at("pwdChangedTime", &when)) && when + policy.maxIdle < now)
        state.reasons.push_back(Words(Say::IdleSince, readable(when)));

    if (policy.mustChange && True(raw, "pwdReset")) {
        state.reasons.push_back(Words(Say::MustChangePassword));
        state.redisable.insert("kvlxrimmediatechange");
    }
    return state;
}

}  // namespace lxrapi
