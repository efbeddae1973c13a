// libldap, loaded when an LDAP store is first used. The API library is
// loaded by every CGI request, and libldap brings TLS and SASL libraries
// with it that a directory kept in an embedded store never needs; so the
// library does not link it but finds its functions at run time.
#pragma once

#include <ldap.h>

#include <string>

namespace lxrapi {

// The functions the LDAP store calls, by their libldap names.
struct LdapLibrary {
    decltype(&::ldap_initialize) initialize;
    decltype(&::ldap_set_option) set_option;
    decltype(&::ldap_get_option) get_option;
    decltype(&::ldap_start_tls_s) start_tls_s;
    decltype(&::ldap_sasl_bind_s) sasl_bind_s;
    decltype(&::ldap_unbind_ext_s) unbind_ext_s;
    decltype(&::ldap_search_ext_s) search_ext_s;
    decltype(&::ldap_modify_ext_s) modify_ext_s;
    decltype(&::ldap_first_entry) first_entry;
    decltype(&::ldap_next_entry) next_entry;
    decltype(&::ldap_get_dn) get_dn;
    decltype(&::ldap_first_attribute) first_attribute;
    decltype(&::ldap_next_attribute) next_attribute;
    decltype(&::ldap_get_values_len) get_values_len;
    decltype(&::ldap_value_free_len) value_free_len;
    decltype(&::ldap_msgfree) msgfree;
    decltype(&::ldap_memfree) memfree;
    decltype(&::ldap_err2string) err2string;
    decltype(&::ldap_str2dn) str2dn;
    decltype(&::ldap_rdn2str) rdn2str;
    decltype(&::ldap_dnfree) dnfree;
    decltype(&::ldap_bv2escaped_filter_value) bv2escaped_filter_value;
    decltype(&::ldap_create_assertion_control) create_assertion_control;
    decltype(&::ldap_control_free) control_free;
    decltype(&::ldap_passwd_s) passwd_s;
    decltype(&::ldap_add_ext_s) add_ext_s;
    decltype(&::ldap_delete_ext_s) delete_ext_s;
    decltype(&::ldap_create_sort_keylist) create_sort_keylist;
    decltype(&::ldap_free_sort_keylist) free_sort_keylist;
    decltype(&::ldap_create_sort_control) create_sort_control;
    decltype(&::ldap_create_page_control) create_page_control;
    decltype(&::ldap_parse_result) parse_result;
    decltype(&::ldap_parse_pageresponse_control) parse_pageresponse_control;
    decltype(&::ldap_control_find) control_find;
    decltype(&::ldap_controls_free) controls_free;
    decltype(&::ber_free) ber_free;
    decltype(&::ber_memfree) ber_memfree;
};

// The functions, loaded once per process (thread-safe); null when libldap
// cannot be loaded, with the reason in `*error`.
const LdapLibrary* Ldap(std::string* error);

}  // namespace lxrapi
