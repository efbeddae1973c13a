#include "ldap/ldap_store.h"

#include <ldap.h>
#include <unistd.h>

#include <random>

#include "clock.h"
#include "ldap/ldap_connection.h"
#include "ldap/ldap_list.h"
#include "ldap/ldap_text.h"
#include "ldap/policy_override.h"
#include "ldap/server_policy.h"
#include "message.h"
#include "text.h"

namespace lxrapi {

namespace {

// Candidates of a list are asked for in pages of this many DNs, so that a
// directory with more locked or idle users than the server sends in one
// result is still listed whole (given the paged total the server allows).
constexpr int kListSearchPage = 250;

// An entry as the transaction read it and as the body has changed it.
// Under the server's password policy, `original` and `current` hold the
// server's own attributes; Get shows them as the fields the pages know.
struct Cached {
    bool exists = false;
    Entry original;
    Entry current;
    std::vector<std::string> touched;  // attributes the body replaced, in order
    std::vector<std::string> forced;   // written even when unchanged (after a password change)
    std::string password;              // a new password for the password operation
    bool clearHistory = false;         // delete the user's access log records
    bool addPolicy = false;            // add `policy` before the entry is changed
    Entry policy;                      // the per-user policy an override needs
    bool historyRead = false;
    std::vector<Entry> history;  // the user's access log records, newest first
};

// A modification made on the server and how to take it back.
struct Applied {
    std::string dn;
    std::vector<Modification> undo;
    bool relax = false;
    std::vector<Entry> deleted;  // access log records to add again
    bool added = false;          // `dn` was added: the undo deletes it
};

bool IsServerAttribute(std::string_view name) {
    for (const std::string& a : ServerPolicyAttributes())
        if (EqualsNoCase(a, name)) return true;
    return EqualsNoCase(name, "userPassword");
}

// The server's answers when a value the write relied on changed meanwhile.
// (A per-user policy added meanwhile by another writer is then reused.)
bool IsConflict(int rc) {
    return rc == LDAP_NO_SUCH_ATTRIBUTE || rc == LDAP_TYPE_OR_VALUE_EXISTS ||
           rc == LDAP_ASSERTION_FAILED || rc == LDAP_ALREADY_EXISTS;
}

// The reads of one call and, for a write, the changes it collects. Reads are
// cached by DN key, so that a body sees its own changes and an entry found by
// a name is not fetched twice.
class LdapTransaction : public StoreWriter {
  public:
    explicit LdapTransaction(LdapStore& store) : store_(store), ldap_(store.connection()) {}

    Status Get(std::string_view dn, Entry* entry, bool* found) override {
        Cached* c = nullptr;
        Status s = Fetch(dn, &c);
        if (!s.ok()) return s;
        *found = c->exists;
        if (!c->exists) return Status::OK();
        *entry = c->current;
        if (!serverPolicy()) return Status::OK();
        if (!(s = ReadHistory(c)).ok()) return s;
        ShowServerState(c->history, entry);
        const Entry* policy = nullptr;
        if (!(s = OverridePolicy(c->current, &policy)).ok()) return s;
        ShowOverrides(policy, entry);
        return Status::OK();
    }

    Status ServerAccountState(const Entry& user, std::time_t now, AccountState* state,
                              bool* enforced) override {
        *enforced = serverPolicy();
        if (!*enforced) return Status::OK();
        std::string dn = user.First("pwdPolicySubentry");
        if (dn.empty()) dn = store_.config().defaultPolicy;
        Cached* policy = nullptr;
        Status s = Fetch(dn, &policy);
        if (!s.ok()) return s;
        *state = EvaluateServerAccount(
            user, ReadServerPolicy(policy->exists ? &policy->current : nullptr, dn), now);
        return Status::OK();
    }

    Status FindByValue(std::string_view base, const std::vector<std::string>& attributes,
                       std::string_view value, std::vector<std::string>* dns) override {
        dns->clear();
        std::string filter;
        Status s = ValueFilter(attributes, value, &filter);
        if (!s.ok())
            return Status::Unreachable("LDAP directory " + Shown(store_.name()) + ": " +
                                       s.message());
        std::vector<Entry> entries;
        std::vector<std::string> wanted = {"*"};
        if (serverPolicy())
            for (const std::string& a : ServerPolicyAttributes()) wanted.push_back(a);
        if (!(s = ldap_.Search(base, filter, wanted, &entries)).ok()) return s;
        for (Entry& e : entries) {
            if (!IsBelow(e.dn, base)) continue;
            std::string key = DnKey(e.dn);
            bool seen = false;
            for (const std::string& d : *dns) seen = seen || DnKey(d) == key;
            if (seen) continue;
            dns->push_back(e.dn);
            if (cache_.count(key) == 0) Remember(std::move(e));
        }
        return Status::OK();
    }

