#include "sqlite_store.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "test_support.h"

namespace lxrapi {
namespace {

class SqliteStoreTest : public ::testing::Test {
  protected:
    void SetUp() override {
        path_ = dir_.File("d.db");
        std::unique_ptr<SqliteStore> created;
        ASSERT_TRUE(SqliteStore::Create(path_, &created).ok());
        std::vector<Entry> entries;
        ASSERT_TRUE(ParseLdif(testing::kDirectoryLdif, "fixture", &entries).ok());
        ASSERT_TRUE(created
                        ->Write([&](StoreWriter& w) {
                            for (const Entry& e : entries)
                                if (Status s = w.Put(e); !s.ok()) return s;
                            return Status::OK();
                        })
                        .ok());
        ASSERT_TRUE(SqliteStore::Open(path_, 100, &store_).ok());
    }

    testing::TempDir dir_;
    std::string path_;
    std::unique_ptr<SqliteStore> store_;
};

TEST_F(SqliteStoreTest, LooksUpEntriesNamesAndMembers) {
    Status s = store_->Read([&](StoreReader& r) {
        Entry e;
        bool found = false;
        EXPECT_TRUE(r.Get("UID=Ann, ou=people, o=t", &e, &found).ok());
        EXPECT_TRUE(found);
        EXPECT_EQ(e.dn, "uid=ann,ou=people,o=t");
        EXPECT_EQ(e.Values("kvlxrLoginHistory").size(), 2u);  // order kept
        EXPECT_EQ(e.Values("kvlxrLoginHistory")[1], "20260529101010Z FAILED 10.0.0.6 bad-password");
        EXPECT_TRUE(r.Get("uid=nobody,o=t", &e, &found).ok());
        EXPECT_FALSE(found);
        std::vector<std::string> dns;
        EXPECT_TRUE(r.FindByValue("ou=people,o=t", {"uid", "cn"}, "TWIN", &dns).ok());
        EXPECT_EQ(dns, (std::vector<std::string>{"uid=bo,ou=people,o=t", "uid=cy,ou=people,o=t"}));
        EXPECT_TRUE(r.FindByValue("ou=people,o=t", {"cn"}, "Dee Other", &dns).ok());
        EXPECT_TRUE(dns.empty());  // below another base
        bool member = false;
        EXPECT_TRUE(
            r.IsMember("cn=deskers,ou=admins,o=t", "uid=agent,ou=admins,o=t", &member).ok());
        EXPECT_TRUE(member);  // stored with blanks after the commas
        EXPECT_TRUE(r.IsMember("cn=nogroup,o=t", "uid=agent,ou=admins,o=t", &member).ok());
        EXPECT_FALSE(member);
        EXPECT_TRUE(r.ListDns(&dns).ok());
        EXPECT_EQ(dns.size(), 11u);
        return Status::OK();
    });
    EXPECT_TRUE(s.ok()) << s.message();
}

TEST_F(SqliteStoreTest, AFailedWriteLeavesNothingBehind) {
    Status s = store_->Write([&](StoreWriter& w) {
        EXPECT_TRUE(w.Replace("uid=ann,ou=people,o=t", "kvlxrFailureCount", {"0"}).ok());
        return Status::BadRequest("refused");
    });
    EXPECT_EQ(s.code(), kBadRequest);
    store_->Read([&](StoreReader& r) {
        Entry e;
        bool found = false;
        r.Get("uid=ann,ou=people,o=t", &e, &found);
        EXPECT_EQ(e.First("kvlxrFailureCount"), "2 20260530101010Z 10.0.0.5");
        return Status::OK();
    });
    EXPECT_EQ(store_->Write([](StoreWriter& w) { return w.Replace("uid=x,o=t", "a", {}); }).code(),
              kUpdateFailed);
}

TEST_F(SqliteStoreTest, AuditRecordsKeepTheirChanges) {
    AuditRecord r;
    r.when = testing::kNow;
    r.administrator = "uid=lead,o=t";
    r.role = "desk";
    r.user = "uid=ann,ou=people,o=t";
    r.changes = {{"a", "1", "2"}, {"b", "x\ny", ""}};
    ASSERT_TRUE(store_->Write([&](StoreWriter& w) { return w.AppendAudit(r); }).ok());
    r.user = "uid=bo,ou=people,o=t";
    r.changes.clear();
    ASSERT_TRUE(store_->Write([&](StoreWriter& w) { return w.AppendAudit(r); }).ok());
    std::vector<AuditRecord> all, ann;
    store_->Read([&](StoreReader& rd) {
        rd.ListAudit("", &all);
        return rd.ListAudit("UID=ann, ou=people, o=t", &ann);
    });
    ASSERT_EQ(all.size(), 2u);
    ASSERT_EQ(ann.size(), 1u);
    EXPECT_EQ(ann[0].when, testing::kNow);
    ASSERT_EQ(ann[0].changes.size(), 2u);
    EXPECT_EQ(ann[0].changes[1].oldValue, "x\ny");
}

TEST_F(SqliteStoreTest, UnusableFilesAreNamed) {
    std::unique_ptr<SqliteStore> s;
    struct Case {
        std::string path;
        const char* problem;
    } cases[] = {
        {dir_.File("missing.db"), "no such file"},
        {dir_.File("text.db"), "not a database"},
        {dir_.File("foreign.db"), "not an LXR directory store"},
        {dir_.File("old.db"), "schema version 7"},
    };
    { std::ofstream(cases[1].path) << "this is not a database, just some text to fill a page\n"; }
    sqlite3* db = nullptr;
    sqlite3_open(cases[2].path.c_str(), &db);
    sqlite3_exec(db, "CREATE TABLE t(x)", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    {
        std::unique_ptr<SqliteStore> old;
        ASSERT_TRUE(SqliteStore::Create(cases[3].path, &old).ok());
    }
    sqlite3_open(cases[3].path.c_str(), &db);
    sqlite3_exec(db, "PRAGMA user_version=7", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    for (const Case& c : cases) {
        Status st = SqliteStore::Open(c.path, 100, &s);
        // Opened unchecked, the same failure comes from the first transaction.
        std::unique_ptr<SqliteStore> unchecked;
        Status later = SqliteStore::OpenUnchecked(c.path, 100, &unchecked);
        if (later.ok()) later = unchecked->Read([](StoreReader&) { return Status::OK(); });
        for (const Status& failed : {st, later}) {
            EXPECT_EQ(failed.code(), kUnreachable) << c.path;
            EXPECT_NE(failed.message().find(c.path), std::string::npos) << failed.message();
            EXPECT_NE(failed.message().find(c.problem), std::string::npos) << failed.message();
        }
    }
    EXPECT_FALSE(SqliteStore::Create(path_, &s).ok());  // never over an existing file
}

TEST_F(SqliteStoreTest, ALockHeldPastTheTimeoutIsReportedAndReadsGoOn) {
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(path_.c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    Status s = store_->Write([](StoreWriter& w) {
        return w.Replace("uid=ann,ou=people,o=t", "kvlxrFailureCount", {"0"});
    });
    EXPECT_EQ(s.code(), kUnreachable);
    EXPECT_NE(s.message().find("is locked"), std::string::npos) << s.message();
    EXPECT_NE(s.message().find(path_), std::string::npos);
    EXPECT_TRUE(store_
                    ->Read([](StoreReader& r) {
                        std::vector<std::string> dns;
                        return r.ListDns(&dns);
                    })
                    .ok());
    // A commit that holds readers out past the timeout: a process's first
    // read, which also checks the file's header, says the store is locked.
    sqlite3_exec(other, "ROLLBACK; BEGIN EXCLUSIVE", nullptr, nullptr, nullptr);
    std::unique_ptr<SqliteStore> fresh;
    ASSERT_TRUE(SqliteStore::OpenUnchecked(path_, 100, &fresh).ok());
    s = fresh->Read([](StoreReader&) { return Status::OK(); });
    EXPECT_NE(s.message().find("is locked"), std::string::npos) << s.message();
    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
}

std::string JournalMode(const std::string& path) {
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    sqlite3_stmt* stmt = nullptr;
    sqlite3_prepare_v2(db, "PRAGMA journal_mode", -1, &stmt, nullptr);
    std::string mode = sqlite3_step(stmt) == SQLITE_ROW
                           ? reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0))
                           : "";
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    return mode;
}

std::string FailureCount(SqliteStore& store) {
    Entry e;
    bool found = false;
    store.Read([&](StoreReader& r) { return r.Get("uid=ann,ou=people,o=t", &e, &found); });
    return e.First("kvlxrFailureCount");
}

// Stores of the earlier release keep a write-ahead log (and an index no
// query uses): they are read as they are, and the first write made while no
// other process has the file open moves them to the rollback journal, with
// every committed change kept.
TEST_F(SqliteStoreTest, AWriteAheadLogStoreIsReadAndMovedToTheJournalWhenAlone) {
    store_.reset();
    sqlite3* old = nullptr;
    ASSERT_EQ(sqlite3_open(path_.c_str(), &old), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(old,
                           "PRAGMA journal_mode=WAL; CREATE INDEX audit_user ON audit(user_key); "
                           "UPDATE value SET text = '1' WHERE attr_key = 'kvlxrfailurecount'",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);  // left in the log: `old` stays open
    ASSERT_TRUE(SqliteStore::Open(path_, 1000, &store_).ok());
    EXPECT_EQ(FailureCount(*store_), "1");
    auto write = [&](const char* count) {
        return store_->Write([&](StoreWriter& w) {
            return w.Replace("uid=ann,ou=people,o=t", "kvlxrFailureCount", {count});
        });
    };
    ASSERT_TRUE(write("2").ok());
    EXPECT_EQ(JournalMode(path_), "wal");  // another connection still had it open
    sqlite3_close(old);
    ASSERT_TRUE(write("3").ok());
    EXPECT_EQ(JournalMode(path_), "delete");
    sqlite3* check = nullptr;
    sqlite3_open(path_.c_str(), &check);
    EXPECT_EQ(sqlite3_exec(check, "DROP INDEX audit_user", nullptr, nullptr, nullptr), SQLITE_ERROR)
        << "the earlier release's unused index is left";
    sqlite3_close(check);
    std::unique_ptr<SqliteStore> again;
    ASSERT_TRUE(SqliteStore::Open(path_, 1000, &again).ok());
    EXPECT_EQ(FailureCount(*again), "3");
}

// A reader holds the file while a write commits: the writer waits for it
// within the busy timeout and succeeds.
TEST_F(SqliteStoreTest, AWriteWaitsForAReaderAndSucceeds) {
    EXPECT_EQ(JournalMode(path_), "delete");
    store_->SetBusyTimeout(5000);
    sqlite3* reader = nullptr;
    ASSERT_EQ(sqlite3_open(path_.c_str(), &reader), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(reader, "BEGIN; SELECT count(*) FROM value", nullptr, nullptr, nullptr),
              SQLITE_OK);
    std::thread done([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        sqlite3_exec(reader, "COMMIT", nullptr, nullptr, nullptr);
    });
    Status s = store_->Write([](StoreWriter& w) {
        return w.Replace("uid=ann,ou=people,o=t", "kvlxrFailureCount", {"0"});
    });
    done.join();
    sqlite3_close(reader);
    EXPECT_TRUE(s.ok()) << s.message();
    EXPECT_EQ(FailureCount(*store_), "0");
}

}  // namespace
}  // namespace lxrapi
