// The candidates of a list of users on an LDAP server: a search filter on
// the attributes that can put a user on the list, so that the server, not
// the API, walks the directory. The filter may let through users that are
// not on the list (the account rules decide, user by user), never drop one.
#pragma once

#include <string>

#include "status.h"
#include "store.h"

namespace lxrapi {

// The filter for `query`: over the server's password policy attributes when
// `serverPolicy`, else over the password-services attributes themselves.
// Fails with kBadRequest when a naming attribute cannot stand in a filter.
Status ListFilter(const ListQuery& query, bool serverPolicy, std::string* filter);

}  // namespace lxrapi
