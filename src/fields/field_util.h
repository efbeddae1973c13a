// Internal helpers shared by the handler families: raw writes, blank
// skipping, catalogue look-ups that survive a missing translator, and the
// fragment lists' appenders. Not part of the subsystem's interface.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "fields/field_model.h"
#include "platform/formatter.h"
#include "state/request_state.h"

namespace fields {

// Writes `text` as it stands: a "%" in it is never taken for a conversion.
void Put(const char* text);

// A directory stamp, YYYYMMDDhhmmssZ; a value longer than this carries more
// words after it.
constexpr size_t kStampLength = 15;

// The word at `p`; `p` is left on the byte after it, blanks not skipped.
std::string TakeWord(const char*& p);

// The first byte at or after `p` that isspace() rejects; null stays null.
const char* SkipBlanks(const char* p);

// `p` past its leading blanks, or "" for null, so handlers never see null.
const char* Trimmed(const char* p);

// The five script lines that show the GMT text `date` in the browser's local
// time, then the "(local)" label when the catalogue gives one.
void WriteLocalDate(const std::string& date);

// Formats one script fragment with the shared formatter and appends a copy
// to `list` (the formatter's own text is overwritten by the next call).
template <class... A>
void AddFragment(std::vector<std::string>& list, const char* format, const A&... args) {
    list.emplace_back(prtFormatter.sprintf(format, args...));
}

}  // namespace fields
