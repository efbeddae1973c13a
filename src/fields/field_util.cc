#include "fields/field_util.h"

#include <cctype>

#include "i18n/language.h"

namespace fields {

void Put(const char* text) {
    prtFormatter.printf("%s", text);
}

const char* SkipBlanks(const char* p) {
    if (p == nullptr) return p;
    while (*p && std::isspace(static_cast<unsigned char>(*p))) ++p;
    return p;
}

std::string TakeWord(const char*& p) {
    const char* start = p;
    while (*p && !std::isspace(static_cast<unsigned char>(*p))) ++p;
    return std::string(start, p);
}

const char* Trimmed(const char* p) {
    return p == nullptr ? "" : SkipBlanks(p);
}

void WriteLocalDate(const std::string& date) {
    prtFormatter.printf(R"(<SCRIPT LANGUAGE="JavaScript">
<!--
    document.write(LocalDate('%s'));
//-->
</SCRIPT>
)",
                        date);
    if (!tagLocal.empty()) prtFormatter.printf("<span class=\"LOCALLABEL\">%s</span>", tagLocal);
}

}  // namespace fields
