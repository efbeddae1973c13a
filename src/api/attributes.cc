#include "attributes.h"

#include <ctime>
#include <string>

#include "clock.h"
#include "message.h"
#include "page_text.h"
#include "text.h"

namespace lxrapi {

const std::vector<AttributeInfo>& AttributeTable() {
    using S = Section;
    using F = ValueForm;
    static const std::vector<AttributeInfo> table = {
        {"kvlxrDisableUntil", "#Disabled Until", S::kStatus, F::kUntil, true},
        {"kvlxrDisableAfter", "#Disable After", S::kStatus, F::kStampComment, true},
        {"kvlxrMustLoginBy", "#Must Login By", S::kStatus, F::kStampComment, true},
        {"kvlxrAccountInactivityDays", "#Inactivity Limit", S::kStatus, F::kDaysComment, true},
        {"kvlxrBaseDate", "#Base Date", S::kStatus, F::kStampComment, true},
        {"kvlxrInactivityWarning", "#Inactivity Warning", S::kStatus, F::kStampComment, false},
        {"kvlxrNextAction", "#Next Action", S::kStatus, F::kStampComment, false},
        {"kvlxrImmediateChange", "#Change Password at Next Login", S::kStatus, F::kFlag, true},
        {"userPassword", "#Password", S::kPassword, F::kPassword, true},
        {"kvlxrLastPasswordChange", "#Last Password Change", S::kPassword, F::kStampComment, false},
        {"kvlxrExpirePasswordDays", "#Password Lifetime", S::kPassword, F::kDaysComment, true},
        {"kvlxrGraceLoginsUsed", "#Grace Logins Used", S::kPassword, F::kCountComment, true},
        {"kvlxrHistory", "#Password History", S::kPassword, F::kSecret, false},
        {"kvlxrFailureCount", "#Failure Count", S::kActivity, F::kCountStampAddress, true},
        {"kvlxrRealmBasedFailureCount", "#Realm Failure Count", S::kActivity, F::kCountStampAddress,
         true},
        {"kvfpsLockoutCounter", "#Lockout Counter", S::kActivity, F::kCountStampAddress, true},
        {"kvlxrMaxFailures", "#Most Failures", S::kActivity, F::kCountStampAddress, false},
        {"kvlxrFailuresSinceLastLogin", "#Failures Since Last Login", S::kActivity,
         F::kCountStampAddress, false},
        {"kvlxrFailuresSincePreviousLogin", "#Failures Since Previous Login", S::kActivity,
         F::kCountStampAddress, false},
        {"kvlxrTotalFailures", "#Total Failures", S::kActivity, F::kCount, false},
        {"kvlxrTotalLogins", "#Total Logins", S::kActivity, F::kCount, false},
        {"kvlxrLastLogin", "#Last Login", S::kActivity, F::kStampAddress, false},
        {"kvlxrPreviousLogin", "#Previous Login", S::kActivity, F::kStampAddress, false},
        {"kvlxrLoginHistory", "#Login History", S::kActivity, F::kHistoryEntry, true},
        {"kvfpsLog", "#Password Services Log", S::kActivity, F::kHistoryEntry, true},
        {"kvlxrGenerationalRedirects", "#Redirects", S::kRedirects, F::kRedirect, true},
    };
    return table;
}

const AttributeInfo* FindAttribute(std::string_view name) {
    for (const AttributeInfo& info : AttributeTable())
        if (EqualsNoCase(info.name, name)) return &info;
    return nullptr;
}

bool IsHistory(const AttributeInfo& info) {
    return info.form == ValueForm::kHistoryEntry;
}

const char* SectionName(Section section) {
    switch (section) {
        case Section::kStatus:
            return "status";
        case Section::kPassword:
            return "password";
        case Section::kActivity:
            return "activity";
        case Section::kRedirects:
            return "redirects";
    }
    return "";
}

const char* SectionPrompt(Section section) {
    switch (section) {
        case Section::kStatus:
            return "#Account Status";
        case Section::kPassword:
            return "#Password";
        case Section::kActivity:
            return "#Activity and History";
        case Section::kRedirects:
            return "#Redirects";
    }
    return "";
}

namespace {

constexpr size_t kMaxValue = 1024;
constexpr size_t kMaxCountDigits = 9;

bool IsStamp(std::string_view word) {
    std::time_t when;
    return ParseStamp(word, &when);
}

bool IsCount(std::string_view word) {
    return AllDigits(word) && word.size() <= kMaxCountDigits;
}

// An address as the login services record it: IPv4, IPv6 or a host name.
bool IsAddress(std::string_view word) {
    if (word.empty() || word.size() > 255) return false;
    for (char c : word) {
        bool ok = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                  c == '.' || c == ':' || c == '-' || c == '_' || c == '%' || c == '[' || c == ']';
        if (!ok) return false;
    }
    return true;
}

// A status word of a history entry selects a style class: letters, digits, "_" and "-".
bool IsStatusWord(std::string_view word) {
    if (word.empty() || word.size() > 32) return false;
    for (char c : word) {
        bool ok = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                  c == '_' || c == '-';
        if (!ok) return false;
    }
    return true;
}

// KEY=TARGET: a key of letters, digits, ".", "_" and "-" (it is also a
// catalogue key on the page), then a non-empty target.
bool IsRedirectPair(std::string_view word) {
    size_t eq = word.find('=');
    if (eq == std::string_view::npos || eq == 0 || eq + 1 == word.size()) return false;
    for (char c : word.substr(0, eq)) {
        bool ok = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                  c == '.' || c == '_' || c == '-';
        if (!ok) return false;
    }
    return true;
}

bool CheckForm(ValueForm form, std::string_view value) {
    std::string_view rest = value;
    std::string_view first = TakeWord(rest);
    switch (form) {
        case ValueForm::kText:
        case ValueForm::kFlag:
        case ValueForm::kSecret:
        case ValueForm::kPassword:
            return true;
        case ValueForm::kCount:
            return IsCount(first) && rest.empty();
        case ValueForm::kStampComment:
            return IsStamp(first);
        case ValueForm::kUntil:
            return IsStamp(first) || first == "FOREVER";
        case ValueForm::kStampAddress:
            return IsStamp(first) && (rest.empty() || (IsAddress(rest) && Words(rest).size() == 1));
        case ValueForm::kCountStampAddress: {
            if (!IsCount(first)) return false;
            if (rest.empty()) return true;
            if (!IsStamp(TakeWord(rest))) return false;
            if (rest.empty()) return true;
            return IsAddress(TakeWord(rest)) && rest.empty();
        }
        case ValueForm::kCountComment:
        case ValueForm::kDaysComment:
            return IsCount(first);
        case ValueForm::kHistoryEntry: {
            if (!IsStamp(first) || !IsStatusWord(TakeWord(rest))) return false;
            return IsAddress(TakeWord(rest));
        }
        case ValueForm::kRedirect: {
            if (!IsRedirectPair(first)) return false;
            if (rest.empty()) return true;
            if (!IsStamp(TakeWord(rest))) return false;
            return rest.empty() || IsAddress(TakeWord(rest));
        }
    }
    return false;
}

}  // namespace

Status ValidateValue(const AttributeInfo& info, std::string_view value) {
    // The rejected value is shown (cut, and with the characters that the
    // program's pages cannot take as '?') so the administrator sees which.
    auto bad = [&](Say why) {
        return Status::BadRequest(Words(why, info.name, Quoted(value, 80)));
    };
    if (value.size() > kMaxValue) return bad(Say::ValueTooLong);
    size_t at = FindPageBreaker(value);
    if (at != std::string_view::npos)
        return Status::BadRequest(Words(Say::ValueHoldsCharacter, info.name, Quoted(value, 80),
                                        CharacterCode(static_cast<unsigned char>(value[at]))));
    if (Trim(value).empty()) return bad(Say::ValueBlank);
    if (!CheckForm(info.form, value)) return bad(Say::ValueNotInFormat);
    return Status::OK();
}

size_t CommentStart(ValueForm form, std::string_view value) {
    size_t fixedWords = 0;
    switch (form) {
        case ValueForm::kStampComment:
        case ValueForm::kUntil:
        case ValueForm::kCountComment:
        case ValueForm::kDaysComment:
            fixedWords = 1;
            break;
        case ValueForm::kRedirect:
            fixedWords = 3;  // KEY=TARGET, stamp, address
            break;
        default:
            return std::string_view::npos;
    }
    size_t at = 0;
    auto blank = [&](size_t i) { return value[i] == ' ' || value[i] == '\t'; };
    for (size_t word = 0; word < fixedWords; ++word) {
        while (at < value.size() && blank(at)) ++at;
        while (at < value.size() && !blank(at)) ++at;
    }
    return at;
}

std::string StoredForm(const AttributeInfo& info, std::string_view value) {
    size_t comment = CommentStart(info.form, value);
    if (comment == std::string_view::npos) return std::string(value);
    return TypographicApostrophes(value, comment);
}

}  // namespace lxrapi
