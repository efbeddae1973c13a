// The three operations of the administration API in C++ terms, over a
// configuration and a set of stores. The C boundary (api.cc) adds the
// buffers; tests call these directly with in-memory stores.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "config.h"
#include "status.h"
#include "store.h"
#include "translation.h"

namespace lxrapi {

// The role's directories as a UserDirectories document.
Status GetDirectories(const Config& config, std::string_view identity, std::string* reply);

// One user as a User document. `userPath` is "directory identifier/user",
// split at the FIRST "/" (identifiers never hold one, so the user part may);
// an empty identifier searches every directory of the role in order. The user
// part is a DN below the directory's base or a name matched exactly, without
// regard to (ASCII) case, against the directory's naming attributes.
// The reply takes at most `room` bytes: long histories lose their oldest
// entries to fit (reply_fit.h), and at most `config.historyLimit` entries of
// each history are shown. `attributeCount` receives the number of Attribute
// elements in the reply. The disabled reasons are written in the language of
// `words`.
Status ReadUser(const Config& config, StoreProvider& stores, std::string_view identity,
                std::string_view administratorPath, std::string_view userPath, size_t room,
                std::string* reply, int* attributeCount, const Translator& words = Translator());

// Applies an update document in one transaction, all or nothing, and records
// it in the store's audit trail. Checks every attribute and group against the
// role (kAccessDenied) and every value against its format (kBadRequest)
// before anything is written.
Status WriteUser(const Config& config, StoreProvider& stores, std::string_view identity,
                 std::string_view administratorPath, std::string_view document);

}  // namespace lxrapi
