// One bound libldap connection and the few operations the LDAP store needs,
// with libldap's results turned into the library's Status: a server that
// cannot be reached, refuses the bind or does not answer in time gives
// kUnreachable with a message naming the server.
#pragma once

#include <signal.h>

#include <string>
#include <string_view>
#include <vector>

#include "config.h"
#include "status.h"
#include "store.h"

typedef struct ldap LDAP;
typedef struct ldapmsg LDAPMessage;

namespace lxrapi {

struct LdapLibrary;

// Blocks SIGPIPE in this thread while it lives, and swallows one that was
// raised meanwhile: libldap writes to sockets the server may have closed, and
// a CGI process killed by the signal would leave no page at all. The
// process's own handling of the signal is not touched.
class NoSigpipe {
  public:
    NoSigpipe();
    ~NoSigpipe();
    NoSigpipe(const NoSigpipe&) = delete;
    NoSigpipe& operator=(const NoSigpipe&) = delete;

  private:
    sigset_t old_;
    bool blocked_ = false;
    bool wasPending_ = false;
};

// One modification of one attribute: LDAP_MOD_ADD, LDAP_MOD_DELETE or
// LDAP_MOD_REPLACE with its values (none: delete or replace them all).
struct Modification {
    int op;
    std::string attribute;
    std::vector<std::string> values;
};

// True for results that say the server is gone or did not answer (so an
// operation's effect is unknown), rather than that it refused.
bool ServerGone(int rc);

class LdapConnection {
  public:
    explicit LdapConnection(const LdapConfig& config) : config_(config) {}
    ~LdapConnection();  // unbinds
    LdapConnection(const LdapConnection&) = delete;
    LdapConnection& operator=(const LdapConnection&) = delete;

    // Connects, starts TLS when asked, and binds (anonymously without a
    // bind DN). The password is read from its file or variable here, so a
    // changed password takes effect at the next call, and is wiped after use.
    Status Open();

    // Base search for one entry with all its user attributes (and the
    // `operational` ones named); an entry that does not exist (or a DN the
    // server cannot parse) is not an error.
    Status Get(std::string_view dn, Entry* entry, bool* found,
               const std::vector<std::string>& operational = {});

    // Subtree search below `base` with `filter`. `attributes` empty: no
    // attributes ("1.1"), only DNs. A base that does not exist gives no
    // entries; a result cut by the server's size limit gives those it sent.
    Status Search(std::string_view base, const std::string& filter,
                  const std::vector<std::string>& attributes, std::vector<Entry>* entries);

    // Search() in pages of `pageSize` entries (simple paged results, RFC
    // 2696), so that a long list of candidates is not cut at the size limit
    // the server applies to one result; DNs only. A server without the
    // control answers in one result, as Search() would.
    Status SearchPaged(std::string_view base, const std::string& filter, int pageSize,
                       std::vector<Entry>* entries);

    // The newest `limit` children of `base` matching `filter` by the time
    // attribute `newest` (a generalized time), newest first. The server sorts
    // when it offers sorting (RFC 2891); otherwise the entries it sent are
    // sorted here.
    Status SearchNewest(std::string_view base, const std::string& filter, const std::string& newest,
                        int limit, std::vector<Entry>* entries);

    // The naming contexts the server holds (from its root DSE).
    Status NamingContexts(std::vector<std::string>* contexts);

    // Applies the modifications to one entry in one operation, on the
    // condition that the entry matches `assertion` when that is not empty
    // (RFC 4528; a server without the control ignores it); returns the LDAP
    // result code (LDAP_SUCCESS, LDAP_NO_SUCH_ATTRIBUTE, ...).
    // With `relax` the Relax Rules control goes with it, which the password
    // policy overlay wants before an administrator may set the values it
    // otherwise keeps itself (failure and grace times, change time).
    int Modify(std::string_view dn, const std::vector<Modification>& modifications,
               const std::string& assertion = std::string(), bool relax = false);

    // Sets a user's password through the password modify operation (RFC
    // 3062), so that the server applies its own quality and history checks
    // and its policy's bookkeeping; returns the LDAP result code.
    int ChangePassword(std::string_view dn, const std::string& password);

    // Adds an entry; deletes one. Return the LDAP result code.
    int Add(const Entry& entry);
    int Delete(std::string_view dn);

    // A Status for a failed operation: "LDAP directory URL WHAT: REASON"
    // with the server's diagnostic, kUnreachable when the server is gone or
    // silent, else `code`.
    Status Failure(int rc, const std::string& what, int code) const;

  private:
    // The entries of a search's result (which it frees), or its failure; a
    // missing base gives none, a size limit those sent.
    Status Collect(int rc, LDAPMessage* raw, std::string_view base, std::vector<Entry>* entries);
    // The paged-results cookie on a search's result; empty on the last page.
    std::string NextPageCookie(LDAPMessage* raw) const;
    Status Bind();
    Status ReadPassword(std::string* password) const;
    Status OpenFailure(const std::string& what, const std::string& why) const;

    const LdapConfig& config_;
    const LdapLibrary* l_ = nullptr;  // set by Open
    LDAP* ld_ = nullptr;
};

}  // namespace lxrapi