    Status IsMember(std::string_view group, std::string_view member, bool* result) override {
        *result = false;
        std::string filter;
        Status s = ValueFilter({"member"}, member, &filter);
        if (!s.ok()) return Status::OK();  // not a DN a member value could hold
        std::string key = DnKey(member);
        bool known = false;
        for (const std::string& g : store_.groupDns()) known = known || DnKey(g) == DnKey(group);
        if (known && !store_.groupBase().empty()) {
            auto it = memberships_.find(key);
            if (it == memberships_.end()) {
                // Every configured group of this member at once.
                std::vector<Entry> groups;
                if (!(s = ldap_.Search(store_.groupBase(), filter, {}, &groups)).ok()) return s;
                std::vector<std::string> keys;
                for (const Entry& g : groups) keys.push_back(DnKey(g.dn));
                it = memberships_.emplace(key, keys).first;
            }
            for (const std::string& g : it->second) *result = *result || g == DnKey(group);
            return Status::OK();
        }
        std::vector<Entry> found;
        if (!(s = ldap_.Search(group, "(&(objectClass=*)" + filter + ")", {}, &found)).ok())
            return s;
        for (const Entry& e : found) *result = *result || DnKey(e.dn) == DnKey(group);
        return Status::OK();
    }

    // The server finds the candidates by a filter on the attributes that can
    // put a user on the list; pages follow each other by DN key.
    Status ListUsers(const ListQuery& query, std::string_view after,
                     const ListVisitor& visit) override {
        std::string filter;
        Status s = ListFilter(query, serverPolicy(), &filter);
        std::vector<Entry> found;
        if (s.ok()) s = ldap_.SearchPaged(query.base, filter, kListSearchPage, &found);
        if (!s.ok()) return s;
        std::vector<std::string> dns;
        for (const Entry& e : found) dns.push_back(e.dn);
        return VisitByKey(*this, dns, query.base, after, visit);
    }

    Status ListDns(std::vector<std::string>* dns) override {
        dns->clear();
        std::vector<std::string> contexts;
        Status s = ldap_.NamingContexts(&contexts);
        for (const std::string& context : contexts) {
            std::vector<Entry> entries;
            if (!s.ok() || !(s = ldap_.Search(context, "(objectClass=*)", {}, &entries)).ok())
                return s;
            for (const Entry& e : entries) dns->push_back(e.dn);
        }
        return s;
    }

    Status ListAudit(std::string_view user, std::vector<AuditRecord>* records) override {
        Store* audit = nullptr;
        Status s = store_.OpenAudit(&audit);
        if (!s.ok()) return s;
        return audit->Read([&](StoreReader& r) { return r.ListAudit(user, records); });
    }

    Status Put(const Entry& entry) override {
        return Status::UpdateFailed("LDAP directory " + Shown(store_.name()) + " takes no entry " +
                                    Quoted(entry.dn, 200) + " from the API; load it with ldapadd");
    }

    Status Replace(std::string_view dn, std::string_view attribute,
                   const std::vector<std::string>& values) override {
        Cached* c = nullptr;
        Status s = Fetch(dn, &c);
        if (!s.ok()) return s;
        if (!c->exists) return Status::UpdateFailed("No entry " + Quoted(dn, 200));
        if (serverPolicy() && IsOverrideField(attribute))
            return WriteOverride(c, attribute, values);
        if (!serverPolicy() || !KeptByServer(attribute)) {
            Set(c, attribute, values);
            return Status::OK();
        }
        ServerWrite w;
        if (!(s = MapServerWrite(c->current, attribute, values, Now(), &w)).ok()) return s;
        for (const EntryAttribute& a : w.set) Set(c, a.name, a.values);
        if (w.password) {
            c->password = values.empty() ? std::string() : values[0];
            Order(*c);
        }
        if (w.clearHistory) {
            c->clearHistory = true;
            Order(*c);
        }
        return Status::OK();
    }

