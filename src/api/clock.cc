#include "clock.h"

#include <cstdio>
#include <cstdlib>

#include "text.h"

namespace lxrapi {

std::time_t Now() {
    const char* fixed = std::getenv("LXR_NOW");
    if (fixed && AllDigits(fixed) && std::char_traits<char>::length(fixed) < 19)
        return static_cast<std::time_t>(std::strtoll(fixed, nullptr, 10));
    return std::time(nullptr);
}

namespace {
int Digits(std::string_view s, size_t at, size_t n) {
    int v = 0;
    for (size_t i = at; i < at + n; ++i) v = v * 10 + (s[i] - '0');
    return v;
}
bool IsLeap(int y) {
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}
}  // namespace

bool ParseStamp(std::string_view word, std::time_t* when) {
    if (word.size() != 15 || word[14] != 'Z' || !AllDigits(word.substr(0, 14))) return false;
    int year = Digits(word, 0, 4), month = Digits(word, 4, 2), day = Digits(word, 6, 2);
    int hour = Digits(word, 8, 2), minute = Digits(word, 10, 2), second = Digits(word, 12, 2);
    static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (year < 1971 || month < 1 || month > 12 || day < 1) return false;
    int monthDays = kDays[month - 1] + (month == 2 && IsLeap(year) ? 1 : 0);
    if (day > monthDays || hour > 23 || minute > 59 || second > 59) return false;
    std::tm tm{};
    tm.tm_year = year - 1900;
    tm.tm_mon = month - 1;
    tm.tm_mday = day;
    tm.tm_hour = hour;
    tm.tm_min = minute;
    tm.tm_sec = second;
    *when = timegm(&tm);
    return true;
}

std::string FormatStamp(std::time_t when) {
    std::tm tm{};
    gmtime_r(&when, &tm);
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02dZ", tm.tm_year + 1900, tm.tm_mon + 1,
                  tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
    return text;
}

std::string FormatReadable(std::time_t when) {
    std::tm tm{};
    gmtime_r(&when, &tm);
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d UTC", tm.tm_year + 1900,
                  tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min);
    return text;
}

}  // namespace lxrapi
