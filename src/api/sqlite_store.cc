#include "sqlite_store.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>

#include "clock.h"
#include "message.h"
#include "text.h"

namespace lxrapi {

namespace {

constexpr int kApplicationId = 0x4c585244;      // "LXRD": tells our files from other databases
constexpr sqlite3_int64 kMapBytes = 1LL << 30;  // a larger store is mapped in part

constexpr const char* kSchema = R"SQL(
CREATE TABLE entry(
    id INTEGER PRIMARY KEY,
    dn TEXT NOT NULL,
    dn_key TEXT NOT NULL UNIQUE);
CREATE TABLE value(
    id INTEGER PRIMARY KEY,
    entry INTEGER NOT NULL REFERENCES entry(id),
    attr TEXT NOT NULL,
    attr_key TEXT NOT NULL,
    text TEXT NOT NULL);
CREATE INDEX value_entry ON value(entry, attr_key);
CREATE INDEX value_text ON value(attr_key, lower(text));
CREATE TABLE audit(
    id INTEGER PRIMARY KEY,
    stamp INTEGER NOT NULL,
    administrator TEXT NOT NULL,
    role TEXT NOT NULL,
    user TEXT NOT NULL,
    user_key TEXT NOT NULL);
CREATE TABLE audit_change(
    audit INTEGER NOT NULL REFERENCES audit(id),
    seq INTEGER NOT NULL,
    attribute TEXT NOT NULL,
    old_value TEXT NOT NULL,
    new_value TEXT NOT NULL,
    PRIMARY KEY(audit, seq));
)SQL";

// One use of a cached statement: binds, steps, and resets it on the way out.
class Query {
  public:
    Query(SqliteStore& store, const char* sql) : store_(store) {
        stmt_ = store.Statement(sql, &status_);
    }
    ~Query() {
        if (stmt_) {
            sqlite3_reset(stmt_);
            sqlite3_clear_bindings(stmt_);
        }
    }
    bool ok() const { return stmt_ != nullptr; }
    const Status& status() const { return status_; }
    Query& Bind(int i, std::string_view text) {
        sqlite3_bind_text(stmt_, i, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        return *this;
    }
    Query& Bind(int i, long long n) {
        sqlite3_bind_int64(stmt_, i, n);
        return *this;
    }
    // True while rows come; on failure sets `status`.
    bool Row(Status* status) {
        int rc = sqlite3_step(stmt_);
        if (rc == SQLITE_ROW) return true;
        if (rc != SQLITE_DONE) *status = store_.Error("query failed");
        return false;
    }
    Status Run() {
        Status s;
        while (Row(&s)) {
        }
        return s;
    }
    std::string Text(int col) const {
        const unsigned char* t = sqlite3_column_text(stmt_, col);
        return t ? std::string(reinterpret_cast<const char*>(t),
                               static_cast<size_t>(sqlite3_column_bytes(stmt_, col)))
                 : std::string();
    }
    long long Int(int col) const { return sqlite3_column_int64(stmt_, col); }

  private:
    SqliteStore& store_;
    sqlite3_stmt* stmt_ = nullptr;
    Status status_;
};

// An entry's values with their ids, to be put in stored (id) order by the
// caller: without ORDER BY the index on (entry, attr_key) serves the lookup
// alone, while SQLite's sorter, set up afresh in every process, costs more
// than the query itself.
constexpr const char* kValues = "SELECT id, attr, text FROM value WHERE entry = ?1";

class SqliteTransaction : public StoreWriter {
  public:
    explicit SqliteTransaction(SqliteStore& store) : store_(store) {}

    Status EntryId(std::string_view dn, long long* id, std::string* storedDn) {
        Query q(store_, "SELECT id, dn FROM entry WHERE dn_key = ?1");
        if (!q.ok()) return q.status();
        q.Bind(1, DnKey(dn));
        Status s;
        *id = 0;
        if (q.Row(&s)) {
            *id = q.Int(0);
            if (storedDn) *storedDn = q.Text(1);
        }
        return s;
    }

    Status Get(std::string_view dn, Entry* entry, bool* found) override {
        return GetValues(dn, kValues, entry, found);
    }

