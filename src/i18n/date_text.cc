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

namespace {

// Appends `value` as "%0<width>ld" writes it.
void AppendNumber(std::string& out, long value, int width) {
    char digits[24];
    char* end = digits + sizeof digits;
    char* p = end;
    unsigned long magnitude = value < 0 ? 0UL - static_cast<unsigned long>(value) : value;
    do {
        *--p = static_cast<char>('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    int length = static_cast<int>(end - p) + (value < 0 ? 1 : 0);
    if (value < 0) out += '-';
    if (length < width) out.append(static_cast<size_t>(width - length), '0');
    out.append(p, end);
}

}  // namespace

std::string DateText(const struct tm& utc, bool english) {
    // Put together as "%s, %ld %s %ld %02ld:%02ld:%02ld GMT" formats it, but
    // directly: a page has a date on every history line.
    std::string text = DayName(utc.tm_wday, english);
    std::string month = MonthName(utc.tm_mon, english);
    text.reserve(text.size() + month.size() + 32);
    text += ", ";
    AppendNumber(text, utc.tm_mday, 0);
    text += ' ';
    text += month;
    text += ' ';
    AppendNumber(text, static_cast<long>(utc.tm_year) + 1900L, 0);
    text += ' ';
    AppendNumber(text, utc.tm_hour, 2);
    text += ':';
    AppendNumber(text, utc.tm_min, 2);
    text += ':';
    AppendNumber(text, utc.tm_sec, 2);
    text += " GMT";
    return text;
}