    Status AppendAudit(const AuditRecord& record) override {
        audit_ = record;
        hasAudit_ = true;
        return Status::OK();
    }

    // Makes the collected changes on the server, one modification per entry
    // in the order the body first changed them. When one is refused, those
    // already made are taken back; `conflict` tells that a concurrent change
    // was the cause, so the body may run again.
    Status Apply(bool* conflict) {
        *conflict = false;
        for (const std::string& key : order_) {
            Cached& c = cache_[key];
            int rc = LDAP_SUCCESS;
            std::string what = "change of ";
            if (c.addPolicy) {
                what = "per-user policy " + Quoted(c.policy.dn, 200) + " of ";
                rc = ldap_.Add(c.policy);
                if (rc == LDAP_SUCCESS) applied_.push_back({c.policy.dn, {}, false, {}, true});
            }
            if (rc == LDAP_SUCCESS && !c.password.empty()) {
                what = "new password of ";
                rc = ChangePassword(c);
            }
            std::vector<Modification> change, undo;
            std::string assertion;
            bool relax = false;
            if (rc == LDAP_SUCCESS) {
                what = "change of ";
                Plan(c, &change, &undo, &assertion);
                for (const Modification& m : change)
                    relax = relax || IsServerAttribute(m.attribute);
                relax = relax && serverPolicy();
                if (!change.empty()) rc = ldap_.Modify(c.original.dn, change, assertion, relax);
            }
            if (rc == LDAP_SUCCESS && !change.empty())
                applied_.push_back({c.original.dn, std::move(undo), relax, {}, false});
            if (rc == LDAP_SUCCESS && c.clearHistory) {
                what = "login history of ";
                rc = ClearHistory(c);
            }
            if (rc == LDAP_SUCCESS) continue;
            *conflict = IsConflict(rc);
            what = (ServerGone(rc) ? "did not confirm the " : "refused the ") + what;
            Status failed = ldap_.Failure(rc, what + Quoted(c.original.dn, 200), kUpdateFailed);
            Status undone = Undo();
            return undone.ok() ? failed
                               : Status(failed.code(), failed.message() + "; " + undone.message());
        }
        return Status::OK();
    }

    // Takes back every modification Apply made, the last first.
    Status Undo() {
        Status result;
        for (auto it = applied_.rbegin(); it != applied_.rend(); ++it) {
            int rc = LDAP_SUCCESS;
            for (const Entry& record : it->deleted)
                if (rc == LDAP_SUCCESS) rc = ldap_.Add(record);
            if (rc == LDAP_SUCCESS && !it->undo.empty())
                rc = ldap_.Modify(it->dn, it->undo, std::string(), it->relax);
            if (rc == LDAP_SUCCESS && it->added) rc = ldap_.Delete(it->dn);
            if (rc != LDAP_SUCCESS && result.ok())
                result = ldap_.Failure(
                    rc, "could not take back the change of " + Quoted(it->dn, 200), kUpdateFailed);
        }
        applied_.clear();
        return result;
    }

    const AuditRecord* audit() const { return hasAudit_ ? &audit_ : nullptr; }

  private:
    bool serverPolicy() const { return store_.config().serverPolicy; }

    void Order(const Cached& c) {
        std::string key = DnKey(c.original.dn);
        for (const std::string& k : order_)
            if (k == key) return;
        order_.push_back(key);
    }

    void Set(Cached* c, std::string_view attribute, const std::vector<std::string>& values) {
        c->current.Set(attribute, Distinct(values));
        bool seen = false;
        for (const std::string& t : c->touched) seen = seen || EqualsNoCase(t, attribute);
        if (!seen) c->touched.emplace_back(attribute);
        Order(*c);
    }

    // The per-user policy that `user` (the server's attributes) names when
    // it is one of our override copies; null otherwise or when it is gone.
    Status OverridePolicy(const Entry& user, const Entry** policy) {
        *policy = nullptr;
        UserPolicies p = PoliciesOf(user, store_.config());
        if (!p.overridden) return Status::OK();
        Cached* c = nullptr;
        Status s = Fetch(p.subentry, &c);
        if (s.ok() && c->exists) *policy = &c->current;
        return s;
    }