    // The entry without the values no list rule reads and no list shows: a
    // user under attack may hold thousands of history entries.
    Status GetForList(std::string_view dn, Entry* entry, bool* found) {
        return GetValues(dn,
                         "SELECT id, attr, text FROM value WHERE entry = ?1 AND attr_key NOT IN "
                         "('kvlxrloginhistory', 'kvfpslog', 'kvlxrhistory', "
                         "'kvlxrgenerationalredirects')",
                         entry, found);
    }

    // `sql` (a literal: statements are cached by its address) reads the id,
    // attribute and text of the values of the entry ?1.
    Status GetValues(std::string_view dn, const char* sql, Entry* entry, bool* found) {
        long long id = 0;
        Entry e;
        Status s = EntryId(dn, &id, &e.dn);
        *found = s.ok() && id != 0;
        if (!*found) return s;
        Query q(store_, sql);
        if (!q.ok()) return q.status();
        q.Bind(1, id);
        struct Row {
            long long id;
            std::string attr, text;
        };
        std::vector<Row> rows;
        while (q.Row(&s)) rows.push_back({q.Int(0), q.Text(1), q.Text(2)});
        if (!s.ok()) return s;
        std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.id < b.id; });
        for (Row& row : rows) {
            EntryAttribute* slot = nullptr;
            for (EntryAttribute& a : e.attributes)
                if (EqualsNoCase(a.name, row.attr)) slot = &a;
            if (!slot) {
                e.attributes.push_back({std::move(row.attr), {}});
                slot = &e.attributes.back();
            }
            slot->values.push_back(std::move(row.text));
        }
        *entry = std::move(e);
        return s;
    }

