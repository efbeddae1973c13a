// What the administrator asked the list page for, read from the query
// arguments and checked, and the request document it becomes for the API.
#pragma once

#include <string>

#include "cgi/fields.h"

// The lists the API answers, in the order the page offers them.
enum class ListKind { kLocked, kDisabled, kExpired, kExpiring, kIdle, kMustChange, kSearch };

// Every list kind with its word in the request document and the query.
struct ListKindName {
    ListKind kind;
    const char* word;
};
extern const ListKindName kListKinds[7];

// The word of `kind` ("locked", "search", ...).
const char* ListWord(ListKind kind);
// True for the kinds that take a number of days (expiring, idle).
bool TakesDays(ListKind kind);

// Bounds of the page size; more than kMaxPageSize rows would make one page
// (and one API reply) too large to be quick.
constexpr int kDefaultPageSize = 50;
constexpr int kMaxPageSize = 1000;
constexpr int kDefaultDays = 7;
constexpr int kMaxDays = 3650;

struct ListQuery {
    std::string directory;  // DIR: a directory identifier of the role's list
    ListKind kind = ListKind::kLocked;
    int days = kDefaultDays;      // DAYS, for expiring and idle
    std::string start;            // START: the start of a name, for the search ("": everyone)
    int size = kDefaultPageSize;  // SIZE
    std::string continuation;     // NEXT: the API's token for the following page
};

// Fills `query` from `args` (DIR, LIST, DAYS, START, SIZE, NEXT). Absent
// arguments keep the defaults. False with `problem` naming the argument when
// a value is not acceptable: an unknown list, days or size that are not
// plain decimal numbers within their bounds, or a text holding a character that cannot stand in the
// request document (a quotation mark, "<", ">", "&" or a control character). A refused value is
// never sent to the API.
bool ReadListQuery(const FieldMap& args, ListQuery& query, std::string& problem);

// The request document for LXRAdminList:
//   <ListRequest directory=".." list=".." days="N" start=".." size="N" continuation=".."/>
// `days` only for the kinds that take it, `start` only for the search,
// `continuation` only when not empty. The values were checked by
// ReadListQuery and are written as they stand.
std::string ListRequestDocument(const ListQuery& query);

// The query string that asks for `query` again (DIR, LIST, DAYS, START, SIZE,
// NEXT as they apply), every value URL-encoded; `continuation` replaces the
// query's own NEXT ("" leaves it out). Begins with "?".
std::string ListQueryString(const ListQuery& query, const std::string& continuation);
