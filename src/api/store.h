// The directory behind the API. A Store holds entries (a DN and named,
// multi-valued attributes) and the audit trail of applied writes. Every access
// runs inside a transaction: Read for consistent views, Write for changes that
// apply all or nothing. Implementations: SqliteStore (embedded directory),
// LdapStore (an LDAP server) and MemoryStore (tests).
#pragma once

#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "status.h"

namespace lxrapi {

struct AccountState;

struct EntryAttribute {
    std::string name;                 // as stored (case kept)
    std::vector<std::string> values;  // in stored order, never empty
};

struct Entry {
    std::string dn;
    std::vector<EntryAttribute> attributes;

    // The attribute named `name` (without regard to case), or null.
    const EntryAttribute* Find(std::string_view name) const;
    // Its values, or none.
    std::vector<std::string> Values(std::string_view name) const;
    // Its first value, or "".
    std::string First(std::string_view name) const;
    // Replaces the values (an empty list removes the attribute).
    void Set(std::string_view name, std::vector<std::string> values);
};

// One changed attribute (or group membership) of an audited write.
struct AuditChange {
    std::string attribute;  // attribute name, or "group " + group DN
    std::string oldValue;   // values joined by "\n"; "(redacted)" for passwords
    std::string newValue;
};

struct AuditRecord {
    long long id = 0;  // assigned by the store
    std::time_t when = 0;
    std::string administrator;  // the administrator's DN
    std::string role;
    std::string user;  // the user's DN
    std::vector<AuditChange> changes;
};

// The lists of users a helpdesk starts from (LXRAdminList).
enum class ListKind { kLocked, kDisabled, kExpired, kExpiring, kIdle, kMustChange, kSearch };

// What a list asks of a store. The store may hand out more users than
// belong on the list (the account rules decide, the same ones that give a
// user's disabled reasons), but never fewer: the hints say which stored
// values can put a user on it.
struct ListQuery {
    ListKind kind = ListKind::kSearch;
    std::string base;                 // the directory's users lie below it
    std::vector<std::string> naming;  // kSearch: the attributes a name is matched against
    std::string start;                // kSearch: the beginning of a name ("" every user)
    std::time_t now = 0;
    long days = 0;        // kExpiring, kIdle
    int maxFailures = 0;  // the configured policy (the embedded store's)
    int passwordExpireDays = 0;
};

// Receives the users of a list in the store's order, each with its position
// (any text; the list's continuation carries it); returns false to stop.
using ListVisitor = std::function<bool(const Entry& user, const std::string& position)>;

class StoreReader;

// Gets the entries of `dns` that lie below `base` and after the position
// `after`, in DnKey order, and visits them with their key as the position:
// the order every store but the embedded one pages by.
Status VisitByKey(StoreReader& reader, const std::vector<std::string>& dns, std::string_view base,
                  std::string_view after, const ListVisitor& visit);

// Reading inside a transaction. All lookups compare DNs by DnKey.
class StoreReader {
  public:
    virtual ~StoreReader() = default;
    // Fills `entry` and sets `found`; an absent entry is not an error.
    virtual Status Get(std::string_view dn, Entry* entry, bool* found) = 0;
    // DNs below `base` with a value of one of `attributes` equal to `value`
    // (ASCII case folded), each once, in store order.
    virtual Status FindByValue(std::string_view base, const std::vector<std::string>& attributes,
                               std::string_view value, std::vector<std::string>* dns) = 0;
    // True when the entry `group` exists and lists `member` in its "member" values.
    virtual Status IsMember(std::string_view group, std::string_view member, bool* result) = 0;
    // Every entry's DN, in store order.
    virtual Status ListDns(std::vector<std::string>* dns) = 0;
    // The audit records, oldest first; with a non-empty `user`, only that user's.
    virtual Status ListAudit(std::string_view user, std::vector<AuditRecord>* records) = 0;
    // The users below `query.base` that may belong on the list, each as Get
    // gives it (a store may leave out the histories and redirects, which no
    // list reads), in a fixed order, from the one after `after` (a position a
    // visit received; "" from the start). The default walks every entry
    // sorted by DnKey: enough for small stores.
    virtual Status ListUsers(const ListQuery& query, std::string_view after,
                             const ListVisitor& visit);
    // Why `user` (as Get gave it) cannot log in, when the store's server
    // decides that itself at every bind; `enforced` false when the API judges
    // the stored values instead (EvaluateAccount).
    // `now` is the moment judged (a list of passwords that expire soon asks
    // about a later one).
    virtual Status ServerAccountState(const Entry& /*user*/, std::time_t /*now*/,
                                      AccountState* /*state*/, bool* enforced) {
        *enforced = false;
        return Status::OK();
    }
};

class StoreWriter : public StoreReader {
  public:
    // Adds the entry, or replaces an entry of the same DN whole.
    virtual Status Put(const Entry& entry) = 0;
    // Replaces one attribute's values of an existing entry; none removes it.
    virtual Status Replace(std::string_view dn, std::string_view attribute,
                           const std::vector<std::string>& values) = 0;
    virtual Status AppendAudit(const AuditRecord& record) = 0;
};

class Store {
  public:
    virtual ~Store() = default;
    // Runs `body` in a read transaction.
    virtual Status Read(const std::function<Status(StoreReader&)>& body) = 0;
    // Runs `body` in a write transaction, committed only when it returns OK.
    // Writers are serialised; a writer sees every write committed before it.
    // A store whose server has no transactions (LdapStore) may, after a
    // concurrent change, undo the attempt and run `body` again on fresh
    // entries, so `body` must start from what it reads each time.
    virtual Status Write(const std::function<Status(StoreWriter&)>& body) = 0;
    // The name used in messages (the file path).
    virtual const std::string& name() const = 0;
    // True when the store's server checks and hashes new passwords itself:
    // Replace of userPassword then carries the password in clear.
    virtual bool SetsPasswords() const { return false; }
};

// Finds the store of `path` for this process (opening it once, lazily).
class StoreProvider {
  public:
    virtual ~StoreProvider() = default;
    virtual Status Open(const std::string& path, Store** store) = 0;
};

}  // namespace lxrapi