    // Two plain statements rather than one join: in a process that reads
    // once, preparing a join costs more than it saves.
    Status FindByValue(std::string_view base, const std::vector<std::string>& attributes,
                       std::string_view value, std::vector<std::string>* dns) override {
        dns->clear();
        std::vector<long long> ids;
        Status s;
        for (const std::string& attribute : attributes) {
            Query q(store_, "SELECT entry FROM value WHERE attr_key = ?1 AND lower(text) = ?2");
            if (!q.ok()) return q.status();
            q.Bind(1, Lower(attribute)).Bind(2, Lower(value));
            std::vector<long long> found;
            while (q.Row(&s)) found.push_back(q.Int(0));
            if (!s.ok()) return s;
            std::sort(found.begin(), found.end());  // store order within an attribute
            for (long long id : found)
                if (std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(id);
        }
        for (long long id : ids) {
            Query q(store_, "SELECT dn FROM entry WHERE id = ?1");
            if (!q.ok()) return q.status();
            q.Bind(1, id);
            if (q.Row(&s) && IsBelow(q.Text(0), base)) dns->push_back(q.Text(0));
            if (!s.ok()) return s;
        }
        return s;
    }

    // Reads the group with Get's statement (one statement less to prepare)
    // and looks at its "member" values.
    Status IsMember(std::string_view group, std::string_view member, bool* result) override {
        *result = false;
        Entry e;
        bool found = false;
        Status s = Get(group, &e, &found);
        if (!s.ok() || !found) return s;
        std::string key = DnKey(member);
        for (const std::string& m : e.Values("member"))
            if (DnKey(m) == key) *result = true;
        return s;
    }

    Status ListDns(std::vector<std::string>* dns) override {
        dns->clear();
        Query q(store_, "SELECT dn FROM entry ORDER BY id");
        if (!q.ok()) return q.status();
        Status s;
        while (q.Row(&s)) dns->push_back(q.Text(0));
        return s;
    }

    // The candidates come from SQL over the value table, a batch at a time
    // in DN key order after the last key seen (keyset paging), so that a
    // page of a large directory reads what it shows and little more.
    Status ListUsers(const ListQuery& query, std::string_view after,
                     const ListVisitor& visit) override {
        if (query.kind == ListKind::kSearch && query.naming.size() > 4)
            return StoreReader::ListUsers(query, after, visit);
        if (query.kind == ListKind::kLocked && query.maxFailures <= 0) return Status::OK();
        std::string key(after);
        for (;;) {
            std::vector<std::pair<std::string, std::string>> batch;
            Status s = ListBatch(query, key, &batch);
            if (!s.ok()) return s;
            for (const auto& [k, dn] : batch) {
                Entry e;
                bool found = false;
                if (!(s = GetForList(dn, &e, &found)).ok()) return s;
                if (found && !visit(e, k)) return Status::OK();
                key = k;
            }
            if (batch.size() < kListBatch) return Status::OK();
        }
    }

    Status ListAudit(std::string_view user, std::vector<AuditRecord>* records) override {
        records->clear();
        Status s;
        {
            Query q(store_,
                    "SELECT id, stamp, administrator, role, user FROM audit "
                    "WHERE ?1 = '' OR user_key = ?1 ORDER BY id");
            if (!q.ok()) return q.status();
            q.Bind(1, user.empty() ? std::string() : DnKey(user));
            while (q.Row(&s)) {
                AuditRecord r;
                r.id = q.Int(0);
                r.when = static_cast<std::time_t>(q.Int(1));
                r.administrator = q.Text(2);
                r.role = q.Text(3);
                r.user = q.Text(4);
                records->push_back(r);
            }
        }
        for (AuditRecord& r : *records) {
            if (!s.ok()) break;
            Query q(store_,
                    "SELECT attribute, old_value, new_value FROM audit_change "
                    "WHERE audit = ?1 ORDER BY seq");
            if (!q.ok()) return q.status();
            q.Bind(1, r.id);
            while (q.Row(&s)) r.changes.push_back({q.Text(0), q.Text(1), q.Text(2)});
        }
        return s;
    }

    Status InsertValues(long long id, std::string_view attribute,
                        const std::vector<std::string>& values) {
        for (const std::string& v : values) {
            Query q(store_,
                    "INSERT INTO value(entry, attr, attr_key, text) VALUES(?1, ?2, ?3, ?4)");
            if (!q.ok()) return q.status();
            q.Bind(1, id).Bind(2, attribute).Bind(3, Lower(attribute)).Bind(4, v);
            Status s = q.Run();
            if (!s.ok()) return s;
        }
        return Status::OK();
    }

    Status Put(const Entry& entry) override {
        long long id = 0;
        Status s = EntryId(entry.dn, &id, nullptr);
        if (!s.ok()) return s;
        if (id != 0) {
            Query del(store_, "DELETE FROM value WHERE entry = ?1");
            if (!del.ok()) return del.status();
            if (!(s = del.Bind(1, id).Run()).ok()) return s;
            Query upd(store_, "UPDATE entry SET dn = ?2 WHERE id = ?1");
            if (!upd.ok()) return upd.status();
            if (!(s = upd.Bind(1, id).Bind(2, entry.dn).Run()).ok()) return s;
        } else {
            Query ins(store_, "INSERT INTO entry(dn, dn_key) VALUES(?1, ?2)");
            if (!ins.ok()) return ins.status();
            if (!(s = ins.Bind(1, entry.dn).Bind(2, DnKey(entry.dn)).Run()).ok()) return s;
            id = store_.LastRowId();
        }
        for (const EntryAttribute& a : entry.attributes)
            if (!(s = InsertValues(id, a.name, a.values)).ok()) return s;
        return Status::OK();
    }

    Status Replace(std::string_view dn, std::string_view attribute,
                   const std::vector<std::string>& values) override {
        long long id = 0;
        Status s = EntryId(dn, &id, nullptr);
        if (!s.ok()) return s;
        if (id == 0) return Status::UpdateFailed("No entry " + Quoted(dn));
        Query del(store_, "DELETE FROM value WHERE entry = ?1 AND attr_key = ?2");
        if (!del.ok()) return del.status();
        if (!(s = del.Bind(1, id).Bind(2, Lower(attribute)).Run()).ok()) return s;
        return InsertValues(id, attribute, values);
    }

    Status AppendAudit(const AuditRecord& record) override {
        Status s;
        {
            Query q(store_,
                    "INSERT INTO audit(stamp, administrator, role, user, user_key) "
                    "VALUES(?1, ?2, ?3, ?4, ?5)");
            if (!q.ok()) return q.status();
            q.Bind(1, static_cast<long long>(record.when))
                .Bind(2, record.administrator)
                .Bind(3, record.role)
                .Bind(4, record.user)
                .Bind(5, DnKey(record.user));
            if (!(s = q.Run()).ok()) return s;
        }
        long long id = store_.LastRowId();
        long long seq = 0;
        for (const AuditChange& c : record.changes) {
            Query q(store_,
                    "INSERT INTO audit_change(audit, seq, attribute, old_value, new_value) "
                    "VALUES(?1, ?2, ?3, ?4, ?5)");
            if (!q.ok()) return q.status();
            q.Bind(1, id)
                .Bind(2, ++seq)
                .Bind(3, c.attribute)
                .Bind(4, c.oldValue)
                .Bind(5, c.newValue);
            if (!(s = q.Run()).ok()) return s;
        }
        return Status::OK();
    }

  private:
    static constexpr size_t kListBatch = 200;

    // One batch of (DN key, DN) of the list's candidates after `after`.
    // ?1 the key after which to start, ?2 "," and the base's key, ?3 the
    // batch size; the rest depend on the list.
    Status ListBatch(const ListQuery& query, const std::string& after,
                     std::vector<std::pair<std::string, std::string>>* batch) {
        static constexpr const char* kAll =
            "SELECT dn_key, dn FROM entry WHERE dn_key > ?1 "
            "AND substr(dn_key, -length(?2)) = ?2 ORDER BY dn_key LIMIT ?3";
#define LXR_CANDIDATES(condition)                                                 \
    "SELECT DISTINCT e.dn_key, e.dn FROM value v JOIN entry e ON e.id = v.entry " \
    "WHERE e.dn_key > ?1 AND substr(e.dn_key, -length(?2)) = ?2 AND " condition   \
    " ORDER BY e.dn_key LIMIT ?3"
        static constexpr const char* kLocked = LXR_CANDIDATES(
            "v.attr_key IN ('kvlxrfailurecount', 'kvfpslockoutcounter') "
            "AND CAST(v.text AS INTEGER) >= ?4");
        // A password expires by the user's own lifetime, or by the policy's
        // when its last change lies before ?5 (now, or the later moment
        // asked about, less the policy's lifetime ?4).
        static constexpr const char* kExpiry = LXR_CANDIDATES(
            "v.attr_key = 'kvlxrlastpasswordchange' AND (EXISTS (SELECT 1 FROM value o "
            "WHERE o.entry = e.id AND o.attr_key = 'kvlxrexpirepassworddays') "
            "OR (?4 > 0 AND lower(v.text) < ?5))");
        // Idle: a last login or base date, and none of them (in stamp form)
        // on or after ?4.
        static constexpr const char* kIdle = LXR_CANDIDATES(
            "v.attr_key IN ('kvlxrlastlogin', 'kvlxrbasedate') AND NOT EXISTS (SELECT 1 "
            "FROM value r WHERE r.entry = e.id AND r.attr_key IN ('kvlxrlastlogin', "
            "'kvlxrbasedate') AND r.text GLOB '[0-9][0-9][0-9][0-9][0-9][0-9][0-9]"
            "[0-9][0-9][0-9][0-9][0-9][0-9][0-9]Z*' AND lower(r.text) >= ?4)");
        static constexpr const char* kMustChange =
            LXR_CANDIDATES("v.attr_key = 'kvlxrimmediatechange' AND trim(v.text) <> ''");
        // A naming value in [?4, ?4 + 0xff): it begins with ?4.
        static constexpr const char* kSearch = LXR_CANDIDATES(
            "v.attr_key IN (?5, ?6, ?7, ?8) AND lower(v.text) >= ?4 AND lower(v.text) < ?9");
#undef LXR_CANDIDATES
        const char* sql = kAll;
        switch (query.kind) {
            case ListKind::kLocked:
                sql = kLocked;
                break;
            case ListKind::kExpired:
            case ListKind::kExpiring:
                sql = kExpiry;
                break;
            case ListKind::kIdle:
                sql = kIdle;
                break;
            case ListKind::kMustChange:
                sql = kMustChange;
                break;
            case ListKind::kSearch:
                if (!query.start.empty()) sql = kSearch;
                break;
            case ListKind::kDisabled:
                break;
        }
        Query q(store_, sql);
        if (!q.ok()) return q.status();
        q.Bind(1, after)
            .Bind(2, "," + DnKey(query.base))
            .Bind(3, static_cast<long long>(kListBatch));
        if (sql == kLocked) q.Bind(4, static_cast<long long>(query.maxFailures));
        if (sql == kExpiry) {
            std::time_t at =
                query.now + (query.kind == ListKind::kExpiring ? query.days * 86400 : 0);
            q.Bind(4, static_cast<long long>(query.passwordExpireDays))
                .Bind(5, Lower(FormatStamp(at - query.passwordExpireDays * 86400L)));
        }
        if (sql == kIdle) q.Bind(4, Lower(FormatStamp(query.now - query.days * 86400)));
        if (sql == kSearch) {
            std::string prefix = Lower(query.start);
            q.Bind(4, prefix).Bind(9, prefix + "\xff");
            for (size_t i = 0; i < query.naming.size(); ++i)
                q.Bind(5 + static_cast<int>(i), Lower(query.naming[i]));
        }
        Status s;
        while (q.Row(&s)) batch->emplace_back(q.Text(0), q.Text(1));
        return s;
    }

    SqliteStore& store_;
};

// Process-wide settings, made before SQLite's first use in this process
// (SQLite is linked into this library alone, so they are ours to make).
// Pages are read through a read-only memory map of the file: the kernel's
// page cache serves them, with no read call and no copy on our heap per page.
// And the page cache starts empty instead of with a bulk allocation of 20
// pages, which it touches at once: with the map, most processes need no
// page of their own. SQLite keeps no memory statistics: nothing here reads
// them, and they cost a lock and a count at every allocation. Should SQLite
// have been set up before (a test that opens a file first), the calls fail
// and reads go through read() as before.
void ConfigureSqlite() {
    static std::once_flag once;
    std::call_once(once, [] {
        sqlite3_config(SQLITE_CONFIG_MMAP_SIZE, kMapBytes, kMapBytes);
        sqlite3_config(SQLITE_CONFIG_PAGECACHE, nullptr, 0, 0);
        sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    });
}

Status OpenFailure(const std::string& path, const std::string& why) {
    return Status::Unreachable("Directory store " + Shown(path) + " cannot be opened: " + why);
}

}  // namespace

