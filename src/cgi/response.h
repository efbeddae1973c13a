// The response header block, redirects and the response character set.
#pragma once

#include <string>
#include <vector>

#include "state/request_state.h"

// Chooses charsetUsed from HTTP_ACCEPT_CHARSET. Called once, before output.
// Unset, or naming "UTF-8" anywhere (any case, any quality): "UTF-8".
// Otherwise the best entry of the upper-cased header by SortAcceptHeader, or
// "UTF-8" when every entry is refused.
void SetCharSet();

// `text` without its control characters (below 0x20, and 0x7F), for a header
// line: a CR or LF from a decoded argument, a catalogue entry or the request
// must never end the line and start a header of its own. Every header value
// that HTTPHeader and Redirect write passes through it; ordinary values come
// out unchanged. Null gives "".
std::string HeaderValue(const char* text);

// Writes "Status: ...\nContent-Type: text/html;charset=...\n\n" once; in the
// strict output profile X-Frame-Options and a frame-ancestors policy stand
// before the blank line.
void HTTPHeader(const char* status);

// Writes a whole 302 response (headers only) to `url`. A "<NAME>" in `url`
// becomes Args[NAME] URL-encoded, or stays as written when Args has no NAME;
// an unclosed "<NAME" at the end takes Args[NAME] raw (entering it into Args),
// an asymmetry kept on purpose. A non-empty `query` follows after "?" (or "&"
// when the target has a "?"), URL-encoded when `encodeQuery`. Neither tests
// nor sets bOutputHTTPHeader: callers redirect before any page output.
void Redirect(const char* url, const char* query, bool encodeQuery);

// Appends the tags of an accept header to `result`, best quality first, ties
// in header order, duplicates kept. Entries are split at "," and not trimmed
// (" b" keeps its blank); a trailing "," ends the list. The quality is the
// value after the first "=" behind the ";" (any name), times 1000, truncated;
// an entry ending in ";", with no "=", or above 1000 is dropped, and quality 0
// (q below 0.001 included) is left out. Returns 0 for an empty header (nothing
// appended), else 1.
int SortAcceptHeader(std::string& header, std::vector<std::string>& result);
