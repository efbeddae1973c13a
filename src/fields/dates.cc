#include "fields/dates.h"

#include <cstdio>
#include <cstring>

#include "fields/field_model.h"
#include "fields/field_util.h"
#include "i18n/date_text.h"
#include "platform/output_profile.h"

using fields::kStampLength;
using fields::SkipBlanks;

namespace {

// The six fields of `stamp` as "%4d%2d%2d%2d%2d%2d" reads them. Stamps are
// fourteen digits and are read here directly; any other text goes through
// sscanf, whose reading (blanks, signs, short fields) stays exactly as it was.
bool ScanStamp(const char* stamp, int fields[6]) {
    static const int kWidths[6] = {4, 2, 2, 2, 2, 2};
    const char* p = stamp;
    for (int i = 0; i < 6; ++i) {
        int value = 0;
        for (int k = 0; k < kWidths[i]; ++k, ++p) {
            if (*p < '0' || *p > '9') {
                return std::sscanf(stamp, "%4d%2d%2d%2d%2d%2d", &fields[0], &fields[1], &fields[2],
                                   &fields[3], &fields[4], &fields[5]) == 6;
            }
            value = value * 10 + (*p - '0');
        }
        fields[i] = value;
    }
    return true;
}

// The text after a value's stamp and the blanks that follow it.
const char* AfterStamp(const char* value) {
    return SkipBlanks(value + kStampLength);
}

}  // namespace

namespace PA {
struct tm* GMTIME(const time_t* t, struct tm* out) {
    if (t == nullptr || out == nullptr) return nullptr;
    return gmtime_r(t, out);
}
}  // namespace PA

time_t ConvertDate(const char* stamp) {
    if (stamp == nullptr || std::strlen(stamp) < kStampLength || stamp[14] != 'Z') return 0;
    struct tm local = {};
    local.tm_isdst = -1;
    int f[6] = {};
    if (!ScanStamp(stamp, f)) return 0;
    local.tm_year = f[0] - 1900;
    local.tm_mon = f[1] - 1;
    local.tm_mday = f[2];
    local.tm_hour = f[3];
    local.tm_min = f[4];
    local.tm_sec = f[5];
    time_t t = mktime(&local);
    if (t == 0 || t == -1) return 0;
    struct tm utc;
    if (PA::GMTIME(&t, &utc) == nullptr) return 0;
    // The UTC breakdown carries no daylight saving, so in a zone that is on
    // summer time t2 is measured without it and the result lands one hour
    // early. Stored dates have always been read this way; do not correct it.
    time_t t2 = mktime(&utc);
    return t - (t2 - t);
}

std::string OutDate(const char* stamp) {
    if (stamp == nullptr || std::strlen(stamp) < kStampLength) return "";
    time_t t = ConvertDate(stamp);
    if (t == 0 || t == -1) return "";
    struct tm utc;
    if (PA::GMTIME(&t, &utc) == nullptr) return "";
    // The text only ever reaches the browser's date reader (LocalDate,
    // InsertLocalDate2), which knows the English names alone; the strict
    // profile gives it those, so that translated pages show real dates.
    return DateText(utc, StrictOutput());
}

std::string NextToken(const char*& cursor) {
    if (cursor == nullptr) return "";
    cursor = SkipBlanks(cursor);
    std::string word = fields::TakeWord(cursor);
    cursor = SkipBlanks(cursor);
    return word;
}

void DateSomething(const char* value, const char* label) {
    value = SkipBlanks(value);
    if (value == nullptr || *value == '\0') {
        prtFormatter.printf("%s\n", tagNotSet);
        return;
    }
    std::string date = OutDate(value);
    if (date.empty()) {
        prtFormatter.printf("<span class=\"INNERPROMPT\">%s&nbsp;</span>", label);
        prtFormatter.printf("%s\n", OutText(value));
        return;
    }
    prtFormatter.printf("<span class=\"INNERPROMPT\">%s&nbsp;</span>\n", tagWhen);
    fields::WriteLocalDate(date);
    if (std::strlen(value) <= kStampLength) return;
    prtFormatter.printf("<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>%s&nbsp;</span>", label);
    prtFormatter.printf("%s", OutText(AfterStamp(value)));
}

void outSomethingDateSomething(const char* value, const char* firstLabel, const char* label) {
    value = SkipBlanks(value);
    if (value == nullptr || *value == '\0') {
        prtFormatter.printf("%s\n", tagNotSet);
        return;
    }
    if (firstLabel != nullptr && *firstLabel != '\0') {
        prtFormatter.printf("<span class=\"INNERPROMPT\">%s&nbsp;</span>\n", firstLabel);
    }
    const char* rest = value;
    prtFormatter.printf("%s", OutText(fields::TakeWord(rest)));
    rest = SkipBlanks(rest);
    if (*rest == '\0') return;
    std::string date = OutDate(rest);
    if (date.empty()) {
        prtFormatter.printf("<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>%s&nbsp;</span>", label);
        prtFormatter.printf("%s\n", OutText(rest));
        return;
    }
    prtFormatter.printf("<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>%s&nbsp;</span>\n", tagWhen);
    fields::WriteLocalDate(date);
    if (std::strlen(rest) <= kStampLength) return;
    prtFormatter.printf("<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>%s&nbsp;</span>", label);
    prtFormatter.printf("%s\n", OutText(AfterStamp(rest)));
}
