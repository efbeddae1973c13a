// The stores a configuration names, for the length of one API call: embedded
// directory files (SqliteStoreProvider keeps them open for the process) and
// LDAP servers, chosen by a store location that is an LDAP URL (one
// connection and bind per call, closed when the call ends).
#pragma once

#include "config.h"
#include "ldap/ldap_store.h"
#include "sqlite_store.h"
#include "store.h"

namespace lxrapi {

class ConfiguredStores : public StoreProvider {
  public:
    // `config` must outlive the provider.
    explicit ConfiguredStores(const Config& config)
        : files_(config.busyTimeoutMs), ldap_(config, files_) {}

    Status Open(const std::string& location, Store** store) override {
        return IsLdapUrl(location) ? ldap_.Open(location, store) : files_.Open(location, store);
    }

  private:
    SqliteStoreProvider files_;  // also opens the LDAP stores' audit files
    LdapStoreProvider ldap_;
};

}  // namespace lxrapi
