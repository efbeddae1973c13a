// The pages of LXRList: the list with its query form and bulk form, the
// CSV download, the result of a bulk action and the error page. Every text
// from the request, the directory or the API is escaped for the place it
// lands; every response carries headers that keep other sites from framing
// the page, running script in it or reading it as another type.
#pragma once

#include <string>
#include <vector>

#include "list/bulk.h"
#include "list/list_request.h"
#include "list/user_list.h"
#include "pages/directory_list.h"

// The Content-Security-Policy of every page: nothing but this program's
// own inline stylesheet (named by its hash) and its pictures; forms post
// only to this site; no framing, no <base>.
std::string ListSecurityPolicy();

// The header block: status, type, the security headers, and
// Content-Disposition when `attachment` names a file.
void WriteListHeaders(const char* status, const char* type, const char* attachment = nullptr);

// A whole error page with `status` (e.g. "400 Bad Request") and `message`.
void WriteListError(const char* status, const std::string& message);

// What the list page shows besides the list itself.
struct ListPageState {
    const DirectoryTable* directories = nullptr;  // the role's directories
    ListQuery query;
    const UserList* list = nullptr;  // null: no list asked for yet
    std::string token;               // the bulk form's token; "" offers no action
};

// The whole list page.
void WriteListPage(const ListPageState& state);

// The rows of `list` as CSV, header record first, as a download.
void WriteListCsv(const UserList& list);

// The page after a bulk action: one row per user with what happened, and a
// link back to the list `query` names.
void WriteBulkResult(const BulkAction& action, const std::vector<BulkOutcome>& outcomes,
                     const ListQuery& query);

// The query string of the user's page in LXRAdmin for a user path
// "DIRECTORY/USER": "?USERDIR=..&USER=..", both URL-encoded.
std::string UserPageQuery(const std::string& userPath);
