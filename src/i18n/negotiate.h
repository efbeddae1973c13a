// The choice of the display language for one request.
#pragma once

// Creates the process-wide translators Lang and LangWithID for `application`
// ("LXRAdmin") from, in this order: the language cookie (the cookie named by
// HTTP_LANGUAGECOOKIE, else "KVLOCALE"), the agent's HTTP_KV_LANGUAGE and
// HTTP_KV_COUNTRY, and HTTP_ACCEPT_LANGUAGE with the agent's fallback
// HTTP_KV_LANGUAGE1 / HTTP_KV_COUNTRY1 appended at the lowest quality. With
// no source at all, translators that already exist are kept; otherwise both
// are created for the empty locale (the English defaults). Reports nothing.
void SetLanguage(const char* application);
