#include "ldap/ldap_connection.h"

#include <pthread.h>

#include <algorithm>
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

// The modifications as the null-ended array of pointers libldap wants; the
// object owns the arrays for the call.
class ModList {
  public:
    explicit ModList(const std::vector<Modification>& modifications)
        : values_(modifications.size()),
          pointers_(modifications.size()),
          mods_(modifications.size()) {
        for (size_t i = 0; i < modifications.size(); ++i) {
            const Modification& m = modifications[i];
            for (const std::string& v : m.values) values_[i].push_back(Berval(v));
            for (berval& b : values_[i]) pointers_[i].push_back(&b);
            pointers_[i].push_back(nullptr);
            mods_[i].mod_op = m.op | LDAP_MOD_BVALUES;
            mods_[i].mod_type = const_cast<char*>(m.attribute.c_str());
            mods_[i].mod_bvalues = m.values.empty() ? nullptr : pointers_[i].data();
            list_.push_back(&mods_[i]);
        }
        list_.push_back(nullptr);
    }
    LDAPMod** get() { return list_.data(); }

  private:
    std::vector<std::vector<berval>> values_;
    std::vector<std::vector<berval*>> pointers_;
    std::vector<LDAPMod> mods_;
    std::vector<LDAPMod*> list_;
};

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

Status LdapConnection::Get(std::string_view dn, Entry* entry, bool* found,
                           const std::vector<std::string>& operational) {
    *found = false;
    LDAPMessage* raw = nullptr;
    char all[] = "*";
    std::vector<char*> attributes = {all};
    for (const std::string& a : operational) attributes.push_back(const_cast<char*>(a.c_str()));
    attributes.push_back(nullptr);
    int rc = l_->search_ext_s(ld_, std::string(dn).c_str(), LDAP_SCOPE_BASE, "(objectClass=*)",
                              attributes.data(), 0, nullptr, nullptr, nullptr, 0, &raw);
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
    return Collect(rc, raw, base, entries);
}

Status LdapConnection::SearchPaged(std::string_view base, const std::string& filter, int pageSize,
                                   std::vector<Entry>* entries) {
    entries->clear();
    char noAttributes[] = LDAP_NO_ATTRS;
    char* names[] = {noAttributes, nullptr};
    const std::string where = std::string(base);
    std::string cookie;  // the server's, between two pages
    for (;;) {
        berval last{cookie.size(), cookie.data()};
        LDAPControl* page = nullptr;
        int rc = l_->create_page_control(ld_, pageSize, cookie.empty() ? nullptr : &last, 0, &page);
        if (rc != LDAP_SUCCESS)
            return Failure(rc, "cannot search below " + Quoted(base, 200), kUnreachable);
        LDAPControl* controls[] = {page, nullptr};
        LDAPMessage* raw = nullptr;
        rc = l_->search_ext_s(ld_, where.c_str(), LDAP_SCOPE_SUBTREE, filter.c_str(), names, 0,
                              controls, nullptr, nullptr, 0, &raw);
        l_->control_free(page);
        // Read before Collect frees the result.
        cookie = rc == LDAP_SUCCESS ? NextPageCookie(raw) : std::string();
        std::vector<Entry> more;
        Status s = Collect(rc, raw, base, &more);
        if (!s.ok()) return s;
        entries->insert(entries->end(), std::make_move_iterator(more.begin()),
                        std::make_move_iterator(more.end()));
        if (cookie.empty()) return Status::OK();
    }
}

std::string LdapConnection::NextPageCookie(LDAPMessage* raw) const {
    // The cookie rides on the search's final result; none, or an empty one,
    // means the server has sent everything.
    LDAPControl** returned = nullptr;
    int code = LDAP_SUCCESS;
    if (raw == nullptr ||
        l_->parse_result(ld_, raw, &code, nullptr, nullptr, nullptr, &returned, 0) != LDAP_SUCCESS)
        return std::string();
    std::string cookie;
    LDAPControl* response =
        returned ? l_->control_find(LDAP_CONTROL_PAGEDRESULTS, returned, nullptr) : nullptr;
    berval next{0, nullptr};
    ber_int_t estimate = 0;
    if (response != nullptr &&
        l_->parse_pageresponse_control(ld_, response, &estimate, &next) == LDAP_SUCCESS)
        cookie.assign(next.bv_val ? next.bv_val : "", next.bv_len);
    if (next.bv_val) l_->ber_memfree(next.bv_val);
    if (returned) l_->controls_free(returned);
    return cookie;
}

