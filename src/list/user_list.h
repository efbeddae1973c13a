// The API's answer to a list request: one page of users with the reasons
// each is listed for, and what the role may change in that directory.
#pragma once

#include <string>
#include <vector>

struct ListedUser {
    std::string name;  // the user's name as the directory shows it
    std::string dn;
    std::string userPath;              // DIRECTORY/USER, as LXRAdminRead takes it
    std::string lastLogin;             // a date stamp, or empty when never
    std::string failures;              // the failure count as the API wrote it
    std::vector<std::string> reasons;  // already in the caller's language
};

struct UserList {
    std::string directory;
    std::string list;
    std::string continuation;           // empty on the last page
    std::vector<std::string> writable;  // attribute names the role may change
    std::vector<ListedUser> users;
};

// Reads the reply document:
//   <UserList directory=".." list=".." continuation=".." writable="a b c">
//     <User name=".." dn=".." userPath=".." lastLogin=".." failures="N">
//       <Reason>text</Reason> ...
//     </User>  (or <User .../> without reasons)
//   </UserList>
// Text before "<UserList" is skipped; attributes come in any order, each at
// most once, raw up to the next quotation mark; a Reason is raw up to
// "</Reason>"; only white space may stand between elements and after the
// end. `writable` is split at blanks and commas. False with `fault` on the
// first byte that could not be read (the NUL when the text ends early) and
// `list` holding what was read before it.
bool ReadUserList(const char* document, UserList& list, const char*& fault);

// True when `attribute` is one of the list's writable names (any case).
bool Writable(const UserList& list, const char* attribute);
