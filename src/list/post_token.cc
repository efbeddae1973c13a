#include "post_token.h"

#include <nettle/hmac.h>
#include <nettle/memops.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

std::string Mac(const std::string& secret, const TokenSubject& subject, long long issued) {
    // Each part ends in a NUL, which none of them can hold, so that no two
    // subjects run together into the same text.
    std::string text = "LXRList";
    for (const std::string* part : {&subject.dn, &subject.path, &subject.role}) {
        text += '\0';
        text += *part;
    }
    text += '\0';
    text += std::to_string(issued);
    hmac_sha256_ctx ctx;
    hmac_sha256_set_key(&ctx, secret.size(), reinterpret_cast<const uint8_t*>(secret.data()));
    hmac_sha256_update(&ctx, text.size(), reinterpret_cast<const uint8_t*>(text.data()));
    uint8_t digest[SHA256_DIGEST_SIZE];
    hmac_sha256_digest(&ctx, sizeof digest, digest);
    static const char hex[] = "0123456789abcdef";
    std::string out;
    for (uint8_t b : digest) {
        out += hex[b >> 4];
        out += hex[b & 15];
    }
    return out;
}

}  // namespace

bool ReadTokenSecret(const char* defaultFile, std::string& secret, std::string& problem) {
    secret.clear();
    const char* named = std::getenv("LXR_LIST_SECRET");
    std::string file = named && *named ? named : (defaultFile ? defaultFile : "");
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        problem = "cannot read the post secret " + file;
        return false;
    }
    std::string read((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (read.size() < kMinSecretSize) {
        problem = "the post secret " + file + " holds fewer than " +
                  std::to_string(kMinSecretSize) + " bytes";
        return false;
    }
    secret = read;
    return true;
}

std::string MakeToken(const std::string& secret, const TokenSubject& subject, time_t issued) {
    long long when = static_cast<long long>(issued);
    return std::to_string(when) + "." + Mac(secret, subject, when);
}

bool CheckToken(const std::string& secret, const TokenSubject& subject, const std::string& token,
                time_t now) {
    if (secret.size() < kMinSecretSize) return false;
    size_t dot = token.find('.');
    if (dot == std::string::npos || dot == 0 || dot > 12) return false;
    long long issued = 0;
    for (size_t i = 0; i < dot; ++i) {
        if (token[i] < '0' || token[i] > '9') return false;
        issued = issued * 10 + (token[i] - '0');
    }
    long long current = static_cast<long long>(now);
    if (issued > current + 60 || current - issued > kTokenLifetime) return false;
    std::string expected = Mac(secret, subject, issued);
    std::string given = token.substr(dot + 1);
    return given.size() == expected.size() &&
           memeql_sec(given.data(), expected.data(), expected.size()) != 0;
}
