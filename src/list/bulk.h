// The bulk actions of the list page. Each selected user is read and then
// changed by one update document of its own, the document the user's page
// would post had the administrator made that one change there: every user
// is changed all-or-nothing and audited as a change on the user's page.
#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "cgi/fields.h"

enum class BulkKind { kUnlock, kEnable, kMustChange };

// One action: its word in the post, and the attributes it changes.
struct BulkAction {
    BulkKind kind;
    const char* word;           // posted as ACTION
    const char* attributes[2];  // null-padded
};
extern const BulkAction kBulkActions[3];

// The action posted as `word`, or null.
const BulkAction* FindBulkAction(const std::string& word);

// One attribute of the user's document as the change needs it.
struct CurrentValue {
    std::string name;
    bool write = false;
    std::string value;  // the first value, or "" when it has none
};

// The fields the user's page would post for `action`, given the user's DN
// and attributes as read: LXR-USERDN, then for
//   unlock:     each failure counter that is set, above zero and writable,
//               reset to "0 <now>" (the page's reset-to-now choice);
//   enable:     each disable date that is set and writable, cleared to "";
//   mustchange: the immediate-change flag, when writable and not yet set,
//               as "YES via LXRAdmin" (the page's text when no comment is
//               typed).
// False when nothing would change: no document is written then.
bool BulkFields(const BulkAction& action, const std::string& dn,
                const std::vector<CurrentValue>& attributes, time_t now, FieldMap& fields);

// Reads the DN and the attributes (name, write, first value) from a user
// document; false when it cannot be read.
bool ReadCurrentValues(const char* document, std::string& dn, std::vector<CurrentValue>& values);

// What happened to one selected user.
struct BulkOutcome {
    std::string userPath;
    enum Result { kChanged, kUnchanged, kFailed } result = kFailed;
    std::string message;  // the API's message or the text for its result
};

// Runs `action` for each of `userPaths`: LXRAdminRead, BulkFields,
// BuildUpdateDocument, LXRAdminWrite. One user's failure does not stop the
// others.
std::vector<BulkOutcome> RunBulkAction(const BulkAction& action,
                                       const std::vector<std::string>& userPaths,
                                       const char* identity, const std::string& adminPath);