    // A lifetime or inactivity override: the user gets the per-user policy
    // that holds every override the write leaves (an existing equal one, or
    // a copy added by Apply before the user's entry is changed), and the
    // policy before it is remembered beside the user; with no override
    // left, that policy is given back. Our attribute keeps the comment.
    Status WriteOverride(Cached* c, std::string_view attribute,
                         const std::vector<std::string>& values) {
        const LdapConfig& config = store_.config();
        if (config.policyBase.empty())
            return Status::UpdateFailed(
                "LDAP directory " + Shown(store_.name()) + " keeps " + std::string(attribute) +
                " in a per-user policy, and its [[ldap]] table names no 'policy_base' for them");
        if (!values.empty() && OverrideSeconds(values[0]) == kTooManyDays)
            return Status::UpdateFailed("LDAP directory " + Shown(store_.name()) + ": " +
                                        std::string(attribute) + " takes at most " +
                                        std::to_string(kMostDays) + " days in a server's policy");
        Set(c, attribute, values);
        UserPolicies p = PoliciesOf(c->original, config);
        const Entry* current = nullptr;
        Status s = OverridePolicy(c->original, &current);
        if (!s.ok()) return s;
        std::vector<OverrideValue> after =
            OverridesAfter(c->current, current, p.overridden, c->touched);
        bool any = false;
        for (const OverrideValue& o : after) {
            any = any || o.seconds >= 0;
            // A value stored without an override behind it is dropped.
            if (o.seconds < 0 && !c->current.Values(o.field).empty()) Set(c, o.field, {});
        }
        c->addPolicy = false;
        if (!any) {
            Set(c, "pwdPolicySubentry",
                p.previous.empty() ? std::vector<std::string>{}
                                   : std::vector<std::string>{p.previous});
            Set(c, kPreviousPolicy, {});
            return Status::OK();
        }
        Cached* base = nullptr;
        if (!(s = Fetch(p.base, &base)).ok()) return s;
        if (!base->exists)
            return Status::UpdateFailed("LDAP directory " + Shown(store_.name()) +
                                        " has no policy entry " + Quoted(p.base, 200) +
                                        " to copy the policy of " + Quoted(c->original.dn, 200) +
                                        " from");
        Entry copy;
        if (!(s = CopyPolicy(base->current, p.base, after, config.policyBase, attribute, &copy))
                 .ok())
            return s;
        Cached* existing = nullptr;
        if (!(s = Fetch(copy.dn, &existing)).ok()) return s;
        if (existing->exists && !SamePolicy(existing->current, copy))
            return Status::UpdateFailed("LDAP directory " + Shown(store_.name()) + ": the entry " +
                                        Quoted(copy.dn, 200) +
                                        " is not the per-user policy its name stands for");
        c->addPolicy = !existing->exists;
        c->policy = std::move(copy);
        Set(c, "pwdPolicySubentry", {c->policy.dn});
        Set(c, kPreviousPolicy,
            p.previous.empty() ? std::vector<std::string>{} : std::vector<std::string>{p.previous});
        return Status::OK();
    }

    // The user's access log records, newest first, read once.
    Status ReadHistory(Cached* c) {
        if (c->historyRead || store_.config().accessLog.empty()) return Status::OK();
        std::string dn;
        if (!EscapeFilterValue(c->original.dn, &dn)) return Status::OK();
        Status s = ldap_.SearchNewest(store_.config().accessLog,
                                      "(&(objectClass=auditBind)(reqDN=" + dn + "))", "reqStart",
                                      kMaxLogRecords, &c->history);
        c->historyRead = s.ok();
        return s;
    }

    // Sets the new password through the server, which also clears the lock,
    // the failures and the grace logins (and may demand a change at the next
    // login). The undo puts back the former password and that state; a lock
    // forever and a must-change chosen in the same post are written again
    // by the modification that follows.
    int ChangePassword(Cached& c) {
        std::vector<Modification> undo;
        for (const std::string& a : ServerPolicyAttributes())
            if (a != "pwdLastSuccess" && a != "pwdPolicySubentry" && a != "pwdStartTime" &&
                a != "pwdEndTime")
                undo.push_back({LDAP_MOD_REPLACE, a, c.original.Values(a)});
        undo.push_back({LDAP_MOD_REPLACE, "userPassword", c.original.Values("userPassword")});
        int rc = ldap_.ChangePassword(c.original.dn, c.password);
        if (rc != LDAP_SUCCESS) return rc;
        applied_.push_back({c.original.dn, std::move(undo), true, {}, false});
        for (const char* a : {"pwdAccountLockedTime", "pwdReset"}) {
            bool touched = false;
            for (const std::string& t : c.touched) touched = touched || EqualsNoCase(t, a);
            if (touched || !c.current.Values(a).empty()) {
                c.forced.emplace_back(a);
                if (!touched) c.touched.emplace_back(a);
            }
        }
        // What the server cleared stays cleared unless the post set it.
        if (c.current.First("pwdAccountLockedTime") != kLockedForever)
            c.current.Set("pwdAccountLockedTime", {});
        return LDAP_SUCCESS;
    }

