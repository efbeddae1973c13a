// The lists a helpdesk starts from (who is locked out, whose password
// expires soon, ...) and the search by the start of a name: one bounded page
// of one directory's users, as a UserList document. Who is on a list is
// decided by the account rules that give a user's page its disabled
// reasons, so a list never disagrees with the page it links to.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "config.h"
#include "status.h"
#include "store.h"
#include "translation.h"

namespace lxrapi {

// Answers a <ListRequest> (list_request.h) for the role named by `identity`
// with a reply of at most `room` bytes: users that do not fit are left for
// the next page. `userCount` receives the number of User elements.
Status ListUsers(const Config& config, StoreProvider& stores, std::string_view identity,
                 std::string_view administratorPath, std::string_view request, size_t room,
                 std::string* reply, int* userCount, const Translator& words = Translator());

}  // namespace lxrapi
