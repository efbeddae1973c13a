// A directory kept in an LDAP server (OpenLDAP and the like), through
// libldap. One connection and one bind per API call: the provider connects
// when a call first opens the store and unbinds when the call ends.
//
// An LDAP server has no transactions that span entries (and few servers
// offer RFC 5805 transactions), so a write is made all or nothing this way:
// the body runs against a view of the entries it read, its changes are
// collected, then applied with one modification per entry (each atomic on
// the server), the user's entry first; when a later entry (a group) is
// refused, the entries already changed are changed back. A modification
// names the exact values it removes, so a concurrent change that got there
// first makes the server refuse it; the body then runs again on fresh
// entries (Store::Write allows that). The audit trail is kept in an embedded
// store file (the [[ldap]] table's `audit`), written in the same
// transaction as the LDAP changes are made and committed after them.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "config.h"
#include "store.h"

namespace lxrapi {

class LdapConnection;

class LdapStore : public Store {
  public:
    // How often a write runs again when a concurrent change got there first.
    static constexpr int kAttempts = 6;

    ~LdapStore() override;

    // Connects to the server of `config`, starts TLS when asked and binds
    // with the password from its file or environment variable. `audit`
    // opens the audit store when it is first needed and must outlive the
    // store. `groupDns` are the group entries the configuration names in
    // this directory: the memberships of one user in all of them are looked
    // up with one search. Fails with kUnreachable and a message naming the
    // server (never the password).
    static Status Connect(const LdapConfig& config, StoreProvider& audit,
                          std::vector<std::string> groupDns, std::unique_ptr<LdapStore>* store);

    Status Read(const std::function<Status(StoreReader&)>& body) override;
    // Writers on several hosts are not serialised by the server; see above.
    Status Write(const std::function<Status(StoreWriter&)>& body) override;
    const std::string& name() const override { return config_.url; }
    bool SetsPasswords() const override { return config_.serverPolicy; }

    // For the transactions in ldap_store.cc.
    LdapConnection& connection() { return *connection_; }
    const LdapConfig& config() const { return config_; }
    const std::vector<std::string>& groupDns() const { return groupDns_; }
    const std::string& groupBase() const { return groupBase_; }
    Status OpenAudit(Store** audit);

  private:
    LdapStore(const LdapConfig& config, StoreProvider& audit, std::vector<std::string> groupDns);

    LdapConfig config_;
    StoreProvider& auditStores_;
    std::vector<std::string> groupDns_;
    std::string groupBase_;  // the suffix the groups share
    std::unique_ptr<LdapConnection> connection_;
};

// The LDAP stores of one API call, by URL, each connected once. `audit`
// opens the audit stores; both must outlive the provider.
class LdapStoreProvider : public StoreProvider {
  public:
    LdapStoreProvider(const Config& config, StoreProvider& audit)
        : config_(config), audit_(audit) {}
    Status Open(const std::string& url, Store** store) override;

  private:
    const Config& config_;
    StoreProvider& audit_;
    std::map<std::string, std::unique_ptr<LdapStore>> stores_;
};

}  // namespace lxrapi
