#include "user_list.h"

#include <cstdlib>
#include <vector>

#include "access.h"
#include "account_state.h"
#include "attributes.h"
#include "clock.h"
#include "list_request.h"
#include "message.h"
#include "page_text.h"
#include "text.h"

namespace lxrapi {

namespace {

struct Row {
    std::string text;  // the User element and its line end
    std::string position;
};

// Why the user cannot log in at `now`, as the user's page would say it.
Status StateAt(StoreReader& r, const Config& config, const DirectoryConfig& d, const Entry& user,
               std::time_t now, AccountState* state) {
    std::vector<GroupMembership> groups;
    for (const GroupConfig& g : d.groups) {
        bool member = false;
        Status s = r.IsMember(g.dn, user.dn, &member);
        if (!s.ok()) return s;
        groups.push_back({&g, member});
    }
    AccountState server;
    bool enforced = false;
    Status s = r.ServerAccountState(user, now, &server, &enforced);
    if (!s.ok()) return s;
    *state = enforced ? WithGroupReasons(std::move(server), groups)
                      : EvaluateAccount(user, config.policy, groups, now);
    return Status::OK();
}

bool AnyReason(const AccountState& state, bool (*test)(const Text&)) {
    for (const Text& t : state.reasons)
        if (test(t)) return true;
    return false;
}

bool NameStarts(const Entry& user, const DirectoryConfig& d, std::string_view start) {
    std::string prefix = Lower(start);
    for (const std::string& attribute : d.naming)
        for (const std::string& v : user.Values(attribute))
            if (Lower(v).compare(0, prefix.size(), prefix) == 0) return true;
    return false;
}

Status OnList(StoreReader& r, const Config& config, const DirectoryConfig& d,
              const ListRequest& request, const Entry& user, std::time_t now,
              const AccountState& state, bool* on) {
    switch (request.kind) {
        case ListKind::kLocked:
            *on = AnyReason(state, IsLockout);
            return Status::OK();
        case ListKind::kDisabled:
            *on = !state.reasons.empty();
            return Status::OK();
        case ListKind::kExpired:
            *on = AnyReason(state, IsPasswordExpiry);
            return Status::OK();
        case ListKind::kExpiring: {
            *on = false;
            if (AnyReason(state, IsPasswordExpiry)) return Status::OK();
            AccountState later;
            Status s = StateAt(r, config, d, user, now + request.days * 86400, &later);
            *on = s.ok() && AnyReason(later, IsPasswordExpiry);
            return s;
        }
        case ListKind::kIdle: {
            std::time_t since = 0;
            *on = LastActivity(user, &since) && since + request.days * 86400 < now;
            return Status::OK();
        }
        case ListKind::kMustChange:
            *on = MustChangePassword(user);
            return Status::OK();
        case ListKind::kSearch:
            *on = NameStarts(user, d, request.start);
            return Status::OK();
    }
    return Status::OK();
}

void AddAttribute(std::string& out, const char* name, std::string_view value) {
    out += ' ';
    out += name;
    out += "=\"";
    out += NeutraliseForPages(value);
    out += '"';
}

std::string UserElement(const DirectoryConfig& d, const Entry& user, const AccountState& state,
                        const Translator& words) {
    std::string name;
    for (const std::string& attribute : d.naming)
        if (name.empty()) name = user.First(attribute);
    std::string lastLogin;
    std::time_t when = 0;
    std::string loginValue = user.First("kvlxrLastLogin");
    std::vector<std::string_view> login = Words(loginValue);
    if (!login.empty() && ParseStamp(login[0], &when)) lastLogin = FormatReadable(when);
    std::string count = "0";
    std::string failures = user.First("kvlxrFailureCount");
    std::vector<std::string_view> first = Words(failures);
    if (!first.empty() && AllDigits(first[0]) && first[0].size() <= 9)
        count = std::to_string(std::strtol(std::string(first[0]).c_str(), nullptr, 10));

    std::string out = "<User";
    AddAttribute(out, "name", name.empty() ? user.dn : name);
    AddAttribute(out, "dn", user.dn);
    AddAttribute(out, "userPath", d.id + "/" + user.dn);
    AddAttribute(out, "lastLogin", lastLogin);
    AddAttribute(out, "failures", count);
    out += '>';
    for (const Text& reason : state.reasons) {
        out += "<Reason>";
        out += NeutraliseForPages(words(reason));
        out += "</Reason>";
    }
    out += "</User>\n";
    return out;
}

std::string Writable(const Role& role) {
    std::string out;
    for (const AttributeInfo& info : AttributeTable()) {
        if (!MayWrite(role, info.name)) continue;
        if (!out.empty()) out += ' ';
        out += info.name;
    }
    return out;
}

std::string Head(const ListRequest& request, std::string_view continuation,
                 const std::string& writable) {
    std::string out = "<UserList";
    AddAttribute(out, "directory", request.directory);
    AddAttribute(out, "list", request.listName);
    AddAttribute(out, "continuation", continuation);
    AddAttribute(out, "writable", writable);
    return out + ">\n";
}

constexpr std::string_view kTail = "</UserList>\n";

// The rows that fit into `room` with the head their continuation gives.
Status Fit(const ListRequest& request, const std::string& writable, const std::vector<Row>& rows,
           bool more, size_t room, std::string* reply, int* count) {
    size_t body = 0, fit = 0;
    for (size_t k = 1; k <= rows.size(); ++k) {
        body += rows[k - 1].text.size();
        bool cut = k < rows.size() || more;
        std::string cont = cut ? MakeContinuation(request, rows[k - 1].position) : "";
        if (Head(request, cont, writable).size() + body + kTail.size() > room) break;
        fit = k;
    }
    if (fit == 0 && !rows.empty())
        return Status(kBufferTooSmall, Words(Say::ReplyTooLarge,
                                             std::to_string(Head(request, "", writable).size() +
                                                            rows[0].text.size() + kTail.size() + 1),
                                             std::to_string(room + 1)));
    bool cut = fit < rows.size() || more;
    std::string out =
        Head(request, cut ? MakeContinuation(request, rows[fit - 1].position) : "", writable);
    if (out.size() + kTail.size() > room)
        return Status(kBufferTooSmall,
                      Words(Say::ReplyTooLarge, std::to_string(out.size() + kTail.size() + 1),
                            std::to_string(room + 1)));
    for (size_t k = 0; k < fit; ++k) out += rows[k].text;
    out += kTail;
    *reply = std::move(out);
    *count = static_cast<int>(fit);
    return Status::OK();
}

}  // namespace

Status ListUsers(const Config& config, StoreProvider& stores, std::string_view identity,
                 std::string_view administratorPath, std::string_view requestText, size_t room,
                 std::string* reply, int* userCount, const Translator& words) {
    const Role* role = nullptr;
    std::string adminDn;
    Status s = FindRole(config, identity, &role);
    if (s.ok()) s = CheckAdministrator(config, stores, *role, administratorPath, &adminDn);
    if (!s.ok()) return s;
    ListRequest request;
    if (!(s = ParseListRequest(requestText, &request)).ok()) return s;
    const DirectoryConfig* d = config.FindDirectory(request.directory);
    if (!d || !MaySeeDirectory(*role, *d))
        return Status::AccessDenied(
            Words(Say::DirectoryNotOpen, Quoted(request.directory, 100), Quoted(role->name)));
    Store* store = nullptr;
    if (!(s = stores.Open(d->store, &store)).ok()) return s;

    ListQuery query;
    query.kind = request.kind;
    query.base = d->base;
    query.naming = d->naming;
    query.start = request.start;
    query.now = Now();
    query.days = request.days;
    query.maxFailures = config.policy.maxFailures;
    query.passwordExpireDays = config.policy.passwordExpireDays;

    std::vector<Row> rows;
    bool more = false;
    s = store->Read([&](StoreReader& r) {
        Status inner;
        Status st = r.ListUsers(
            query, request.position, [&](const Entry& user, const std::string& position) {
                AccountState state;
                bool on = false;
                inner = StateAt(r, config, *d, user, query.now, &state);
                if (inner.ok()) inner = OnList(r, config, *d, request, user, query.now, state, &on);
                if (!inner.ok()) return false;
                if (!on) return true;
                if (rows.size() == static_cast<size_t>(request.size)) {
                    more = true;
                    return false;
                }
                rows.push_back({UserElement(*d, user, state, words), position});
                return true;
            });
        return st.ok() ? inner : st;
    });
    if (!s.ok()) return s;
    return Fit(request, Writable(*role), rows, more, room, reply, userCount);
}

}  // namespace lxrapi
