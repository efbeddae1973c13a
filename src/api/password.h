// New passwords: the rules they must meet and the one-way form they are
// stored in. A clear-text password is never stored, logged or echoed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config.h"
#include "status.h"

namespace lxrapi {

// Checks `password` against the rules; `userNames` are the user's naming
// values (uid, cn, ...), refused inside the password when the rules say so.
// Fails with kBadRequest; the message never contains the password.
Status CheckPassword(const PasswordRules& rules, std::string_view password,
                     const std::vector<std::string>& userNames);

// The stored form: "{ARGON2}$argon2id$..." or "{CRYPT}$6$...", with a fresh
// random salt. Fails with kUpdateFailed when hashing fails.
Status HashPassword(const PasswordRules& rules, std::string_view password, std::string* stored);

// True when `password` matches a stored form made by HashPassword.
bool VerifyPassword(std::string_view stored, std::string_view password);

}  // namespace lxrapi
