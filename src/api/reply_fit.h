// Fitting a user document into the room the caller offers. A user under a
// password-guessing attack collects thousands of login-history entries, and
// that is exactly the user the helpdesk must be able to open; so a reply that
// would not fit loses its oldest history entries, never the user.
#pragma once

#include <cstddef>
#include <string>

#include "documents.h"
#include "status.h"

namespace lxrapi {

// Writes `view` as a User document of at most `room` bytes into `out`.
// First each history (login history, password-services log) is cut to its
// `historyLimit` newest entries. If the document is still longer than
// `room`, history entries are left out oldest first, taken across both
// histories together, until it fits; only when no history entry is left are
// redirects left out, oldest first, down to the newest one (a page that
// shows no redirect posts an empty field, and the write reads that as
// "remove them all"). Entries that stay keep their stored
// order. Age is the entry's stamp (a history entry's first word, a
// redirect's second); an entry without a readable stamp counts as older than
// every dated one, and of two equal stamps the later stored one is older
// (stores list the newest first). The DN, the disabled reasons and every
// other value are always complete: when they alone (with the newest
// redirect) exceed `room`, fails
// with kBufferTooSmall and leaves `out` empty.
Status WriteFittedUserDocument(UserView view, size_t room, int historyLimit, std::string* out);

}  // namespace lxrapi
