// Directory time stamps (YYYYMMDDhhmmssZ, UTC), their display, and the word
// scanner the handlers take values apart with.
#pragma once

#include <ctime>
#include <string>

namespace PA {
// Thread-safe UTC breakdown (gmtime_r); null on failure.
struct tm* GMTIME(const time_t* t, struct tm* out);
}  // namespace PA

// Seconds since the epoch for a stamp, 0 when it is not one.
time_t ConvertDate(const char* stamp);
// "Wed, 5 Jan 2005 10:20:30 GMT" with translated names, or "".
std::string OutDate(const char* stamp);
// The next blank-separated word at the cursor; moves the cursor past it and
// the blanks after it. A null cursor gives "".
std::string NextToken(const char*& cursor);
// Prints a "date rest" value.
void DateSomething(const char* value, const char* label);
// Prints a "word date rest" value.
void outSomethingDateSomething(const char* value, const char* firstLabel, const char* label);
