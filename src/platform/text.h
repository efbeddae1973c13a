// Small tests on texts that more than one layer makes.
#pragma once

// True when `text` is non-null, non-empty and starts with "/", "http:" or
// "https:" (case-sensitive). A message that is a URL sends the browser there
// instead of being shown, so catalogue entries and API messages may name a
// page of the site's own.
bool IsURL(const char* text);