    // Deletes the user's access log records; the undo adds them again.
    int ClearHistory(Cached& c) {
        Applied deleted{c.original.dn, {}, false, {}, false};
        int rc = LDAP_SUCCESS;
        for (int round = 0; rc == LDAP_SUCCESS && round < 100; ++round) {
            c.historyRead = false;
            if (!ReadHistory(&c).ok()) return LDAP_OTHER;
            if (c.history.empty()) break;
            for (const Entry& record : c.history) {
                if (rc == LDAP_SUCCESS) rc = ldap_.Delete(record.dn);
                if (rc == LDAP_SUCCESS) deleted.deleted.push_back(record);
            }
        }
        applied_.push_back(std::move(deleted));
        return rc;
    }

    void Remember(Entry e) {
        Cached c;
        c.exists = true;
        c.original = e;
        c.current = std::move(e);
        cache_[DnKey(c.original.dn)] = std::move(c);
    }

    // The entry of `dn`, read once per transaction and cached under the key
    // of the DN as asked for.
    Status Fetch(std::string_view dn, Cached** cached) {
        std::string key = DnKey(dn);
        auto it = cache_.find(key);
        if (it == cache_.end()) {
            Cached c;
            Status s =
                ldap_.Get(dn, &c.original, &c.exists,
                          serverPolicy() ? ServerPolicyAttributes() : std::vector<std::string>{});
            if (!s.ok()) return s;
            c.current = c.original;
            it = cache_.emplace(key, std::move(c)).first;
        }
        *cached = &it->second;
        return Status::OK();
    }

    // The modification that turns the entry as read into the entry as the
    // body left it, the one that turns it back (see ChangedByValue), and the
    // condition the entry must meet (NewKeysAbsent).
    void Plan(const Cached& c, std::vector<Modification>* change, std::vector<Modification>* undo,
              std::string* assertion) {
        bool needsClass = false;
        std::string conditions;
        int count = 0;
        for (const std::string& name : c.touched) {
            std::vector<std::string> before = c.original.Values(name),
                                     after = c.current.Values(name);
            bool forced = false;
            for (const std::string& f : c.forced) forced = forced || EqualsNoCase(f, name);
            if (before == after && !forced) continue;
            if (ChangedByValue(name)) {
                ValueDelta d = Delta(before, after, KeepsOrder(name));
                if (d.empty()) continue;
                if (!d.removed.empty()) change->push_back({LDAP_MOD_DELETE, name, d.removed});
                if (!d.added.empty()) change->push_back({LDAP_MOD_ADD, name, d.added});
                if (!d.added.empty()) undo->push_back({LDAP_MOD_DELETE, name, d.added});
                if (!d.removed.empty()) undo->push_back({LDAP_MOD_ADD, name, d.removed});
                std::string absent = NewKeysAbsent(name, before, d.added);
                conditions += absent;
                count += absent.empty() ? 0 : 1;
            } else {
                change->push_back({LDAP_MOD_REPLACE, name, after});
                undo->push_back({LDAP_MOD_REPLACE, name, Distinct(before)});
            }
            needsClass =
                needsClass || ((NeedsAuxiliaryClass(name) || EqualsNoCase(name, kPreviousPolicy)) &&
                               !after.empty());
        }
        *assertion = count > 1 ? "(&" + conditions + ")" : conditions;
        const std::string& auxiliary = store_.config().auxiliaryClass;
        if (!needsClass || auxiliary.empty()) return;
        for (const std::string& oc : c.original.Values("objectClass"))
            if (EqualsNoCase(oc, auxiliary)) return;
        // Kept when the change is taken back: the class allows, not requires.
        change->push_back({LDAP_MOD_ADD, "objectClass", {auxiliary}});
    }