SqliteStore::~SqliteStore() {
    if (!db_) return;
    for (auto& [sql, stmt] : statements_) sqlite3_finalize(stmt);
    sqlite3_close_v2(db_);
}

Status SqliteStore::Error(const std::string& what) const {
    int code = sqlite3_errcode(db_);
    std::string text = "Directory store " + Shown(path_) + ": " + what + ": " + sqlite3_errmsg(db_);
    if (code == SQLITE_BUSY || code == SQLITE_LOCKED)
        return Status::Unreachable("Directory store " + Shown(path_) +
                                   " is locked: " + sqlite3_errmsg(db_));
    if (code == SQLITE_CONSTRAINT) return Status::UpdateFailed(text);
    return Status::Unreachable(text);
}

sqlite3_stmt* SqliteStore::Statement(const char* sql, Status* status) {
    auto it = statements_.find(sql);
    if (it != statements_.end()) return it->second;
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v3(db_, sql, -1, SQLITE_PREPARE_PERSISTENT, &stmt, nullptr) != SQLITE_OK) {
        *status = Error("cannot prepare a query");
        return nullptr;
    }
    statements_[sql] = stmt;
    return stmt;
}

bool SqliteStore::HeaderValue(const char* pragma, long long* value) {
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db_, pragma, -1, &stmt, nullptr) != SQLITE_OK) return false;
    bool ok = sqlite3_step(stmt) == SQLITE_ROW;
    if (ok) *value = sqlite3_column_int64(stmt, 0);
    sqlite3_finalize(stmt);  // keeps the connection's message of a failed step
    return ok;
}

