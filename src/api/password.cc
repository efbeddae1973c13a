#include "password.h"

#include <argon2.h>
#include <crypt.h>
#include <sys/random.h>

#include <cstring>

#include "text.h"

namespace lxrapi {

namespace {
constexpr uint32_t kArgonTime = 2;
constexpr uint32_t kArgonMemoryKiB = 19 * 1024;
constexpr uint32_t kArgonLanes = 1;
constexpr size_t kSaltBytes = 16;
constexpr size_t kHashBytes = 32;
constexpr size_t kMinNameInPassword = 3;
}  // namespace

Status CheckPassword(const PasswordRules& rules, std::string_view password,
                     const std::vector<std::string>& userNames) {
    auto bad = [](Say why, int count = 0) {
        return Status::BadRequest(Words(why, std::to_string(count)));
    };
    if (password.size() < static_cast<size_t>(rules.minLength))
        return bad(Say::PasswordTooShort, rules.minLength);
    if (password.size() > static_cast<size_t>(rules.maxLength))
        return bad(Say::PasswordTooLong, rules.maxLength);
    int digits = 0, upper = 0, lower = 0, other = 0;
    for (unsigned char c : password) {
        if (c < 0x20 || c == 0x7f) return bad(Say::PasswordHoldsControl);
        if (c >= '0' && c <= '9')
            ++digits;
        else if (c >= 'A' && c <= 'Z')
            ++upper;
        else if (c >= 'a' && c <= 'z')
            ++lower;
        else
            ++other;
    }
    if (digits < rules.minDigits) return bad(Say::PasswordFewDigits, rules.minDigits);
    if (upper < rules.minUpper) return bad(Say::PasswordFewUpper, rules.minUpper);
    if (lower < rules.minLower) return bad(Say::PasswordFewLower, rules.minLower);
    if (other < rules.minOther) return bad(Say::PasswordFewOther, rules.minOther);
    if (rules.rejectUserName) {
        std::string folded = Lower(password);
        for (const std::string& name : userNames)
            for (std::string_view word : Words(name))
                if (word.size() >= kMinNameInPassword &&
                    folded.find(Lower(word)) != std::string::npos)
                    return bad(Say::PasswordHoldsName);
    }
    return Status::OK();
}

Status HashPassword(const PasswordRules& rules, std::string_view password, std::string* stored) {
    std::string clear(password);
    if (rules.scheme == "sha512-crypt") {
        char setting[CRYPT_GENSALT_OUTPUT_SIZE];
        if (!crypt_gensalt_rn("$6$", 0, nullptr, 0, setting, sizeof setting))
            return Status::UpdateFailed("The password could not be hashed (salt)");
        struct crypt_data data;
        std::memset(&data, 0, sizeof data);
        const char* hash = crypt_r(clear.c_str(), setting, &data);
        if (!hash || hash[0] == '*')
            return Status::UpdateFailed("The password could not be hashed");
        *stored = std::string("{CRYPT}") + hash;
        return Status::OK();
    }
    unsigned char salt[kSaltBytes];
    if (getrandom(salt, sizeof salt, 0) != static_cast<ssize_t>(sizeof salt))
        return Status::UpdateFailed("The password could not be hashed (no random salt)");
    size_t length = argon2_encodedlen(kArgonTime, kArgonMemoryKiB, kArgonLanes, kSaltBytes,
                                      kHashBytes, Argon2_id);
    std::string encoded(length, '\0');
    int rc =
        argon2id_hash_encoded(kArgonTime, kArgonMemoryKiB, kArgonLanes, clear.data(), clear.size(),
                              salt, sizeof salt, kHashBytes, encoded.data(), encoded.size());
    if (rc != ARGON2_OK)
        return Status::UpdateFailed(std::string("The password could not be hashed: ") +
                                    argon2_error_message(rc));
    encoded.resize(std::strlen(encoded.c_str()));
    *stored = "{ARGON2}" + encoded;
    return Status::OK();
}

bool VerifyPassword(std::string_view stored, std::string_view password) {
    std::string clear(password);
    if (stored.substr(0, 8) == "{ARGON2}") {
        std::string encoded(stored.substr(8));
        return argon2id_verify(encoded.c_str(), clear.data(), clear.size()) == ARGON2_OK;
    }
    if (stored.substr(0, 7) == "{CRYPT}") {
        std::string setting(stored.substr(7));
        struct crypt_data data;
        std::memset(&data, 0, sizeof data);
        const char* hash = crypt_r(clear.c_str(), setting.c_str(), &data);
        return hash && setting == hash;
    }
    return false;
}

}  // namespace lxrapi