    LdapStore& store_;
    LdapConnection& ldap_;
    std::map<std::string, Cached> cache_;
    std::map<std::string, std::vector<std::string>> memberships_;  // member key -> group keys
    std::vector<std::string> order_;                               // DN keys, first change first
    std::vector<Applied> applied_;
    AuditRecord audit_;
    bool hasAudit_ = false;
};

// A short, growing, random pause before a write runs again, so that writers
// that collided do not collide again in step.
void Pause(int attempt) {
    static thread_local std::minstd_rand random(static_cast<unsigned>(getpid()));
    int ms = 5 * attempt + static_cast<int>(random() % 20);
    usleep(static_cast<useconds_t>(ms) * 1000);
}

}  // namespace

LdapStore::LdapStore(const LdapConfig& config, StoreProvider& audit,
                     std::vector<std::string> groupDns)
    : config_(config), auditStores_(audit), groupDns_(std::move(groupDns)) {
    groupBase_ = CommonSuffix(groupDns_);
    connection_ = std::make_unique<LdapConnection>(config_);
}

LdapStore::~LdapStore() = default;

Status LdapStore::Connect(const LdapConfig& config, StoreProvider& audit,
                          std::vector<std::string> groupDns, std::unique_ptr<LdapStore>* store) {
    NoSigpipe guard;
    std::unique_ptr<LdapStore> s(new LdapStore(config, audit, std::move(groupDns)));
    Status status = s->connection_->Open();
    if (!status.ok()) return status;
    *store = std::move(s);
    return Status::OK();
}

Status LdapStore::OpenAudit(Store** audit) {
    return auditStores_.Open(config_.audit, audit);
}

Status LdapStore::Read(const std::function<Status(StoreReader&)>& body) {
    NoSigpipe guard;
    LdapTransaction tx(*this);
    return body(tx);
}

Status LdapStore::Write(const std::function<Status(StoreWriter&)>& body) {
    NoSigpipe guard;
    Store* audit = nullptr;
    Status s = OpenAudit(&audit);
    if (!s.ok()) return s;
    // The audit store's write lock is taken first, so that a locked audit
    // fails before anything is changed, and writers of one host go one at a
    // time. The audit record is added only once the LDAP changes are made.
    std::unique_ptr<LdapTransaction> made;
    s = audit->Write([&](StoreWriter& auditWriter) {
        for (int attempt = 1;; ++attempt) {
            auto tx = std::make_unique<LdapTransaction>(*this);
            Status st = body(*tx);
            if (!st.ok()) return st;
            bool conflict = false;
            st = tx->Apply(&conflict);
            if (conflict && attempt < kAttempts) {
                Pause(attempt);
                continue;
            }
            if (!st.ok()) {
                if (!conflict) return st;
                return Status::UpdateFailed(st.message() + "; the entry kept changing under " +
                                            std::to_string(kAttempts) + " attempts, try again");
            }
            if (tx->audit() && !(st = auditWriter.AppendAudit(*tx->audit())).ok()) {
                tx->Undo();
                return st;
            }
            made = std::move(tx);
            return Status::OK();
        }
    });
    if (!s.ok() && made) {
        // The audit could not be committed: the change is taken back too.
        Status undone = made->Undo();
        if (!undone.ok()) return Status(s.code(), s.message() + "; " + undone.message());
    }
    return s;
}

Status LdapStoreProvider::Open(const std::string& url, Store** store) {
    const LdapConfig* ldap = config_.FindLdap(url);
    if (!ldap)
        return Status::Unreachable("LDAP directory " + Shown(url) +
                                   " is not declared with [[ldap]] in the configuration");
    auto it = stores_.find(ldap->url);
    if (it == stores_.end()) {
        std::vector<std::string> groups;
        for (const DirectoryConfig& d : config_.directories)
            if (config_.FindLdap(d.store) == ldap)
                for (const GroupConfig& g : d.groups) groups.push_back(g.dn);
        if (config_.FindLdap(config_.adminStore) == ldap)
            for (const Role& r : config_.roles)
                for (const std::string& a : r.administrators.names) groups.push_back(a);
        std::unique_ptr<LdapStore> opened;
        Status s = LdapStore::Connect(*ldap, audit_, std::move(groups), &opened);
        if (!s.ok()) return s;
        it = stores_.emplace(ldap->url, std::move(opened)).first;
    }
    *store = it->second.get();
    return Status::OK();
}

}  // namespace lxrapi