Status LdapConnection::Collect(int rc, LDAPMessage* raw, std::string_view base,
                               std::vector<Entry>* entries) {
    Result result(l_, raw);
    if (rc == LDAP_NO_SUCH_OBJECT) return Status::OK();
    if (rc != LDAP_SUCCESS && rc != LDAP_SIZELIMIT_EXCEEDED)
        return Failure(rc, "cannot search below " + Quoted(base, 200), kUnreachable);
    for (LDAPMessage* e = l_->first_entry(ld_, result.get()); e; e = l_->next_entry(ld_, e))
        entries->push_back(ToEntry(l_, ld_, e));
    return Status::OK();
}

Status LdapConnection::SearchNewest(std::string_view base, const std::string& filter,
                                    const std::string& newest, int limit,
                                    std::vector<Entry>* entries) {
    entries->clear();
    LDAPSortKey** keys = nullptr;
    std::string key = "-" + newest;
    if (l_->create_sort_keylist(&keys, const_cast<char*>(key.c_str())) != LDAP_SUCCESS)
        return Failure(LDAP_NO_MEMORY, "cannot search below " + Quoted(base, 200), kUnreachable);
    LDAPControl* sort = nullptr;
    int rc = l_->create_sort_control(ld_, keys, 0, &sort);
    l_->free_sort_keylist(keys);
    if (rc != LDAP_SUCCESS)
        return Failure(rc, "cannot search below " + Quoted(base, 200), kUnreachable);
    LDAPControl* controls[] = {sort, nullptr};
    LDAPMessage* raw = nullptr;
    char all[] = "*";
    char* attributes[] = {all, nullptr};
    rc = l_->search_ext_s(ld_, std::string(base).c_str(), LDAP_SCOPE_ONELEVEL, filter.c_str(),
                          attributes, 0, controls, nullptr, nullptr, limit, &raw);
    l_->control_free(sort);
    Status s = Collect(rc, raw, base, entries);
    if (!s.ok()) return s;
    // Generalized times of one form sort as text; a server that ignored the
    // (non-critical) control sent them oldest first.
    std::stable_sort(entries->begin(), entries->end(), [&](const Entry& a, const Entry& b) {
        return a.First(newest) > b.First(newest);
    });
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
                           const std::string& assertion, bool relax) {
    ModList list(modifications);
    LDAPControl* control = nullptr;
    if (!assertion.empty()) {
        int rc =
            l_->create_assertion_control(ld_, const_cast<char*>(assertion.c_str()), 0, &control);
        if (rc != LDAP_SUCCESS) return rc;
    }
    char relaxOid[] = LDAP_CONTROL_RELAX;
    LDAPControl relaxControl{relaxOid, {0, nullptr}, 1};
    std::vector<LDAPControl*> controls;
    if (control) controls.push_back(control);
    if (relax) controls.push_back(&relaxControl);
    controls.push_back(nullptr);
    int rc = l_->modify_ext_s(ld_, std::string(dn).c_str(), list.get(),
                              controls.size() > 1 ? controls.data() : nullptr, nullptr);
    if (control) l_->control_free(control);
    return rc;
}

int LdapConnection::ChangePassword(std::string_view dn, const std::string& password) {
    std::string user(dn);
    berval who = Berval(user), secret = Berval(password), generated{0, nullptr};
    int rc = l_->passwd_s(ld_, &who, nullptr, &secret, &generated, nullptr, nullptr);
    if (generated.bv_val) l_->ber_memfree(generated.bv_val);
    return rc;
}

int LdapConnection::Add(const Entry& entry) {
    std::vector<Modification> attributes;
    for (const EntryAttribute& a : entry.attributes)
        attributes.push_back({LDAP_MOD_ADD, a.name, a.values});
    ModList list(attributes);
    return l_->add_ext_s(ld_, entry.dn.c_str(), list.get(), nullptr, nullptr);
}

int LdapConnection::Delete(std::string_view dn) {
    return l_->delete_ext_s(ld_, std::string(dn).c_str(), nullptr, nullptr);
}

}  // namespace lxrapi
