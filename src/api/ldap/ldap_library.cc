#include "ldap/ldap_library.h"

#include <dlfcn.h>

#include "loaded_library.h"

namespace lxrapi {

namespace {

// The names libldap has had: 2.5, then 2.6 and later, then 2.4, then the
// development link.
constexpr const char* kNames[] = {"libldap-2.5.so.0", "libldap.so.2", "libldap-2.4.so.2",
                                  "libldap.so"};

bool Load(LdapLibrary* l, std::string* error) {
    void* handle = nullptr;
    for (const char* name : kNames)
        if (!handle) handle = dlopen(name, RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        *error = "libldap cannot be loaded";
        return false;
    }
    std::string missing;
    bool ok = true;
#define LXR_FIND(field, symbol) ok = FindSymbol(handle, #symbol, &l->field, &missing) && ok
    LXR_FIND(initialize, ldap_initialize);
    LXR_FIND(set_option, ldap_set_option);
    LXR_FIND(get_option, ldap_get_option);
    LXR_FIND(start_tls_s, ldap_start_tls_s);
    LXR_FIND(sasl_bind_s, ldap_sasl_bind_s);
    LXR_FIND(unbind_ext_s, ldap_unbind_ext_s);
    LXR_FIND(search_ext_s, ldap_search_ext_s);
    LXR_FIND(modify_ext_s, ldap_modify_ext_s);
    LXR_FIND(first_entry, ldap_first_entry);
    LXR_FIND(next_entry, ldap_next_entry);
    LXR_FIND(get_dn, ldap_get_dn);
    LXR_FIND(first_attribute, ldap_first_attribute);
    LXR_FIND(next_attribute, ldap_next_attribute);
    LXR_FIND(get_values_len, ldap_get_values_len);
    LXR_FIND(value_free_len, ldap_value_free_len);
    LXR_FIND(msgfree, ldap_msgfree);
    LXR_FIND(memfree, ldap_memfree);
    LXR_FIND(err2string, ldap_err2string);
    LXR_FIND(str2dn, ldap_str2dn);
    LXR_FIND(rdn2str, ldap_rdn2str);
    LXR_FIND(dnfree, ldap_dnfree);
    LXR_FIND(bv2escaped_filter_value, ldap_bv2escaped_filter_value);
    LXR_FIND(create_assertion_control, ldap_create_assertion_control);
    LXR_FIND(control_free, ldap_control_free);
    LXR_FIND(passwd_s, ldap_passwd_s);
    LXR_FIND(add_ext_s, ldap_add_ext_s);
    LXR_FIND(delete_ext_s, ldap_delete_ext_s);
    LXR_FIND(create_sort_keylist, ldap_create_sort_keylist);
    LXR_FIND(free_sort_keylist, ldap_free_sort_keylist);
    LXR_FIND(create_sort_control, ldap_create_sort_control);
    LXR_FIND(create_page_control, ldap_create_page_control);
    LXR_FIND(parse_result, ldap_parse_result);
    LXR_FIND(parse_pageresponse_control, ldap_parse_pageresponse_control);
    LXR_FIND(control_find, ldap_control_find);
    LXR_FIND(controls_free, ldap_controls_free);
    LXR_FIND(ber_free, ber_free);
    LXR_FIND(ber_memfree, ber_memfree);
#undef LXR_FIND
    if (!ok) *error = "libldap lacks " + missing;
    return ok;  // the handle stays open for the life of the process
}

}  // namespace

const LdapLibrary* Ldap(std::string* error) {
    return LoadOnce(&Load, error);
}

}  // namespace lxrapi
