// Reading the locale text a translator is opened for, and the names under
// which a catalogue stores locales and keys; shared by the program and the
// API library, so it needs nothing of ICU. The text may be a single tag
// ("de", "de-DE") or a whole accept-list as browsers send it
// ("fr,de;q=0.8,en-US;q=0.001"); the catalogue tries its entries in order.
#pragma once

#include <string>
#include <vector>

// The entries of `text` in the order they are to be tried: by quality, best
// first, entries of equal quality in their written order. Each entry is given
// in the catalogue's file-name form: language in lower case, script in title
// case, region in upper case, joined with "_" ("de-de" -> "de_DE",
// "zh-hant-tw" -> "zh_Hant_TW"); variants and extensions are dropped. "*"
// stays "*". Parameters other than "q" are ignored ("de; b=2" is "de"); an
// unreadable quality counts as 1, quality 0 removes the entry; an entry that
// is not a language tag is skipped, so no entry can name a path. A null or
// empty text gives no entries.
std::vector<std::string> PreferredLocales(const char* text);

// The next more general locale: "de_CH" -> "de" -> "". Traditional Chinese
// stops short of the Simplified "zh": "zh_Hant_TW" and "zh_TW" -> "zh_Hant"
// -> "".
std::string ParentLocale(const std::string& name);

// The first of `wanted` (PreferredLocales' entries), or one of its parents,
// that has a compiled bundle <tree><name>.res, or "". English is what the
// callers' defaults already say, so an English entry (or "*") without a
// bundle of its own ends the search with "".
std::string FirstLocaleWithFile(const std::string& tree, const std::vector<std::string>& wanted);

// The resource key under which `key` is stored. ICU table keys hold only
// invariant characters, while the program's keys may carry a trailing blank
// ("KV-LXR-12200 ") and prompts used as keys start with "#" ("#Account
// Status"). Letters, digits and "-" stay as they are; every other byte
// becomes "_" and two upper-case hex digits: "KV-LXR-12200 " ->
// "KV-LXR-12200_20", "#Account Status" -> "_23Account_20Status".
std::string CatalogueKey(const char* key);
