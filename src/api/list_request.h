// The request of LXRAdminList and the continuation that leads from one page
// of a list to the next. A continuation is bound to the request it came from,
// so that a page link edited by hand, or kept from another list, is refused
// rather than silently showing the wrong users.
#pragma once

#include <string>
#include <string_view>

#include "status.h"
#include "store.h"

namespace lxrapi {

constexpr int kDefaultListSize = 50;
constexpr int kMaxListSize = 1000;
constexpr long kMaxListDays = 36500;

struct ListRequest {
    std::string directory;
    std::string listName;  // as requested: "locked", "search", ...
    ListKind kind = ListKind::kSearch;
    long days = 0;
    std::string start;
    int size = kDefaultListSize;
    std::string position;  // from the continuation; "" for the first page
};

// Reads <ListRequest directory=".." list=".." [days] [start] [size]
// [continuation]/>. Malformed text, an unknown list, a number out of range or
// an attribute the list does not take fail with kBadRequest.
Status ParseListRequest(std::string_view text, ListRequest* request);

// The continuation for the page after `position` of `request`: letters and
// digits only, so that it needs no escaping in a URL or an attribute.
std::string MakeContinuation(const ListRequest& request, std::string_view position);

}  // namespace lxrapi
