#include "i18n/date_text.h"

#include "i18n/page_text.h"
#include "platform/formatter.h"

namespace {

const char* const kMonths[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
const char* const kMonthKeys[12] = {"KV-LXR-12047", "KV-LXR-12048", "KV-LXR-12049", "KV-LXR-12050",
                                    "KV-LXR-12051", "KV-LXR-12052", "KV-LXR-12053", "KV-LXR-12054",
                                    "KV-LXR-12055", "KV-LXR-12056", "KV-LXR-12057", "KV-LXR-12058"};
const char* const kDays[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const char* const kDayKeys[7] = {"KV-LXR-12080", "KV-LXR-12081", "KV-LXR-12082", "KV-LXR-12083",
                                 "KV-LXR-12084", "KV-LXR-12085", "KV-LXR-12086"};

int Wrap(int value, int size) {
    int r = value % size;
    return r < 0 ? r + size : r;
}

std::string Name(const char* const* keys, const char* const* names, int index, bool english) {
    if (english) return names[index];
    return PageText(Lang, keys[index], names[index]).buffer;
}

}  // namespace

std::string MonthName(int month, bool english) {
    return Name(kMonthKeys, kMonths, Wrap(month, 12), english);
}

std::string DayName(int day, bool english) {
    return Name(kDayKeys, kDays, Wrap(day, 7), english);
}

std::string DateText(const struct tm& utc, bool english) {
    // A formatter of its own, so that a caller's prtFormatter text survives.
    CKvFormatter format;
    return format.sprintf("%s, %ld %s %ld %02ld:%02ld:%02ld GMT", DayName(utc.tm_wday, english),
                          static_cast<long>(utc.tm_mday), MonthName(utc.tm_mon, english),
                          static_cast<long>(utc.tm_year) + 1900L, static_cast<long>(utc.tm_hour),
                          static_cast<long>(utc.tm_min), static_cast<long>(utc.tm_sec));
}
