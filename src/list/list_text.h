// The list page's own texts: the catalogue tree "LXRList", keys
// "KV-LXR-13nnn", each with its English default at the place of use. The
// texts the page shares with the user pages (dates, API messages) stay with
// the program's translators Lang and LangWithID.
#pragma once

#include <string>

#include "i18n/language.h"

// The translator of the list page; created by OpenListText, never freed.
extern CLanguage* ListLang;

// Creates ListLang for the locale Lang was negotiated for (the English
// defaults when Lang does not exist).
void OpenListText();

// The text for `key`, or `english`.
std::string ListText(const char* key, const char* english);

// The text for `key` with "{0}" filled with `argument`.
std::string ListText(const char* key, const std::string& argument, const char* english);