Status SqliteStore::Exec(const char* sql) {
    if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) return Error("failed");
    return Status::OK();
}

long long SqliteStore::LastRowId() const {
    return sqlite3_last_insert_rowid(db_);
}

void SqliteStore::SetBusyTimeout(int ms) {
    busyTimeoutMs_ = ms;
    sqlite3_busy_timeout(db_, ms);
}

Status SqliteStore::Open(const std::string& path, int busyTimeoutMs,
                         std::unique_ptr<SqliteStore>* store) {
    std::unique_ptr<SqliteStore> s;
    Status status = OpenUnchecked(path, busyTimeoutMs, &s);
    if (status.ok()) status = s->Read([](StoreReader&) { return Status::OK(); });
    if (status.ok()) *store = std::move(s);
    return status;
}

Status SqliteStore::OpenUnchecked(const std::string& path, int busyTimeoutMs,
                                  std::unique_ptr<SqliteStore>* store) {
    ConfigureSqlite();
    sqlite3* db = nullptr;
    int rc =
        sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    // SQLite falls back to reading a file it may not write.
    if (rc == SQLITE_OK && sqlite3_db_readonly(db, "main") == 1) rc = SQLITE_READONLY;
    if (rc != SQLITE_OK) {
        // Asked only now, so that opening a good store costs no path look-ups.
        struct stat st {};
        std::string why = ::stat(path.c_str(), &st) != 0 ? "no such file"
                          : ::access(path.c_str(), R_OK | W_OK) != 0 || rc == SQLITE_READONLY
                              ? "not readable and writable by this process"
                          : db ? sqlite3_errmsg(db)
                               : "out of memory";
        sqlite3_close_v2(db);
        return OpenFailure(path, why);
    }
    std::unique_ptr<SqliteStore> s(new SqliteStore(path, db));
    s->SetBusyTimeout(busyTimeoutMs);
    *store = std::move(s);
    return Status::OK();
}

