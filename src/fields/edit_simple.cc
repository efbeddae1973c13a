#include "fields/edit_simple.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "fields/field_util.h"
#include "i18n/page_text.h"
#include "platform/output_profile.h"

using fields::AddFragment;
using fields::Put;
using fields::SkipBlanks;
using fields::Trimmed;

namespace {

// The leading decimal number of a stored count or days word, as atol reads
// it (later words ignored), but with a defined result for huge numbers: they
// are clamped, and so match no option.
long LeadingNumber(const char* text) {
    return std::strtol(text, nullptr, 10);
}

const char* Selected(bool on) {
    return on ? " SELECTED" : "";
}

// The options 1 to 365 of a day list, days and whole weeks interleaved, as
// "<OPTION VALUE=\"%ld\"%s>%ld %s\n" writes them, with none selected. A page
// has two such lists in the same units, and making the text was most of the
// page's cost, so it is made once per process and again only when the units
// change.
struct DayOptions {
    std::string units[4];  // tagDay, tagDays, tagWeek, tagWeeks as made
    std::unique_ptr<char[]> text;
    size_t size = 0;
    size_t valueEnd[366] = {};  // per day count: the offset after its VALUE
};

// Writes `n` (1 to 999) in decimal at `p` and returns the end.
char* WriteSmallNumber(char* p, long n) {
    if (n >= 100) *p++ = static_cast<char>('0' + n / 100);
    if (n >= 10) *p++ = static_cast<char>('0' + n / 10 % 10);
    *p++ = static_cast<char>('0' + n % 10);
    return p;
}

// Writes the option of `days` at `p`, with room for it, and returns its
// end; `valueEnd` receives the end of its VALUE.
char* WriteDayOption(char* p, long days, long count, const std::string& unit, char** valueEnd) {
    static const char kHead[] = "<OPTION VALUE=\"";
    std::memcpy(p, kHead, sizeof kHead - 1);
    p = WriteSmallNumber(p + sizeof kHead - 1, days);
    *p++ = '"';
    *valueEnd = p;
    *p++ = '>';
    p = WriteSmallNumber(p, count);
    *p++ = ' ';
    std::memcpy(p, unit.data(), unit.size());
    p += unit.size();
    *p++ = '\n';
    return p;
}

const DayOptions& CurrentDayOptions() {
    static DayOptions list;
    const std::string* units[4] = {&tagDay, &tagDays, &tagWeek, &tagWeeks};
    bool same = list.text != nullptr;
    for (int i = 0; i < 4 && same; ++i) same = list.units[i] == *units[i];
    if (same) return list;
    size_t longest = 0;
    for (int i = 0; i < 4; ++i) {
        list.units[i] = *units[i];
        longest = std::max(longest, units[i]->size());
    }
    // An option is at most 26 bytes besides its unit.
    list.text.reset(new char[365 * (26 + longest)]);
    char* begin = list.text.get();
    char* p = begin;
    for (long n = 1; n <= 365; ++n) {
        bool week = n % 7 == 0;
        long count = week ? n / 7 : n;
        const std::string& unit =
            week ? (count == 1 ? tagWeek : tagWeeks) : (count == 1 ? tagDay : tagDays);
        char* valueEnd = nullptr;
        p = WriteDayOption(p, n, count, unit, &valueEnd);
        list.valueEnd[n] = static_cast<size_t>(valueEnd - begin);
    }
    list.size = static_cast<size_t>(p - begin);
    return list;
}

// The day options with `days` selected when it is one of them.
void WriteDayOptions(long days) {
    const DayOptions& list = CurrentDayOptions();
    const char* text = list.text.get();
    if (days < 1 || days > 365) {
        prtFormatter.write(text, list.size);
        return;
    }
    size_t at = list.valueEnd[days];
    prtFormatter.write(text, at);
    Put(Selected(true));
    prtFormatter.write(text + at, list.size - at);
}

const char kDaysMove[] =
    "if (document.DisplayForm.elements['%s_DAYS'].value == '')\n"
    "        document.PostForm.elements['%s'].value = '';\n"
    "    else\n"
    "    if (document.DisplayForm.elements['%s_COMMENT'].value == '')\n"
    "        document.PostForm.elements['%s'].value = \n"
    "           document.DisplayForm.elements['%s_DAYS'].value;\n"
    "    else\n"
    "        document.PostForm.elements['%s'].value = \n"
    "           document.DisplayForm.elements['%s_DAYS'].value + ' ' +\n"
    "           document.DisplayForm.elements['%s_COMMENT'].value;\n";

const char kDaysEdit[] =
    "CommentChecked((document.DisplayForm.elements['%s_DAYS'].value.length == 0), "
    "document.DisplayForm.elements['%s_COMMENT'])";

const char kImmediateEdit[] =
    "CommentChecked(!document.DisplayForm.elements['%s'].checked, "
    "document.DisplayForm.elements['%s_COMMENT'])";

const char kImmediateMove[] =
    "if (document.DisplayForm.elements['%s'].checked)\n"
    "        if (document.DisplayForm.elements['%s_COMMENT'].value.length == 0)\n"
    "            document.PostForm.elements['%s'].value = 'YES via LXRAdmin';\n"
    "        else\n"
    "            document.PostForm.elements['%s'].value = \n"
    "                document.DisplayForm.elements['%s_COMMENT'].value;\n"
    "    else\n"
    "        document.PostForm.elements['%s'].value = '';\n";

// One labelled password row of the reset table.
void WritePasswordRow(const char* key, const char* defaultText, const char* input,
                      const char* name) {
    PageText label(Lang, key, defaultText);
    Put("<tr>\n");
    Put("<td width=\"1\" nowrap>\n");
    prtFormatter.printf("<nobr><span class=\"INNERPROMPT\">%s&nbsp;</span></nobr>\n", label.buffer);
    Put("</td>\n");
    Put("<td nowrap>\n");
    prtFormatter.printf(input, name);
    Put("</td>\n");
    Put("</tr>\n");
}

}  // namespace

