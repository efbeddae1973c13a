// Request input: the query string and the posted body as field maps, and the
// two URL codings the rest of the program uses.
#pragma once

#include <string>

#include "state/request_state.h"

// Largest request body read, in bytes (1 MiB). The declared CONTENT_LENGTH is
// trusted only up to this: a longer one is cut to it, a negative or
// non-numeric one counts as 0, so a forged header never makes us allocate or
// wait for more. Our forms post a few hundred bytes.
constexpr long kMaxBodyLength = 1024 * 1024;

// Form decoding, byte by byte: "+" is a blank, "%hh" a byte (either case).
// Malformed escapes are never rejected: "%" before a non-digit is dropped and
// the character kept ("%zz" -> "zz"); a second character that is no digit
// adds nothing but is consumed ("%4z" -> "@"); a "%" at the very end adds
// nothing. Never reads past the NUL. A null text gives "".
std::string URLDecode(const char* text);

// Encodes a UTF-8 text for a URL query, one code point at a time: 128..247
// as "%" and lower-case hex ("%e9"); other letters and digits as one byte
// (their low eight bits, kept so for letters beyond U+00FF); white space as
// "+"; anything else as "%" and at least two upper-case hex digits ("%2F",
// "%2014"). A null text gives "".
std::string URLEncode(const char* utf8Text);

// Splits `data` at "&" into `fields`, skipping empty pieces. `data` is
// modified: each "&" that ends a piece becomes a NUL and stays so; the "=" of
// a pair is cut while it is read and put back. Names lose every blank and tab
// and are not decoded; a piece without "=" is a name with the empty value.
// Values are URL-decoded when `decode` is true. When the data holds
// "LXRENC=<charset>&", every value (LXRENC's own included) is converted from
// that character set into UTF-8; an unknown set leaves the values as they
// are. A later name overwrites an earlier one, without regard to case. A null
// `data` adds nothing.
void addToFields(FieldMap& fields, char* data, bool decode);

// Adds every pair of `query` (may be null) to Args, values URL-decoded, names
// not. Every "=" after the first in a pair is dropped ("a=b=c" stores "bc").
// A pair named LXRAdminARGS (any case) is decoded and parsed again into Args,
// but only when an "&" ends it: callers that want it expanded end it with "&".
void ParseQueryString(const char* query);

// Reads the request body from standard input into PostData: its length from
// HTTP_CONTENT_LENGTH, else CONTENT_LENGTH (capped, see kMaxBodyLength); a
// shorter body keeps what arrived. Values are decoded only when the content
// type (HTTP_CONTENT_TYPE, else CONTENT_TYPE) is exactly
// "application/x-www-form-urlencoded" without regard to case; a type with
// parameters counts as another type and its values are stored as posted.
void GetFields();

// The query that leads back to the selection page: every argument of Args
// but USERDIR and USER, in map order, "?" before the first and "&" before the
// others, each "name" or "name=value" as decoded (not re-encoded, as the
// pages have always written it; URL-encoded in the strict output profile).
// "" when no other argument exists.
std::string ReturnQuery();
