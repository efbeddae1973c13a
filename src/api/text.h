// Small text helpers shared by the library: case folding, trimming, words and
// the comparison key of a distinguished name.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lxrapi {

// ASCII lower case; other bytes (UTF-8 included) are kept. Names typed by an
// administrator are matched with this fold, as the store's own lower() does.
std::string Lower(std::string_view text);

bool EqualsNoCase(std::string_view a, std::string_view b);

// Drops blanks, tabs, CR and LF at both ends (or only at the end).
std::string_view Trim(std::string_view text);
std::string_view TrimRight(std::string_view text);

// Splits at runs of blanks and tabs; no empty words.
std::vector<std::string_view> Words(std::string_view text);

// Takes the first word off `text` and returns it; `text` keeps the rest,
// leading blanks removed.
std::string_view TakeWord(std::string_view& text);

// The key under which a DN is compared: lower case, without the blanks that
// may stand around "," and "=". "uid=A, O=Org" and "uid=a,o=org" have one key.
std::string DnKey(std::string_view dn);

// True when `dn` names an entry strictly below `base` (both compared by key).
bool IsBelow(std::string_view dn, std::string_view base);

bool AllDigits(std::string_view text);

// Every "%" followed by two hex digits replaced by that byte; anything else,
// "+" and a "%" without two hex digits included, kept as it stands.
std::string DecodePercent(std::string_view text);

}  // namespace lxrapi
