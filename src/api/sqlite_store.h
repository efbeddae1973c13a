// The embedded directory: a Store in one SQLite file (rollback journal, busy
// timeout, schema version in user_version). Many CGI processes may use one
// file at once: writers take the write lock first (BEGIN IMMEDIATE) and read
// the entry again inside their transaction, so that concurrent changes to
// different attributes are all kept; readers wait (busy timeout) only while
// a write commits. The rollback journal rather than a write-ahead log: each
// CGI process is the log's first user and would set up its shared-memory
// index anew, which costs a reader more than the lock it takes here.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "store.h"

struct sqlite3;
struct sqlite3_stmt;

namespace lxrapi {

class SqliteStore : public Store {
  public:
    // The schema this code reads and writes.
    static constexpr int kSchemaVersion = 1;

    ~SqliteStore() override;

    // Opens an existing store for reading and writing. A missing, unreadable
    // or foreign file fails with kUnreachable and a message naming it.
    static Status Open(const std::string& path, int busyTimeoutMs,
                       std::unique_ptr<SqliteStore>* store);
    // The same, but the file's header (our application id, the schema
    // version) is checked by the first transaction, under the lock it takes
    // anyway: a process that reads once then locks the file once. A foreign
    // file fails that transaction with Open's message.
    static Status OpenUnchecked(const std::string& path, int busyTimeoutMs,
                                std::unique_ptr<SqliteStore>* store);
    // Creates a new, empty store; fails if the file exists.
    static Status Create(const std::string& path, std::unique_ptr<SqliteStore>* store);

    Status Read(const std::function<Status(StoreReader&)>& body) override;
    Status Write(const std::function<Status(StoreWriter&)>& body) override;
    const std::string& name() const override { return path_; }

    void SetBusyTimeout(int ms);

    // Leaves the connection open without closing it: for a child process
    // after fork, which must neither use nor close its parent's connection.
    void Abandon() { db_ = nullptr; }

    // The statement for `sql`, prepared once per connection (the text's
    // address is the key, so pass string literals).
    sqlite3_stmt* Statement(const char* sql, Status* status);
    Status Error(const std::string& what) const;
    // The id of the row this connection inserted last.
    long long LastRowId() const;

  private:
    SqliteStore(std::string path, sqlite3* db) : path_(std::move(path)), db_(db) {}
    Status Exec(const char* sql);
    // Runs a PRAGMA that reads one number from the file's header; false if
    // it cannot be read (the connection's message says why).
    bool HeaderValue(const char* pragma, long long* value);
    // Inside a transaction: fails unless the file is a store of our schema.
    Status CheckHeader();
    // Steps the cached statement `sql` (BEGIN, COMMIT, ...) once.
    Status Run(const char* sql);
    // Runs `body` between `begin` and COMMIT, rolling back when either fails;
    // the caller holds `mutex_`.
    Status RunTransaction(const char* begin, const std::function<Status()>& body);
    // Before the first write of this connection: the rollback journal. A
    // store that an earlier release kept in write-ahead-log mode is moved to
    // it when no other process has the store open, else a later write tries
    // again. The log's shared-memory index is set up anew by every process
    // that opens the store first, and a CGI process always does; the journal
    // costs readers nothing but a lock. (Deleted after each write rather
    // than truncated: with full syncs, truncating costs one sync more.)
    void ChooseJournal();
    // The journal mode that `pragma` (a journal_mode PRAGMA) gives, in lower
    // case; "" if it fails.
    std::string JournalMode(const char* pragma);

    std::string path_;
    sqlite3* db_;
    int busyTimeoutMs_ = 0;
    bool checked_ = false;        // the header was found good
    bool journalChosen_ = false;  // ChooseJournal succeeded
    std::map<const char*, sqlite3_stmt*> statements_;
    // One transaction at a time on this connection, for hosts that call the
    // API from several threads (a CGI process has one).
    std::mutex mutex_;
};

// Opens each store file once per process and keeps it open, so that repeated
// calls in one process (benchmarks, long-running hosts) pay for opening once.
// A child process after fork opens its own connections.
class SqliteStoreProvider : public StoreProvider {
  public:
    explicit SqliteStoreProvider(int busyTimeoutMs) : busyTimeoutMs_(busyTimeoutMs) {}
    Status Open(const std::string& path, Store** store) override;
    // Closes every store this process has opened (tests remove their files).
    static void CloseAll();

  private:
    int busyTimeoutMs_;
};

}  // namespace lxrapi
