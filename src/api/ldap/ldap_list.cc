#include "ldap/ldap_list.h"

#include "clock.h"
#include "ldap/ldap_text.h"

namespace lxrapi {

namespace {

// A generalized time the server's ordering rule compares as a time.
std::string Time(std::time_t when) {
    return FormatStamp(when);
}

Status NameFilter(const ListQuery& query, std::string* filter) {
    if (query.start.empty()) {
        *filter = "(objectClass=*)";
        return Status::OK();
    }
    std::string escaped;
    if (!EscapeFilterValue(query.start, &escaped))
        return Status::BadRequest("The name cannot stand in a search filter");
    std::string any;
    for (const std::string& a : query.naming) {
        if (!IsAttributeDescription(a))
            return Status::BadRequest("The naming attribute " + a +
                                      " cannot stand in a search filter");
        any += "(" + a + "=" + escaped + "*)";
    }
    if (query.naming.empty()) return Status::BadRequest("The directory names no naming attribute");
    *filter = query.naming.size() == 1 ? any : "(|" + any + ")";
    return Status::OK();
}

}  // namespace

Status ListFilter(const ListQuery& query, bool serverPolicy, std::string* filter) {
    // Idle: the last login lies before this moment, or there is none and a
    // base date (which the rules compare in full) stands in for it.
    std::string idleSince = Time(query.now - query.days * 86400);
    switch (query.kind) {
        case ListKind::kSearch:
            return NameFilter(query, filter);
        case ListKind::kDisabled:
            *filter = "(objectClass=*)";
            break;
        case ListKind::kLocked:
            *filter = serverPolicy ? "(|(pwdAccountLockedTime=*)(pwdFailureTime=*))"
                                   : "(|(kvlxrFailureCount=*)(kvfpsLockoutCounter=*))";
            break;
        case ListKind::kExpired:
        case ListKind::kExpiring:
            // The lifetime may be the user's own (a policy of its own, or a
            // per-user number of days), so every changed password is a
            // candidate.
            *filter = serverPolicy ? "(pwdChangedTime=*)" : "(kvlxrLastPasswordChange=*)";
            break;
        case ListKind::kIdle:
            *filter = serverPolicy ? "(|(pwdLastSuccess<=" + idleSince +
                                         ")(&(kvlxrBaseDate=*)(!(pwdLastSuccess=*))))"
                                   : "(|(kvlxrLastLogin=*)(kvlxrBaseDate=*))";
            break;
        case ListKind::kMustChange:
            *filter = serverPolicy ? "(pwdReset=TRUE)" : "(kvlxrImmediateChange=*)";
            break;
    }
    return Status::OK();
}

}  // namespace lxrapi
