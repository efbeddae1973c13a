// The password-services attributes that the API shows and changes: their
// display order, sections, prompts, whether the page can edit them, and the
// forms their values take.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "status.h"

namespace lxrapi {

// How a value is written, as stored and as posted by the page.
enum class ValueForm {
    kText,               // any one-line text
    kFlag,               // non-empty text means set (kvlxrImmediateChange)
    kCount,              // a decimal count
    kStampComment,       // stamp, then an optional comment
    kUntil,              // stamp or FOREVER, then an optional comment
    kStampAddress,       // stamp, then an optional address
    kCountStampAddress,  // count, then an optional stamp, then an optional address
    kCountComment,       // count, then an optional comment
    kDaysComment,        // days (0 = never), then an optional comment
    kHistoryEntry,       // stamp, status word, address, then any rest
    kRedirect,           // KEY=TARGET, then an optional stamp, address and comment
    kSecret,             // never returned (kvlxrHistory: former password hashes)
    kPassword,           // a new password; checked by the password rules instead
};

enum class Section { kStatus, kPassword, kActivity, kRedirects };

struct AttributeInfo {
    const char* name;    // the directory attribute's name, as shown
    const char* prompt;  // "#" + English label, so catalogues can translate it
    Section section;
    ValueForm form;
    bool editable;  // the page offers a control for it
};

// All attributes, in the order the user document lists them.
const std::vector<AttributeInfo>& AttributeTable();

// The table row for `name` (without regard to case), or null.
const AttributeInfo* FindAttribute(std::string_view name);

// True for the two login histories, whose empty element means "clear".
bool IsHistory(const AttributeInfo& info);

// The section's name and translatable prompt.
const char* SectionName(Section section);
const char* SectionPrompt(Section section);

// Checks one non-empty value against its attribute's form. Fails with
// kBadRequest and a message naming the attribute, the value and the first
// character at fault. Characters that could end the page text a value is
// shown in (page_text.h) are refused for every form, so no stamp, count,
// address, redirect target or comment can hold them. kPassword is not judged
// here (see password.h).
Status ValidateValue(const AttributeInfo& info, std::string_view value);

// Where the free comment of a value of `form` begins: the offset behind the
// words the form fixes (one for the stamp, until, count and days forms; three,
// KEY=TARGET, stamp and address, for redirects), or npos for forms without a
// comment.
size_t CommentStart(ValueForm form, std::string_view value);

// The value as it is checked and stored: an apostrophe typed in the comment
// becomes the typographic U+2019, which the pages can show, instead of being
// refused. Apostrophes anywhere else are left for ValidateValue to refuse.
std::string StoredForm(const AttributeInfo& info, std::string_view value);

}  // namespace lxrapi