Status SqliteStore::CheckHeader() {
    // Plain PRAGMAs rather than one SELECT over pragma_application_id and
    // pragma_user_version: those table-valued functions set up a virtual
    // table each, which cost more than opening the file, and a plain PRAGMA
    // leaves reading the schema to the first query that needs it.
    long long applicationId = 0, schemaVersion = 0;
    if (!HeaderValue("PRAGMA application_id", &applicationId) ||
        !HeaderValue("PRAGMA user_version", &schemaVersion)) {
        int code = sqlite3_errcode(db_);
        return code == SQLITE_BUSY || code == SQLITE_LOCKED
                   ? Error("locked")
                   : OpenFailure(path_, sqlite3_errmsg(db_));
    }
    if (applicationId != kApplicationId) return OpenFailure(path_, "not an LXR directory store");
    if (schemaVersion != kSchemaVersion)
        return OpenFailure(path_, "schema version " + std::to_string(schemaVersion) +
                                      ", this library reads version " +
                                      std::to_string(kSchemaVersion));
    checked_ = true;
    return Status::OK();
}

Status SqliteStore::Create(const std::string& path, std::unique_ptr<SqliteStore>* store) {
    struct stat st {};
    if (::stat(path.c_str(), &st) == 0)
        return Status::UpdateFailed("Directory store " + Shown(path) + " already exists");
    ConfigureSqlite();
    sqlite3* db = nullptr;
    int rc =
        sqlite3_open_v2(path.c_str(), &db,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc != SQLITE_OK) {
        std::string why = db ? sqlite3_errmsg(db) : "out of memory";
        sqlite3_close_v2(db);
        return Status::Unreachable("Directory store " + Shown(path) + " cannot be created: " + why);
    }
    std::unique_ptr<SqliteStore> s(new SqliteStore(path, db));
    std::string setup = std::string("BEGIN; ") + kSchema +
                        "PRAGMA application_id=" + std::to_string(kApplicationId) +
                        "; PRAGMA user_version=" + std::to_string(kSchemaVersion) + "; COMMIT;";
    Status status = s->Exec(setup.c_str());
    if (!status.ok()) return status;
    s->SetBusyTimeout(5000);
    s->checked_ = true;
    *store = std::move(s);
    return Status::OK();
}

Status SqliteStore::Run(const char* sql) {
    Status s;
    sqlite3_stmt* stmt = Statement(sql, &s);
    if (!stmt) return s;
    int rc = sqlite3_step(stmt);
    if (rc != SQLITE_DONE && rc != SQLITE_ROW) s = Error("failed");
    sqlite3_reset(stmt);
    return s;
}

