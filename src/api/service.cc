#include "service.h"

#include "access.h"
#include "account_state.h"
#include "attributes.h"
#include "clock.h"
#include "documents.h"
#include "message.h"
#include "password.h"
#include "reply_fit.h"
#include "text.h"
#include "update_document.h"

namespace lxrapi {

namespace {

struct FoundUser {
    const DirectoryConfig* directory = nullptr;
    Entry entry;
    std::vector<bool> member;  // per configured group of the directory
    bool enforced = false;     // the server's own state gives the reasons
    AccountState serverState;
};

Status LoadMemberships(StoreReader& r, const DirectoryConfig& d, FoundUser* found) {
    found->member.assign(d.groups.size(), false);
    for (size_t i = 0; i < d.groups.size(); ++i) {
        bool m = false;
        Status s = r.IsMember(d.groups[i].dn, found->entry.dn, &m);
        if (!s.ok()) return s;
        found->member[i] = m;
    }
    return Status::OK();
}

// Looks `user` up in one directory; counts matches and keeps the single one.
Status SearchDirectory(StoreProvider& stores, const DirectoryConfig& d, std::string_view user,
                       size_t* matches, FoundUser* found) {
    Store* store = nullptr;
    Status s = stores.Open(d.store, &store);
    if (!s.ok()) return s;
    return store->Read([&](StoreReader& r) {
        std::vector<std::string> dns;
        Status st;
        if (IsBelow(user, d.base)) {
            dns.emplace_back(user);
        } else {
            st = r.FindByValue(d.base, d.naming, user, &dns);
            if (!st.ok()) return st;
        }
        size_t before = *matches;
        for (const std::string& dn : dns) {
            Entry e;
            bool exists = false;
            if (!(st = r.Get(dn, &e, &exists)).ok()) return st;
            if (!exists) continue;
            if (++*matches == 1) {
                found->directory = &d;
                found->entry = std::move(e);
            }
        }
        if (*matches != 1 || before != 0) return Status::OK();
        if (!(st = r.ServerAccountState(found->entry, Now(), &found->serverState, &found->enforced))
                 .ok())
            return st;
        return LoadMemberships(r, d, found);
    });
}

Status FindUser(const Config& config, StoreProvider& stores, const Role& role,
                std::string_view userPath, FoundUser* found) {
    size_t slash = userPath.find('/');
    std::string_view id =
        slash == std::string_view::npos ? std::string_view() : userPath.substr(0, slash);
    std::string_view user =
        Trim(slash == std::string_view::npos ? userPath : userPath.substr(slash + 1));
    if (user.empty()) return Status::UserUnreadable(Words(Say::NoUserNamed));
    std::vector<const DirectoryConfig*> candidates;
    if (id.empty()) {
        for (const DirectoryConfig& d : config.directories)
            if (MaySeeDirectory(role, d)) candidates.push_back(&d);
    } else {
        const DirectoryConfig* d = config.FindDirectory(id);
        if (!d || !MaySeeDirectory(role, *d))
            return Status::AccessDenied(
                Words(Say::DirectoryNotOpen, Quoted(id, 100), Quoted(role.name)));
        candidates.push_back(d);
    }
    size_t matches = 0;
    for (const DirectoryConfig* d : candidates) {
        Status s = SearchDirectory(stores, *d, user, &matches, found);
        if (!s.ok()) return s;
    }
    if (matches == 0) return Status::UserUnreadable(Words(Say::NoUserFound, Quoted(user, 200)));
    if (matches > 1)
        return Status::UserUnreadable(
            Words(Say::UsersMatch, std::to_string(matches), Quoted(user, 200)));
    if (found->entry.dn.find('"') != std::string::npos)
        return Status::UserUnreadable(Words(Say::EntryNameHasQuote, Quoted(found->entry.dn)));
    return Status::OK();
}

UserView BuildView(const Config& config, const Role& role, const FoundUser& found,
                   const Translator& words) {
    const DirectoryConfig& d = *found.directory;
    std::vector<GroupMembership> memberships;
    for (size_t i = 0; i < d.groups.size(); ++i)
        memberships.push_back({&d.groups[i], found.member[i]});
    AccountState state = found.enforced
                             ? WithGroupReasons(found.serverState, memberships)
                             : EvaluateAccount(found.entry, config.policy, memberships, Now());

    UserView view;
    view.dn = found.entry.dn;
    view.disabled = state.DisabledText(words);
    for (const AttributeInfo& info : AttributeTable()) {
        AttributeView a;
        a.info = &info;
        a.read = MayRead(role, info.name);
        a.write = MayWrite(role, info.name);
        if (!a.read && !a.write) continue;
        a.redisable = state.redisable.count(Lower(info.name)) > 0;
        bool secret = info.form == ValueForm::kPassword || info.form == ValueForm::kSecret;
        if (a.read && !secret) a.values = found.entry.Values(info.name);
        view.attributes.push_back(std::move(a));
    }
    for (size_t i = 0; i < d.groups.size(); ++i) {
        GroupView g;
        g.group = &d.groups[i];
        g.read = MayReadGroup(role, d.groups[i].dn);
        g.write = MayWriteGroup(role, d.groups[i].dn);
        if (!g.read && !g.write) continue;
        g.member = !g.read           ? Membership::kRestricted
                   : found.member[i] ? Membership::kMember
                                     : Membership::kNotMember;
        view.groups.push_back(g);
    }
    return view;
}

}  // namespace

// The role named by `identity`, and the administrator's DN, once the
// administrator entry exists and is admitted to the role.
static Status Authorize(const Config& config, StoreProvider& stores, std::string_view identity,
                        std::string_view administratorPath, const Role** role,
                        std::string* adminDn) {
    Status s = FindRole(config, identity, role);
    if (!s.ok()) return s;
    return CheckAdministrator(config, stores, **role, administratorPath, adminDn);
}

Status GetDirectories(const Config& config, std::string_view identity, std::string* reply) {
    const Role* role = nullptr;
    Status s = FindRole(config, identity, &role);
    if (!s.ok()) return s;
    std::vector<const DirectoryConfig*> list;
    for (const DirectoryConfig& d : config.directories)
        if (MaySeeDirectory(*role, d)) list.push_back(&d);
    *reply = WriteDirectoryList(list);
    return Status::OK();
}

Status ReadUser(const Config& config, StoreProvider& stores, std::string_view identity,
                std::string_view administratorPath, std::string_view userPath, size_t room,
                std::string* reply, int* attributeCount, const Translator& words) {
    const Role* role = nullptr;
    std::string adminDn;
    Status s = Authorize(config, stores, identity, administratorPath, &role, &adminDn);
    if (!s.ok()) return s;
    FoundUser found;
    if (!(s = FindUser(config, stores, *role, userPath, &found)).ok()) return s;
    UserView view = BuildView(config, *role, found, words);
    int count = static_cast<int>(view.attributes.size());
    if (!(s = WriteFittedUserDocument(std::move(view), room, config.historyLimit, reply)).ok())
        return s;
    *attributeCount = count;
    return Status::OK();
}

// ---- Writing ---------------------------------------------------------------

namespace {

constexpr const char* kRedacted = "(redacted)";

std::string Joined(const std::vector<std::string>& values) {
    std::string out;
    for (const std::string& v : values) {
        if (!out.empty()) out += "\n";
        out += v;
    }
    return out;
}

// The key of a redirect entry: its first word up to "=".
std::string RedirectKey(std::string_view value) {
    std::string_view rest = value;
    std::string_view first = TakeWord(rest);
    return std::string(first.substr(0, first.find('=')));
}

// Applies posted redirect values to the stored entries: "KEY=0" alone
// removes the entry with that key, any other value replaces the entry with
// its key (or is added); entries not named are left alone.
std::vector<std::string> ApplyRedirects(std::vector<std::string> stored,
                                        const std::vector<std::string>& posted) {
    for (const std::string& raw : posted) {
        std::string value(Trim(raw));
        if (value.empty()) continue;
        std::string key = RedirectKey(value);
        bool remove = Words(value).size() == 1 && value == key + "=0";
        bool placed = false;
        for (auto it = stored.begin(); it != stored.end();) {
            if (!EqualsNoCase(RedirectKey(*it), key)) {
                ++it;
            } else if (remove || placed) {
                it = stored.erase(it);
            } else {
                *it++ = value;
                placed = true;
            }
        }
        if (!remove && !placed) stored.push_back(value);
    }
    return stored;
}

struct PlannedGroup {
    const GroupConfig* group;
    bool add;
};

struct Plan {
    const DirectoryConfig* directory = nullptr;
    std::vector<PlannedGroup> groups;
    const UpdateDocument* document = nullptr;
    std::string passwordHash;  // set when the document changes the password
    bool changesPassword = false;
};

// The group of `directory` that an update names: by its identifier (what the
// page posts) or its DN (what a hand-written file may say). A name that
// matches neither is tried again with %hh sequences decoded, in case a
// browser's encoding of the form field name reached us.
const GroupConfig* FindPostedGroup(const DirectoryConfig& directory, const std::string& name) {
    if (const GroupConfig* g = directory.FindGroup(name)) return g;
    std::string decoded = DecodePercent(name);
    return decoded == name ? nullptr : directory.FindGroup(decoded);
}

Status CheckAgainstRole(const Config& config, const Role& role, const UpdateDocument& doc,
                        Plan* plan) {
    for (const DirectoryConfig& d : config.directories)
        if (!plan->directory && MaySeeDirectory(role, d) && IsBelow(doc.userDn, d.base))
            plan->directory = &d;
    if (!plan->directory)
        return Status::AccessDenied(
            Words(Say::UserNotInRoleDirectory, Quoted(doc.userDn, 200), Quoted(role.name)));
    for (const GroupUpdate& g : doc.groups) {
        const GroupConfig* found = FindPostedGroup(*plan->directory, g.name);
        if (!found)
            return Status::AccessDenied(
                Words(Say::NoSuchGroup, Quoted(plan->directory->id), Quoted(g.name, 200)));
        if (!MayWriteGroup(role, found->dn))
            return Status::AccessDenied(
                Words(Say::GroupNotWritable, Quoted(found->id), Quoted(role.name)));
        plan->groups.push_back({found, g.member == "1"});
    }
    for (const AttributeUpdate& a : doc.attributes)
        if (!MayWrite(role, a.name))
            return Status::AccessDenied(
                Words(Say::AttributeNotWritable, Quoted(a.name, 100), Quoted(role.name)));
    return Status::OK();
}

// Checks every value against its form, after turning the apostrophes typed
// in comments into the form they are stored in (StoredForm).
Status CheckValues(UpdateDocument& doc, Plan* plan) {
    for (const GroupUpdate& g : doc.groups)
        if (g.member != "1" && g.member != "0")
            return Status::BadRequest(
                Words(Say::BadMemberValue, Quoted(g.name, 200), Quoted(g.member, 40)));
    for (AttributeUpdate& a : doc.attributes) {
        const AttributeInfo& info = *FindAttribute(a.name);
        if (info.form == ValueForm::kPassword) {
            size_t given = 0;
            for (const std::string& v : a.values) given += v.empty() ? 0 : 1;
            if (given != 1) return Status::BadRequest(Words(Say::OneNewPassword));
            plan->changesPassword = true;
            continue;
        }
        for (std::string& v : a.values) {
            if (v.empty()) continue;
            v = StoredForm(info, v);
            Status s = ValidateValue(info, v);
            if (!s.ok()) return s;
        }
    }
    return Status::OK();
}

// Reads the user outside the write transaction so that a new password can be
// checked against the user's names and hashed before the write lock is taken.
Status PreparePassword(const Config& config, Store& store, const UpdateDocument& doc, Plan* plan) {
    Entry user;
    bool found = false;
    Status s = store.Read([&](StoreReader& r) { return r.Get(doc.userDn, &user, &found); });
    if (!s.ok()) return s;
    if (!found) return Status::UserUnreadable(Words(Say::NoUserEntry, Quoted(doc.userDn, 200)));
    if (!plan->changesPassword) return Status::OK();
    std::string password;
    for (const AttributeUpdate& a : doc.attributes)
        if (FindAttribute(a.name)->form == ValueForm::kPassword)
            for (const std::string& v : a.values)
                if (!v.empty()) password = v;
    std::vector<std::string> names;
    for (const std::string& n : plan->directory->naming)
        for (const std::string& v : user.Values(n)) names.push_back(v);
    if (!(s = CheckPassword(config.policy.password, password, names)).ok()) return s;
    if (store.SetsPasswords()) {
        plan->passwordHash = password;
        return Status::OK();
    }
    return HashPassword(config.policy.password, password, &plan->passwordHash);
}

// The entry after the document's attribute changes, in document order.
Entry ApplyAttributes(const Entry& before, const Plan& plan) {
    Entry after = before;
    for (const AttributeUpdate& a : plan.document->attributes) {
        const AttributeInfo& info = *FindAttribute(a.name);
        if (info.form == ValueForm::kPassword) {
            after.Set(info.name, {plan.passwordHash});
            after.Set("kvlxrLastPasswordChange", {FormatStamp(Now()) + " LXRAdmin"});
            continue;
        }
        if (info.form == ValueForm::kRedirect && !a.selfClosing) {
            bool anyValue = false;
            for (const std::string& v : a.values) anyValue = anyValue || !Trim(v).empty();
            after.Set(info.name, anyValue ? ApplyRedirects(after.Values(info.name), a.values)
                                          : std::vector<std::string>{});
            continue;
        }
        std::vector<std::string> values;
        for (const std::string& v : a.values)
            if (!Trim(v).empty()) values.emplace_back(Trim(v));
        after.Set(info.name, std::move(values));
    }
    return after;
}

Status ApplyPlan(StoreWriter& w, const Plan& plan, AuditRecord* audit) {
    audit->changes.clear();  // a store may run the write again (Store::Write)
    Entry before;
    bool found = false;
    Status s = w.Get(plan.document->userDn, &before, &found);
    if (!s.ok()) return s;
    if (!found)
        return Status::UserUnreadable(Words(Say::NoUserEntry, Quoted(plan.document->userDn, 200)));
    audit->user = before.dn;
    Entry after = ApplyAttributes(before, plan);

    std::vector<std::string> touched;
    for (const EntryAttribute& a : before.attributes) touched.push_back(a.name);
    for (const EntryAttribute& a : after.attributes) touched.push_back(a.name);
    std::vector<std::string> done;
    for (const std::string& name : touched) {
        bool seen = false;
        for (const std::string& d : done) seen = seen || EqualsNoCase(d, name);
        if (seen) continue;
        done.push_back(name);
        std::vector<std::string> oldValues = before.Values(name), newValues = after.Values(name);
        if (oldValues == newValues) continue;
        if (!(s = w.Replace(before.dn, name, newValues)).ok()) return s;
        bool secret = EqualsNoCase(name, "userPassword");
        audit->changes.push_back({name,
                                  secret && !oldValues.empty() ? kRedacted : Joined(oldValues),
                                  secret ? kRedacted : Joined(newValues)});
    }

    for (const PlannedGroup& g : plan.groups) {
        Entry group;
        bool exists = false;
        if (!(s = w.Get(g.group->dn, &group, &exists)).ok()) return s;
        if (!exists) return Status::UpdateFailed(Words(Say::NoGroupEntry, Quoted(g.group->dn)));
        std::vector<std::string> members = group.Values("member"), kept;
        bool was = false;
        for (const std::string& m : members) {
            bool same = DnKey(m) == DnKey(before.dn);
            was = was || same;
            if (!same) kept.push_back(m);
        }
        if (was == g.add) continue;
        if (g.add) kept = members, kept.push_back(before.dn);
        if (!(s = w.Replace(group.dn, "member", kept)).ok()) return s;
        audit->changes.push_back({"group " + group.dn, was ? "member" : "not a member",
                                  g.add ? "member" : "not a member"});
    }
    return w.AppendAudit(*audit);
}

}  // namespace

Status WriteUser(const Config& config, StoreProvider& stores, std::string_view identity,
                 std::string_view administratorPath, std::string_view document) {
    const Role* role = nullptr;
    std::string adminDn;
    Status s = Authorize(config, stores, identity, administratorPath, &role, &adminDn);
    if (!s.ok()) return s;
    UpdateDocument doc;
    if (!(s = ParseUpdateDocument(document, &doc)).ok()) return s;
    Plan plan;
    plan.document = &doc;
    if (!(s = CheckAgainstRole(config, *role, doc, &plan)).ok()) return s;
    if (!(s = CheckValues(doc, &plan)).ok()) return s;
    Store* store = nullptr;
    if (!(s = stores.Open(plan.directory->store, &store)).ok()) return s;
    if (!(s = PreparePassword(config, *store, doc, &plan)).ok()) return s;

    AuditRecord audit;
    audit.when = Now();
    audit.administrator = adminDn;
    audit.role = role->name;
    return store->Write([&](StoreWriter& w) { return ApplyPlan(w, plan, &audit); });
}

}  // namespace lxrapi
