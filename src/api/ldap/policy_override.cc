#include "ldap/policy_override.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "ldap/server_policy.h"
#include "message.h"
#include "text.h"
#include "translation.h"

namespace lxrapi {

namespace {

constexpr long kDay = 86400;

struct Field {
    const char* attribute;  // ours, "days comment"
    const char* policy;     // the policy's, in seconds
};

constexpr Field kFields[] = {{"kvlxrExpirePasswordDays", "pwdMaxAge"},
                             {"kvlxrAccountInactivityDays", "pwdMaxIdle"}};

const char* PolicyAttributeOf(std::string_view field) {
    for (const Field& f : kFields)
        if (EqualsNoCase(f.attribute, field)) return f.policy;
    return nullptr;
}

std::string DaysWord(const std::string& value) {
    std::string_view rest = value;
    rest = Trim(rest);
    std::string_view word = TakeWord(rest);
    return AllDigits(word) ? std::string(word) : std::string();
}

long Seconds(const Entry& policy, const char* attribute) {
    std::string v = policy.First(attribute);
    return AllDigits(v) && !v.empty() && v.size() < 10 ? std::strtol(v.c_str(), nullptr, 10) : 0;
}

// The policy's own attributes (those the overlay reads from a policy), not
// the user-state ones that a search for operational attributes may bring.
bool IsPolicyAttribute(std::string_view name) {
    if (name.size() < 3 || !EqualsNoCase(name.substr(0, 3), "pwd")) return false;
    for (const std::string& a : ServerPolicyAttributes())
        if (EqualsNoCase(a, name)) return false;
    return true;
}

// "name:value" lines of the policy's attributes, sorted: equal for two
// entries that the server applies alike.
std::vector<std::string> Content(const Entry& policy) {
    std::vector<std::string> lines;
    for (const EntryAttribute& a : policy.attributes)
        if (IsPolicyAttribute(a.name))
            for (const std::string& v : a.values) lines.push_back(Lower(a.name) + ":" + v);
    std::sort(lines.begin(), lines.end());
    return lines;
}

// A stable name for a content: 64-bit FNV-1a of its lines, in hex. Equal
// contents give one name on every host and in every release; a different
// content under a taken name is caught by comparing (SamePolicy).
std::string NameOf(const std::vector<std::string>& lines) {
    unsigned long long h = 14695981039346656037ULL;
    for (const std::string& line : lines) {
        for (unsigned char c : line) h = (h ^ c) * 1099511628211ULL;
        h = (h ^ '\n') * 1099511628211ULL;
    }
    char hex[17];
    std::snprintf(hex, sizeof hex, "%016llx", h);
    return std::string("lxr-") + hex;
}

}  // namespace

bool IsOverrideField(std::string_view attribute) {
    return PolicyAttributeOf(attribute) != nullptr;
}

UserPolicies PoliciesOf(const Entry& user, const LdapConfig& config) {
    UserPolicies p;
    p.subentry = user.First("pwdPolicySubentry");
    p.overridden =
        !config.policyBase.empty() && !p.subentry.empty() && IsBelow(p.subentry, config.policyBase);
    p.previous = p.overridden ? user.First(kPreviousPolicy) : p.subentry;
    p.base = p.previous.empty() ? config.defaultPolicy : p.previous;
    return p;
}

long OverrideSeconds(const std::string& value) {
    std::string days = DaysWord(value);
    if (days.empty()) return -1;
    long n = days.size() > 6 ? kMostDays + 1 : std::strtol(days.c_str(), nullptr, 10);
    return n > kMostDays ? kTooManyDays : n * kDay;
}

std::vector<OverrideValue> OverridesAfter(const Entry& user, const Entry* current, bool overridden,
                                          const std::vector<std::string>& posted) {
    std::vector<OverrideValue> after;
    for (const Field& f : kFields) {
        OverrideValue v{f.attribute};
        bool isPosted = false;
        for (const std::string& p : posted) isPosted = isPosted || EqualsNoCase(p, f.attribute);
        if (isPosted)
            v.seconds = OverrideSeconds(user.First(f.attribute));
        else if (overridden && current && !DaysWord(user.First(f.attribute)).empty())
            v.seconds = Seconds(*current, f.policy);
        after.push_back(v);
    }
    return after;
}

Status CopyPolicy(const Entry& base, std::string_view baseDn,
                  const std::vector<OverrideValue>& overrides, std::string_view policyBase,
                  std::string_view field, Entry* copy) {
    if (base.Find("pwdMinDelay"))
        return Status::UpdateFailed(
            Words(Say::PolicyHasMinDelay, std::string(field), Quoted(baseDn, 200)));
    Entry policy;
    for (const EntryAttribute& a : base.attributes)
        if (IsPolicyAttribute(a.name)) policy.attributes.push_back(a);
    for (const OverrideValue& o : overrides)
        if (o.seconds >= 0) policy.Set(PolicyAttributeOf(o.field), {std::to_string(o.seconds)});
    if (!policy.Find("pwdAttribute")) policy.Set("pwdAttribute", {"userPassword"});
    std::string name = NameOf(Content(policy));
    policy.dn = "cn=" + name + "," + std::string(policyBase);
    policy.attributes.insert(policy.attributes.begin(),
                             {{"objectClass", {"namedPolicy", "pwdPolicy"}},
                              {"cn", {name}},
                              {"description", {"Per-user password policy written by LXRAdmin"}}});
    *copy = std::move(policy);
    return Status::OK();
}

bool SamePolicy(const Entry& a, const Entry& b) {
    return Content(a) == Content(b);
}

void ShowOverrides(const Entry* policy, Entry* entry) {
    for (const Field& f : kFields) {
        std::string stored = entry->First(f.attribute);
        std::string word = DaysWord(stored);
        if (!policy || word.empty()) {
            entry->Set(f.attribute, {});
            continue;
        }
        std::string days = std::to_string(Seconds(*policy, f.policy) / kDay);
        std::string_view rest = Trim(stored);
        TakeWord(rest);
        entry->Set(f.attribute,
                   {word == days && !rest.empty() ? days + " " + std::string(rest) : days});
    }
}

}  // namespace lxrapi