Status SqliteStore::RunTransaction(const char* begin, const std::function<Status()>& body) {
    if (!db_) return Status::Unreachable("Directory store " + Shown(path_) + " is closed");
    Status s = Run(begin);
    int code = sqlite3_errcode(db_);
    if (!s.ok() && !checked_ && code != SQLITE_BUSY && code != SQLITE_LOCKED)
        return OpenFailure(path_, sqlite3_errmsg(db_));  // a file that is no store at all
    if (!s.ok()) return s;
    // Inside the first transaction, whose lock then covers the header, the
    // schema and the body's reads at once.
    if (!checked_) s = CheckHeader();
    if (s.ok()) s = body();
    if (s.ok()) s = Run("COMMIT");
    if (!s.ok() && !sqlite3_get_autocommit(db_)) Run("ROLLBACK");
    return s;
}

std::string SqliteStore::JournalMode(const char* pragma) {
    sqlite3_stmt* stmt = nullptr;
    std::string mode;
    if (sqlite3_prepare_v2(db_, pragma, -1, &stmt, nullptr) == SQLITE_OK &&
        sqlite3_step(stmt) == SQLITE_ROW)
        mode = Lower(reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0)));
    sqlite3_finalize(stmt);
    return mode;
}

void SqliteStore::ChooseJournal() {
    journalChosen_ = JournalMode("PRAGMA journal_mode") != "wal";
    if (journalChosen_) return;  // the rollback journal is every connection's default
    // Without waiting: leaving the log needs the file to itself.
    sqlite3_busy_timeout(db_, 0);
    journalChosen_ = JournalMode("PRAGMA journal_mode=DELETE") == "delete";
    // The earlier release's index of the audit by user, which no query
    // uses, goes too: every process pays for parsing it.
    if (journalChosen_)
        sqlite3_exec(db_, "DROP INDEX IF EXISTS audit_user", nullptr, nullptr, nullptr);
    sqlite3_busy_timeout(db_, busyTimeoutMs_);
}

Status SqliteStore::Read(const std::function<Status(StoreReader&)>& body) {
    std::lock_guard<std::mutex> lock(mutex_);
    SqliteTransaction tx(*this);
    return RunTransaction("BEGIN", [&] { return body(tx); });
}

Status SqliteStore::Write(const std::function<Status(StoreWriter&)>& body) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (db_ && !journalChosen_) {
        // Only a file found to be ours has its journal changed.
        if (!checked_) {
            Status s = RunTransaction("BEGIN", [] { return Status::OK(); });
            if (!s.ok()) return s;
        }
        ChooseJournal();
    }
    SqliteTransaction tx(*this);
    return RunTransaction("BEGIN IMMEDIATE", [&] { return body(tx); });
}

namespace {
struct OpenStores {
    std::mutex mutex;
    pid_t pid = 0;
    std::map<std::string, std::unique_ptr<SqliteStore>> stores;
};
OpenStores& Opened() {
    static OpenStores* opened = new OpenStores;  // never destroyed: used until exit
    return *opened;
}
}  // namespace

Status SqliteStoreProvider::Open(const std::string& path, Store** store) {
    OpenStores& o = Opened();
    std::lock_guard<std::mutex> lock(o.mutex);
    if (o.pid != getpid()) {
        for (auto& [p, s] : o.stores) s->Abandon();
        o.stores.clear();
        o.pid = getpid();
    }
    auto it = o.stores.find(path);
    if (it == o.stores.end()) {
        std::unique_ptr<SqliteStore> opened;
        Status s = SqliteStore::OpenUnchecked(path, busyTimeoutMs_, &opened);
        if (!s.ok()) return s;
        it = o.stores.emplace(path, std::move(opened)).first;
    } else {
        it->second->SetBusyTimeout(busyTimeoutMs_);
    }
    *store = it->second.get();
    return Status::OK();
}

void SqliteStoreProvider::CloseAll() {
    OpenStores& o = Opened();
    std::lock_guard<std::mutex> lock(o.mutex);
    if (o.pid != getpid())
        for (auto& [p, s] : o.stores) s->Abandon();
    o.stores.clear();
}

}  // namespace lxrapi
