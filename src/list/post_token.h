// The token that binds a bulk post to the administrator who was shown the
// list: an HMAC-SHA256, under a secret of this installation, of the
// administrator's DN, path and role and the time the list page was written.
// A page of another site cannot read the token from our page, so it cannot
// forge a post that carries one; a token copied from another administrator's
// page fails for this one, and an old token expires.
#pragma once

#include <ctime>
#include <string>

// How long a list page's bulk form may be posted, in seconds.
constexpr long kTokenLifetime = 2 * 60 * 60;
// The least secret accepted, in bytes.
constexpr size_t kMinSecretSize = 32;

// Who the token speaks for.
struct TokenSubject {
    std::string dn;    // the agent's administrator DN
    std::string path;  // the administrator path built from the agent headers
    std::string role;  // HTTP_LXRADMIN
};

// Reads the installation's secret: the file named by LXR_LIST_SECRET, else
// `defaultFile`. False (with `secret` empty and `problem` saying why) when
// the file cannot be read or holds fewer than kMinSecretSize bytes: then no
// token is made or accepted.
bool ReadTokenSecret(const char* defaultFile, std::string& secret, std::string& problem);

// "<issued>.<64 hex digits>": the issue time in seconds and the HMAC.
std::string MakeToken(const std::string& secret, const TokenSubject& subject, time_t issued);

// True when `token` is one MakeToken gave for this subject and secret, issued
// no more than kTokenLifetime seconds before `now` and not after `now` by
// more than a minute (clocks of a server farm). Compared in constant time.
bool CheckToken(const std::string& secret, const TokenSubject& subject, const std::string& token,
                time_t now);
