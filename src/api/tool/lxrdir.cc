// lxrdir: the directory tool. Creates embedded directory stores, imports and
// exports LDIF, shows entries and the audit trail, and reads or writes users
// through the administration API itself (so that a demo sees what the program
// sees).
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "clock.h"
#include "lxrapi.h"
#include "sqlite_store.h"
#include "tool/ldif_io.h"

namespace {

using lxrapi::Entry;
using lxrapi::SqliteStore;
using lxrapi::Status;

constexpr const char* kUsage =
    "Usage: lxrdir COMMAND ARGUMENTS\n"
    "  create STORE [LDIF]            create a new directory store (and import LDIF)\n"
    "  import STORE LDIF              add the entries of an LDIF file (same DN: replaced)\n"
    "  export STORE                   write every entry as LDIF to standard output\n"
    "  show STORE DN                  show one entry as LDIF\n"
    "  audit STORE [DN]               show the audit trail, or one user's part of it\n"
    "  directories ROLE               show the role's directory list through the API\n"
    "  read ROLE ADMINPATH USERPATH   show a user document through the API\n"
    "  write ROLE ADMINPATH FILE      apply an update document through the API\n"
    "  list ROLE ADMINPATH REQUEST    show a page of a list of users through the API\n"
    "The API commands read the configuration named by LXRAPI_CONFIG (else ./lxrapi.toml).\n";

constexpr int kReplySize = 65536;
constexpr int kMessageSize = 8192;

int Failed(const Status& s) {
    std::fprintf(stderr, "lxrdir: %s\n", s.message().c_str());
    return 1;
}

int Usage(const char* problem) {
    if (problem) std::fprintf(stderr, "lxrdir: %s\n", problem);
    std::fputs(kUsage, problem ? stderr : stdout);
    return problem ? 2 : 0;
}

Status OpenStore(const std::string& path, std::unique_ptr<SqliteStore>* store) {
    return SqliteStore::Open(path, 5000, store);
}

Status Import(SqliteStore& store, const std::string& ldif, size_t* count) {
    std::vector<Entry> entries;
    Status s = lxrapi::ReadLdifFile(ldif, &entries);
    if (!s.ok()) return s;
    *count = entries.size();
    return store.Write([&](lxrapi::StoreWriter& w) {
        for (const Entry& e : entries) {
            Status st = w.Put(e);
            if (!st.ok()) return st;
        }
        return Status::OK();
    });
}

int Create(const std::vector<std::string>& args) {
    if (args.size() < 1 || args.size() > 2) return Usage("create takes STORE [LDIF]");
    std::unique_ptr<SqliteStore> store;
    Status s = SqliteStore::Create(args[0], &store);
    if (!s.ok()) return Failed(s);
    size_t count = 0;
    if (args.size() == 2 && !(s = Import(*store, args[1], &count)).ok()) {
        store.reset();
        std::remove(args[0].c_str());
        return Failed(s);
    }
    std::printf("created %s with %zu entries\n", args[0].c_str(), count);
    return 0;
}

int ImportCommand(const std::vector<std::string>& args) {
    if (args.size() != 2) return Usage("import takes STORE LDIF");
    std::unique_ptr<SqliteStore> store;
    Status s = OpenStore(args[0], &store);
    size_t count = 0;
    if (s.ok()) s = Import(*store, args[1], &count);
    if (!s.ok()) return Failed(s);
    std::printf("imported %zu entries into %s\n", count, args[0].c_str());
    return 0;
}

int Export(const std::vector<std::string>& args, bool one) {
    if (args.size() != (one ? 2u : 1u))
        return Usage(one ? "show takes STORE DN" : "export takes STORE");
    std::unique_ptr<SqliteStore> store;
    Status s = OpenStore(args[0], &store);
    if (!s.ok()) return Failed(s);
    std::string out;
    s = store->Read([&](lxrapi::StoreReader& r) {
        std::vector<std::string> dns;
        Status st = one ? Status::OK() : r.ListDns(&dns);
        if (one) dns.push_back(args[1]);
        for (const std::string& dn : dns) {
            Entry e;
            bool found = false;
            if (!st.ok() || !(st = r.Get(dn, &e, &found)).ok()) return st;
            if (!found) return Status::UserUnreadable("no entry " + dn + " in " + args[0]);
            out += lxrapi::FormatLdif(e);
        }
        return st;
    });
    if (!s.ok()) return Failed(s);
    std::fputs(out.c_str(), stdout);
    return 0;
}

std::string Shown(const std::string& value) {
    std::string out = "\"";
    for (char c : value) out += c == '\n' ? std::string("\" + \"") : std::string(1, c);
    return out + "\"";
}

int Audit(const std::vector<std::string>& args) {
    if (args.empty() || args.size() > 2) return Usage("audit takes STORE [DN]");
    std::unique_ptr<SqliteStore> store;
    Status s = OpenStore(args[0], &store);
    std::vector<lxrapi::AuditRecord> records;
    if (s.ok())
        s = store->Read([&](lxrapi::StoreReader& r) {
            return r.ListAudit(args.size() == 2 ? args[1] : "", &records);
        });
    if (!s.ok()) return Failed(s);
    for (const lxrapi::AuditRecord& r : records) {
        std::printf("#%lld %s %s by %s as %s\n", r.id, lxrapi::FormatStamp(r.when).c_str(),
                    r.user.c_str(), r.administrator.c_str(), r.role.c_str());
        if (r.changes.empty()) std::printf("    (no change)\n");
        for (const lxrapi::AuditChange& c : r.changes)
            std::printf("    %s: %s -> %s\n", c.attribute.c_str(), Shown(c.oldValue).c_str(),
                        Shown(c.newValue).c_str());
    }
    if (records.empty()) std::printf("no audit records\n");
    return 0;
}

int Report(int rc, const char* message) {
    if (rc < 0) {
        std::fprintf(stderr, "lxrdir: the API returned %d: %s\n", rc, message);
        return 1;
    }
    return 0;
}

int Directories(const std::vector<std::string>& args) {
    if (args.size() != 1) return Usage("directories takes ROLE");
    std::vector<char> reply(kReplySize), message(kMessageSize);
    int rc = LXRAdminGetDirectory(args[0].c_str(), reply.data(), kReplySize - 1, message.data(),
                                  kMessageSize, "EN", "US", nullptr);
    if (rc >= 0) std::fputs(reply.data(), stdout);
    return Report(rc, message.data());
}

int Read(const std::vector<std::string>& args) {
    if (args.size() != 3) return Usage("read takes ROLE ADMINPATH USERPATH");
    std::vector<char> reply(kReplySize), message(kMessageSize);
    int rc = LXRAdminRead(args[0].c_str(), args[1].c_str(), args[2].c_str(), reply.data(),
                          kReplySize - 1, message.data(), kMessageSize, "LXRAdmin=YES", "EN", "US",
                          nullptr);
    if (rc >= 0) {
        std::fputs(reply.data(), stdout);
        std::fflush(stdout);
        std::fprintf(stderr, "lxrdir: %d attributes\n", rc);
    }
    return Report(rc, message.data());
}

int List(const std::vector<std::string>& args) {
    if (args.size() < 3) return Usage("list takes ROLE ADMINPATH REQUEST");
    // The request's words may come as arguments of their own.
    std::string request = args[2];
    for (size_t i = 3; i < args.size(); ++i) request += " " + args[i];
    // Room for a page of the largest size, so that the size decides.
    constexpr int kListReplySize = 1 << 20;
    std::vector<char> reply(kListReplySize), message(kMessageSize);
    int rc = LXRAdminList(args[0].c_str(), args[1].c_str(), request.c_str(), reply.data(),
                          kListReplySize - 1, message.data(), kMessageSize, "EN", "US", nullptr);
    if (rc >= 0) {
        std::fputs(reply.data(), stdout);
        std::fflush(stdout);
        std::fprintf(stderr, "lxrdir: %d users\n", rc);
    }
    return Report(rc, message.data());
}

int Write(const std::vector<std::string>& args) {
    if (args.size() != 3) return Usage("write takes ROLE ADMINPATH FILE");
    std::ifstream in(args[2], std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "lxrdir: cannot open %s: %s\n", args[2].c_str(), std::strerror(errno));
        return 1;
    }
    std::ostringstream text;
    text << in.rdbuf();
    std::vector<char> message(kMessageSize);
    int rc = LXRAdminWrite(args[0].c_str(), args[1].c_str(), text.str().c_str(), message.data(),
                           kMessageSize, "LXRAdmin=YES", "EN", "US", nullptr);
    if (rc == 0) std::printf("written\n");
    return rc == 0 ? 0 : Report(rc < 0 ? rc : -rc, message.data());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return Usage("no command given");
    std::string command = argv[1];
    std::vector<std::string> args(argv + 2, argv + argc);
    if (command == "-h" || command == "--help" || command == "help") return Usage(nullptr);
    if (command == "create") return Create(args);
    if (command == "import") return ImportCommand(args);
    if (command == "export") return Export(args, false);
    if (command == "show") return Export(args, true);
    if (command == "audit") return Audit(args);
    if (command == "directories") return Directories(args);
    if (command == "read") return Read(args);
    if (command == "write") return Write(args);
    if (command == "list") return List(args);
    return Usage(("unknown command \"" + command + "\"").c_str());
}
