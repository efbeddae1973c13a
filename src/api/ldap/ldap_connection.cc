#include "ldap/ldap_connection.h"

#include <pthread.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <memory>
#include <sstream>

#include "ldap/ldap_library.h"
#include "message.h"
#include "text.h"

namespace lxrapi {

NoSigpipe::NoSigpipe() {
    sigset_t pipe, pending;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    sigemptyset(&pending);
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGPIPE) == 1;
    blocked_ = pthread_sigmask(SIG_BLOCK, &pipe, &old_) == 0;
}

NoSigpipe::~NoSigpipe() {
    if (!blocked_) return;
    sigset_t pipe, pending;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    sigemptyset(&pending);
    sigpending(&pending);
    if (!wasPending_ && sigismember(&pending, SIGPIPE) == 1) {
        timespec zero{0, 0};
        sigtimedwait(&pipe, nullptr, &zero);
    }
    pthread_sigmask(SIG_SETMASK, &old_, nullptr);
}

namespace {

// A search result, freed through the library that made it.
class Result {
  public:
    Result(const LdapLibrary* l, LDAPMessage* m) : l_(l), m_(m) {}
    ~Result() {
        if (m_) l_->msgfree(m_);
    }
    Result(const Result&) = delete;
    Result& operator=(const Result&) = delete;
    LDAPMessage* get() const { return m_; }

  private:
    const LdapLibrary* l_;
    LDAPMessage* m_;
};

timeval Timeout(int ms) {
    timeval tv;
    tv.tv_sec = ms / 1000;
    tv.tv_usec = (ms % 1000) * 1000;
    return tv;
}

berval Berval(const std::string& s) {
    berval b;
    b.bv_len = s.size();
    b.bv_val = const_cast<char*>(s.data());
    return b;
}

// One entry of a search result with its DN and every attribute returned.
Entry ToEntry(const LdapLibrary* l_, LDAP* ld, LDAPMessage* message) {
    Entry e;
    if (char* dn = l_->get_dn(ld, message)) {
        e.dn = dn;
        l_->memfree(dn);
    }
    BerElement* ber = nullptr;
    for (char* a = l_->first_attribute(ld, message, &ber); a;
         a = l_->next_attribute(ld, message, ber)) {
        EntryAttribute attribute{a, {}};
        if (berval** values = l_->get_values_len(ld, message, a)) {
            for (int i = 0; values[i]; ++i)
                attribute.values.emplace_back(values[i]->bv_val, values[i]->bv_len);
            l_->value_free_len(values);
        }
        if (!attribute.values.empty()) e.attributes.push_back(std::move(attribute));
        l_->memfree(a);
    }
    if (ber) l_->ber_free(ber, 0);
    return e;
}

}  // namespace

bool ServerGone(int rc) {
    return rc == LDAP_SERVER_DOWN || rc == LDAP_CONNECT_ERROR || rc == LDAP_TIMEOUT ||
           rc == LDAP_UNAVAILABLE || rc == LDAP_BUSY;
}

LdapConnection::~LdapConnection() {
    if (!ld_) return;
    NoSigpipe guard;  // the unbind request is written to the socket
    l_->unbind_ext_s(ld_, nullptr, nullptr);
}

Status LdapConnection::OpenFailure(const std::string& what, const std::string& why) const {
    return Status::Unreachable("LDAP directory " + Shown(config_.url) + " " + what + ": " +
                               Shown(why, 300));
}

Status LdapConnection::Failure(int rc, const std::string& what, int code) const {
    std::string text = "LDAP directory " + Shown(config_.url) + " " + what + ": ";
    if (rc == LDAP_TIMEOUT)
        text += "no answer within " + std::to_string(config_.timeoutMs) + " ms";
    else
        text += l_->err2string(rc);
    char* diagnostic = nullptr;
    if (ld_ && l_->get_option(ld_, LDAP_OPT_DIAGNOSTIC_MESSAGE, &diagnostic) == LDAP_OPT_SUCCESS &&
        diagnostic) {
        if (*diagnostic) text += " (" + Shown(diagnostic, 300) + ")";
        l_->memfree(diagnostic);
    }
    return Status(ServerGone(rc) ? kUnreachable : code, text);
}

