// The library's clock and the directory's time stamps (YYYYMMDDhhmmssZ, UTC).
#pragma once

#include <ctime>
#include <string>
#include <string_view>

namespace lxrapi {

// Seconds since the epoch: LXR_NOW when it holds a decimal number (so that
// tests and demos see a fixed instant), else the system clock.
std::time_t Now();

// Reads the 15-character stamp at the start of `word` (the whole word must be
// the stamp). Returns false for anything else, including impossible dates.
bool ParseStamp(std::string_view word, std::time_t* when);

// The stamp of `when`, e.g. 20260601120000Z.
std::string FormatStamp(std::time_t when);

// A readable UTC date for reasons shown to administrators: 2026-06-01 12:00 UTC.
std::string FormatReadable(std::time_t when);

}  // namespace lxrapi
