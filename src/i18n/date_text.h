// The names of months and days, and the date text the pages give the
// browser's date reader. Both the script library and the date handlers write
// them, so the catalogue keys are listed once, here.
#pragma once

#include <ctime>
#include <string>

// The abbreviated name of `month` (0 for January) or `day` (0 for Sunday),
// from Lang (KV-LXR-12047 to 12058, KV-LXR-12080 to 12086), or the English
// name when `english` is true or no translator exists yet. Out-of-range
// numbers wrap.
std::string MonthName(int month, bool english);
std::string DayName(int day, bool english);

// "Wed, 5 Jan 2005 10:20:30 GMT" for the broken-down UTC time `utc`, with the
// names as MonthName and DayName give them.
std::string DateText(const struct tm& utc, bool english);