Status LdapConnection::ReadPassword(std::string* password) const {
    if (!config_.passwordEnv.empty()) {
        const char* value = std::getenv(config_.passwordEnv.c_str());
        if (!value)
            return OpenFailure("has no bind password",
                               "the environment variable " + config_.passwordEnv + " is not set");
        *password = value;
        return Status::OK();
    }
    std::ifstream in(config_.passwordFile, std::ios::binary);
    if (!in)
        return OpenFailure("has no bind password", "the file " + config_.passwordFile +
                                                       " cannot be read: " + std::strerror(errno));
    std::ostringstream text;
    text << in.rdbuf();
    *password = text.str();
    // One line end after the password is the editor's, not the password's.
    if (!password->empty() && password->back() == '\n') password->pop_back();
    if (!password->empty() && password->back() == '\r') password->pop_back();
    return Status::OK();
}

Status LdapConnection::Open() {
    std::string missing;
    if (!(l_ = Ldap(&missing))) return OpenFailure("cannot be used", missing);
    int rc = l_->initialize(&ld_, config_.url.c_str());
    if (rc != LDAP_SUCCESS) {
        ld_ = nullptr;
        return OpenFailure("cannot be used", l_->err2string(rc));
    }
    int version = LDAP_VERSION3;
    timeval timeout = Timeout(config_.timeoutMs);
    l_->set_option(ld_, LDAP_OPT_PROTOCOL_VERSION, &version);
    l_->set_option(ld_, LDAP_OPT_REFERRALS, LDAP_OPT_OFF);
    l_->set_option(ld_, LDAP_OPT_NETWORK_TIMEOUT, &timeout);
    l_->set_option(ld_, LDAP_OPT_TIMEOUT, &timeout);
    bool tls = config_.startTls || Lower(config_.url).rfind("ldaps://", 0) == 0;
    if (tls) {
        int require = config_.verifyCertificate ? LDAP_OPT_X_TLS_DEMAND : LDAP_OPT_X_TLS_NEVER;
        l_->set_option(ld_, LDAP_OPT_X_TLS_REQUIRE_CERT, &require);
        if (!config_.caFile.empty())
            l_->set_option(ld_, LDAP_OPT_X_TLS_CACERTFILE, config_.caFile.c_str());
        int fresh = 0;
        if ((rc = l_->set_option(ld_, LDAP_OPT_X_TLS_NEWCTX, &fresh)) != LDAP_OPT_SUCCESS)
            return Failure(rc, "cannot set up TLS", kUnreachable);
    }
    if (config_.startTls && (rc = l_->start_tls_s(ld_, nullptr, nullptr)) != LDAP_SUCCESS)
        return Failure(rc, "cannot start TLS", kUnreachable);
    return Bind();
}

Status LdapConnection::Bind() {
    std::string password;
    if (!config_.bindDn.empty()) {
        Status s = ReadPassword(&password);
        if (!s.ok()) return s;
    }
    berval credentials = Berval(password);
    const char* dn = config_.bindDn.empty() ? nullptr : config_.bindDn.c_str();
    int rc = l_->sasl_bind_s(ld_, dn, LDAP_SASL_SIMPLE, &credentials, nullptr, nullptr, nullptr);
    if (!password.empty()) explicit_bzero(password.data(), password.size());
    if (rc == LDAP_SUCCESS) return Status::OK();
    std::string who = config_.bindDn.empty() ? "anonymously" : "as " + Quoted(config_.bindDn);
    if (ServerGone(rc)) return Failure(rc, "cannot be reached", kUnreachable);
    return Failure(rc, "refused the bind " + who, kUnreachable);
}

