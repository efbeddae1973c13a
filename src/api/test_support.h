// Shared by the unit tests: a small configuration and directory in memory,
// and a temporary folder for tests that need files.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "config.h"
#include "memory_store.h"
#include "support/temp_dir.h"
#include "tool/ldif_io.h"

namespace lxrapi::testing {

// 2026-06-01T12:00:00Z, the reference "now" of the tests and the demo.
constexpr long kNow = 1780315200;

inline const char* kConfigText = R"(
[administrators]
store = "/mem/admins"

[read]
history_limit = 50

[policy]
max_failures = 5
password_expire_days = 100

[policy.password]
min_length = 8
min_digits = 1
scheme = "sha512-crypt"

[[directory]]
id = "people"
name = "People"
store = "/mem/people"
base = "ou=people,o=t"
naming = ["uid", "cn"]

  [[directory.group]]
  id = "locked-out"
  dn = "cn=locked,ou=groups,o=t"
  prompt = "#Locked"
  reason = "Locked by policy"

  # Without "id": the DN's first value, "vpn", names the group.
  [[directory.group]]
  dn = "cn=vpn,ou=groups,o=t"
  prompt = "VPN"

[[directory]]
id = "other"
store = "/mem/people"
base = "ou=other,o=t"

[[role]]
name = "desk"
administrators = ["uid=lead,ou=admins,o=t", "cn=deskers,ou=admins,o=t"]
directories = ["people", "other"]
read = "*"
write = ["kvlxrFailureCount", "kvlxrDisableUntil", "kvlxrLoginHistory", "kvfpsLog",
         "kvlxrGenerationalRedirects", "userPassword", "kvlxrAccountInactivityDays",
         "kvlxrLastLogin"]
groups_read = "*"
groups_write = ["cn=locked,ou=groups,o=t", "cn=vpn,ou=groups,o=t"]

[[role]]
name = "reader"
administrators = ["uid=reader,ou=admins,o=t"]
directories = ["people"]
read = ["kvlxrFailureCount", "kvlxrLastLogin"]
groups_write = ["cn=vpn,ou=groups,o=t"]

[[role]]
name = "blind"
administrators = ["uid=reader,ou=admins,o=t"]
directories = ["people"]
)";

inline const char* kDirectoryLdif = R"(dn: uid=lead,ou=admins,o=t
uid: lead

dn: uid=agent,ou=admins,o=t
uid: agent

dn: uid=reader,ou=admins,o=t
uid: reader

dn: uid=stranger,ou=admins,o=t
uid: stranger

dn: cn=deskers,ou=admins,o=t
member: uid=agent, ou=admins, o=t

dn: uid=ann,ou=people,o=t
uid: ann
cn: Ann Lee
kvlxrFailureCount: 2 20260530101010Z 10.0.0.5
kvlxrLastLogin: 20260530101010Z 10.0.0.5
kvlxrLoginHistory: 20260530101010Z SUCCESS 10.0.0.5 browser
kvlxrLoginHistory: 20260529101010Z FAILED 10.0.0.6 bad-password
kvlxrGenerationalRedirects: A=https://a.example/ 20260101000000Z 10.1.1.1 first
kvlxrGenerationalRedirects: B=https://b.example/ 20260101000000Z 10.1.1.1 second
kvlxrHistory: {CRYPT}$6$old$hash
userPassword: {CRYPT}$6$x$y

dn: uid=bo,ou=people,o=t
uid: bo
cn: Twin
kvlxrDisableUntil: FOREVER gone

dn: uid=cy,ou=people,o=t
uid: cy
cn: Twin

dn: uid=dee,ou=other,o=t
uid: dee
cn: Dee Other

dn: cn=locked,ou=groups,o=t
member: uid=bo,ou=people,o=t

dn: cn=vpn,ou=groups,o=t
member: uid=ann,ou=people,o=t
)";

// The configuration above, parsed, with the directory loaded into memory
// stores ("/mem/admins" and "/mem/people" hold the same entries).
struct Fixture {
    Config config;
    MemoryStoreProvider stores;

    Fixture() {
        Status s = ParseConfig(kConfigText, "/etc/test.toml", &config);
        EXPECT_TRUE(s.ok()) << s.message();
        std::vector<Entry> entries;
        s = ParseLdif(kDirectoryLdif, "fixture", &entries);
        EXPECT_TRUE(s.ok()) << s.message();
        for (const char* path : {"/mem/admins", "/mem/people"})
            stores.Add(path)->Write([&](StoreWriter& w) {
                for (const Entry& e : entries) w.Put(e);
                return Status::OK();
            });
        setenv("LXR_NOW", std::to_string(kNow).c_str(), 1);
    }

    Entry Get(const std::string& dn) {
        Store* store = nullptr;
        stores.Open("/mem/people", &store);
        Entry e;
        bool found = false;
        store->Read([&](StoreReader& r) { return r.Get(dn, &e, &found); });
        return e;
    }
};

using lxrtest::TempDir;

}  // namespace lxrapi::testing