Finisher inStandard(const char* name, const char* value, int, bool, bool) {
    // The value goes out exactly as received, leading blanks and all.
    prtFormatter.printf("<INPUT TYPE=\"TEXT\" NAME=\"%s\" VALUE=\"%s\" size=\"30\">", OutAttr(name),
                        OutAttr(value));
    // Any attribute without a handler of its own comes here, so its name is
    // the directory's and is escaped like its value.
    AddFragment(DataMoves, "SimpleMove('%s');\n", OutScript(name));
    return nullptr;
}

Finisher inCount(const char* name, const char* value, int, bool, bool) {
    long count = LeadingNumber(Trimmed(value));
    prtFormatter.printf("<SELECT NAME=\"%s\" SIZE=\"1\">\n", name);
    prtFormatter.printf("<OPTION VALUE=\"\"%s>0\n", Selected(count == 0));
    for (long k = 1; k <= 5; ++k) {
        prtFormatter.printf("<OPTION VALUE=\"%ld\"%s>%ld\n", k, Selected(k == count), k);
    }
    Put("</SELECT>\n");
    AddFragment(DataMoves, "SimpleMove('%s');\n", name);
    return nullptr;
}

Finisher inDaysOverride(const char* name, const char* value, int, bool, bool) {
    const char* cursor = Trimmed(value);
    std::string word = fields::TakeWord(cursor);
    const char* comment = SkipBlanks(cursor);
    long days = 0;
    if (!word.empty()) {
        days = LeadingNumber(word.c_str());
    }

    prtFormatter.printf("<SELECT NAME=\"%s_DAYS\" SIZE=\"1\">\n", name);
    prtFormatter.printf("<OPTION VALUE=\"\"%s>%s\n", Selected(word.empty()), tagUseConfig);
    prtFormatter.printf("<OPTION VALUE=\"0\"%s>%s\n", Selected(!word.empty() && days == 0),
                        tagNever);
    // Days and whole weeks interleaved; every VALUE is a number of days.
    WriteDayOptions(days);
    Put("</SELECT>\n");
    prtFormatter.printf("<span class=\"INNERPROMPT\">&nbsp;&nbsp;%s&nbsp;</span>", tagComment);
    prtFormatter.printf(
        "<INPUT TYPE=\"TEXT\" NAME=\"%s_COMMENT\" VALUE=\"%s\" SIZE=\"20\" MAXLENGTH=\"20\">\n",
        name, OutAttr(comment));
    AddFragment(DataMoves, kDaysMove, name, name, name, name, name, name, name, name);
    // A comment may only be given together with a number of days.
    AddFragment(DataEdits, kDaysEdit, name, name);
    return nullptr;
}

Finisher inImmediateChange(const char* name, const char* value, int, bool, bool) {
    value = Trimmed(value);
    prtFormatter.printf("<INPUT TYPE=\"CHECKBOX\" NAME=\"%s\" VALUE=\"YES\"%s>\n", name,
                        *value ? " CHECKED" : "");
    prtFormatter.printf("<span class=\"INNERPROMPT\">&nbsp;%s&nbsp;</span>", tagComment);
    // The stored flag text is its comment.
    prtFormatter.printf(
        "<INPUT TYPE=\"TEXT\" NAME=\"%s_COMMENT\" VALUE=\"%s\" SIZE=\"30\" MAXLENGTH=\"30\">\n",
        name, OutAttr(value));
    AddFragment(DataEdits, kImmediateEdit, name, name);
    AddFragment(DataMoves, kImmediateMove, name, name, name, name, name, name);
    return nullptr;
}

Finisher inPassword(const char* name, const char*, int, bool, bool) {
    // Both boxes start empty: the current password never reaches the page.
    Put("<table width=\"100%\" border=\"0\">\n");
    WritePasswordRow("KV-LXR-12044", "New Password",
                     "<nobr><INPUT TYPE=\"PASSWORD\" NAME=\"%s\" VALUE=\"\" size=\"32\" "
                     "maxlength=\"32\"></nobr>",
                     name);
    WritePasswordRow("KV-LXR-12045", "Confirm Password",
                     "<nobr><INPUT TYPE=\"PASSWORD\" NAME=\"%s_CONFIRM\" VALUE=\"\" size=\"32\" "
                     "maxlength=\"32\"></nobr>",
                     name);
    Put("</table>\n");
    AddFragment(DataEdits, "PasswordCompare('%s')", name);
    AddFragment(DataMoves, "SimpleMove('%s');\n", name);
    return nullptr;
}