Status LdapConnection::Get(std::string_view dn, Entry* entry, bool* found) {
    *found = false;
    LDAPMessage* raw = nullptr;
    char all[] = "*";
    char* attributes[] = {all, nullptr};
    int rc = l_->search_ext_s(ld_, std::string(dn).c_str(), LDAP_SCOPE_BASE, "(objectClass=*)",
                              attributes, 0, nullptr, nullptr, nullptr, 0, &raw);
    Result result(l_, raw);
    if (rc == LDAP_NO_SUCH_OBJECT || rc == LDAP_INVALID_DN_SYNTAX) return Status::OK();
    if (rc != LDAP_SUCCESS) return Failure(rc, "cannot read " + Quoted(dn, 200), kUnreachable);
    LDAPMessage* first = l_->first_entry(ld_, result.get());
    if (!first) return Status::OK();
    *entry = ToEntry(l_, ld_, first);
    *found = true;
    return Status::OK();
}

Status LdapConnection::Search(std::string_view base, const std::string& filter,
                              const std::vector<std::string>& attributes,
                              std::vector<Entry>* entries) {
    entries->clear();
    std::vector<char*> names;
    for (const std::string& a : attributes) names.push_back(const_cast<char*>(a.c_str()));
    char noAttributes[] = LDAP_NO_ATTRS;
    if (names.empty()) names.push_back(noAttributes);
    names.push_back(nullptr);
    LDAPMessage* raw = nullptr;
    int rc = l_->search_ext_s(ld_, std::string(base).c_str(), LDAP_SCOPE_SUBTREE, filter.c_str(),
                              names.data(), 0, nullptr, nullptr, nullptr, 0, &raw);
    Result result(l_, raw);
    if (rc == LDAP_NO_SUCH_OBJECT) return Status::OK();
    if (rc != LDAP_SUCCESS && rc != LDAP_SIZELIMIT_EXCEEDED)
        return Failure(rc, "cannot search below " + Quoted(base, 200), kUnreachable);
    for (LDAPMessage* e = l_->first_entry(ld_, result.get()); e; e = l_->next_entry(ld_, e))
        entries->push_back(ToEntry(l_, ld_, e));
    return Status::OK();
}

Status LdapConnection::NamingContexts(std::vector<std::string>* contexts) {
    LDAPMessage* raw = nullptr;
    char name[] = "namingContexts";
    char* attributes[] = {name, nullptr};
    int rc = l_->search_ext_s(ld_, "", LDAP_SCOPE_BASE, "(objectClass=*)", attributes, 0, nullptr,
                              nullptr, nullptr, 0, &raw);
    Result result(l_, raw);
    if (rc != LDAP_SUCCESS) return Failure(rc, "cannot list its naming contexts", kUnreachable);
    LDAPMessage* first = l_->first_entry(ld_, result.get());
    *contexts =
        first ? ToEntry(l_, ld_, first).Values("namingContexts") : std::vector<std::string>{};
    return Status::OK();
}

int LdapConnection::Modify(std::string_view dn, const std::vector<Modification>& modifications,
                           const std::string& assertion) {
    // libldap wants arrays of pointers; these vectors own them for the call.
    std::vector<std::vector<berval>> values(modifications.size());
    std::vector<std::vector<berval*>> pointers(modifications.size());
    std::vector<LDAPMod> mods(modifications.size());
    std::vector<LDAPMod*> list;
    for (size_t i = 0; i < modifications.size(); ++i) {
        const Modification& m = modifications[i];
        for (const std::string& v : m.values) values[i].push_back(Berval(v));
        for (berval& b : values[i]) pointers[i].push_back(&b);
        pointers[i].push_back(nullptr);
        mods[i].mod_op = m.op | LDAP_MOD_BVALUES;
        mods[i].mod_type = const_cast<char*>(m.attribute.c_str());
        mods[i].mod_bvalues = m.values.empty() ? nullptr : pointers[i].data();
        list.push_back(&mods[i]);
    }
    list.push_back(nullptr);
    LDAPControl* control = nullptr;
    if (!assertion.empty()) {
        int rc =
            l_->create_assertion_control(ld_, const_cast<char*>(assertion.c_str()), 0, &control);
        if (rc != LDAP_SUCCESS) return rc;
    }
    LDAPControl* controls[] = {control, nullptr};
    int rc = l_->modify_ext_s(ld_, std::string(dn).c_str(), list.data(),
                              control ? controls : nullptr, nullptr);
    if (control) l_->control_free(control);
    return rc;
}

}  // namespace lxrapi
