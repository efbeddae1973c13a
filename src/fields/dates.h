// Directory time stamps (YYYYMMDDhhmmssZ, UTC), their display, and the word
// scanner the handlers take values apart with.
#pragma once

#include <ctime>
#include <string>

namespace PA {
// Thread-safe UTC breakdown (gmtime_r); null on failure.
struct tm* GMTIME(const time_t* t, struct tm* out);
}  // namespace PA

// Seconds since the epoch for a stamp (words after it are ignored), 0 when
// it is not one: shorter than 15 bytes, no "Z" at the 15th, fields that do not
// scan, or an instant mktime gives as 0 or -1 (so the epoch itself). The
// fields are read as local time and the zone offset measured at that instant
// is taken back out; in a zone on summer time the result is therefore one
// hour early. Stored dates have always been read so; kept.
time_t ConvertDate(const char* stamp);
// "Wed, 5 Jan 2005 10:20:30 GMT" with translated names, or "".
std::string OutDate(const char* stamp);
// The next blank-separated word at the cursor; moves the cursor past it and
// the blanks after it. A null cursor gives "".
std::string NextToken(const char*& cursor);
// Prints a "date rest" value: tagWhen and the date shown in the browser's
// local time, then `label` and the rest. A value that is not a date is
// printed after `label` as it stands; an empty one shows tagNotSet.
void DateSomething(const char* value, const char* label);
// Prints a "word date rest" value: `firstLabel` (when not empty) and the word,
// then the date and the rest as DateSomething does. The output differs from
// DateSomething's in blanks and newlines, as the pages always have.
void outSomethingDateSomething(const char* value, const char* firstLabel, const char* label);
