#include "fields/edit_date.h"

#include <cstring>
#include <string>

#include "fields/dates.h"
#include "fields/display.h"
#include "fields/field_util.h"
#include "platform/output_profile.h"

using fields::AddFragment;
using fields::Put;
using fields::Trimmed;

namespace {

// The onClick scripts keep the row's status icon NAME_IMAGE in step with the
// radio choice. Disable-after and must-login-by share the head (a date in the
// past disables the user) and differ only in the blanks of their last branch,
// which the pages have always carried.
const char kPastDateClickHead[] =
    "if (document.DisplayForm.elements['%s'][0].checked)  "
    "if (GetDate('%s').valueOf() < Now().valueOf()) {    "
    "document.DisplayForm.elements['%s_IMAGE'].src='../korvelagent/dmspages/Disabled.gif';     "
    "document.DisplayForm.elements['%s_IMAGE'].title='%s';  "
    "} else {    "
    "document.DisplayForm.elements['%s_IMAGE'].src='../korvelagent/dmspages/Blank.gif';    "
    "document.DisplayForm.elements['%s_IMAGE'].title=''; ";

const char kDisableAfterClickTail[] =
    "}else{   "
    "document.DisplayForm.elements['%s_IMAGE'].src='../korvelagent/dmspages/Blank.gif';   "
    "document.DisplayForm.elements['%s_IMAGE'].title='';}";

const char kMustLoginByClickTail[] =
    "}else {   "
    "document.DisplayForm.elements['%s_IMAGE'].src='../korvelagent/dmspages/Blank.gif';   "
    "document.DisplayForm.elements['%s_IMAGE'].title=''; }";

// A date in the future, or the forever choice, disables the user.
const char kDisableUntilClick[] =
    "if (document.DisplayForm.elements['%s'][0].checked)     "
    "if (GetDate('%s').valueOf() > Now().valueOf())    {       "
    "document.DisplayForm.elements['%s_IMAGE'].src='../korvelagent/dmspages/Disabled.gif';        "
    "document.DisplayForm.elements['%s_IMAGE'].title='%s';     "
    "}    else    {       "
    "document.DisplayForm.elements['%s_IMAGE'].src='../korvelagent/dmspages/Blank.gif';        "
    "document.DisplayForm.elements['%s_IMAGE'].title='';     "
    "}else    if (document.DisplayForm.elements['%s'][1].checked)     {        "
    "document.DisplayForm.elements['%s_IMAGE'].src='../korvelagent/dmspages/Disabled.gif';         "
    "document.DisplayForm.elements['%s_IMAGE'].title='%s';     "
    "}    else    {       "
    "document.DisplayForm.elements['%s_IMAGE'].src='../korvelagent/dmspages/Blank.gif';       "
    "document.DisplayForm.elements['%s_IMAGE'].title='';     "
    "} ";

const char kScheduleEdit[] =
    "(document.DisplayForm.elements['%s'][0].checked) && InvalidDate('%s')";

const char kScheduleMove[] =
    "if (document.DisplayForm.elements['%s'][0].checked)\n"
    "        document.PostForm.elements['%s'].value = ConvertDate('%s');\n"
    "    else\n"
    "        document.PostForm.elements['%s'].value = '';\n";

const char kDisableUntilMove[] =
    "if (document.DisplayForm.elements['%s'][0].checked)\n"
    "        document.PostForm.elements['%s'].value = ConvertDate('%s');\n"
    "    else\n"
    "    if (document.DisplayForm.elements['%s'][1].checked)\n"
    "        document.PostForm.elements['%s'].value = 'FOREVER ' + "
    "document.DisplayForm.elements['%s_COMMENT'].value;\n"
    "    else\n"
    "        document.PostForm.elements['%s'].value = '';\n";

enum class ResetKind { kDateComment, kCountDate };

// Keep the current value, or reset it to the page's one instant `Now`.
Finisher ResetToNow(ResetKind kind, const char* name, const char* value) {
    value = Trimmed(value);
    if (*value == '\0') {
        // An unset value gets no control; its hidden field keeps "".
        prtFormatter.printf("%s\n", tagNotSet);
        return nullptr;
    }
    Put("<table border=\"0\">\n");
    Put("<tr>");
    Put("<td width=\"1\">\n");
    prtFormatter.printf("<INPUT TYPE=\"RADIO\" NAME=\"%s\" VALUE=\"%s\" CHECKED>", name,
                        OutAttr(value));
    Put("</td>\n");
    Put("<td>");
    if (kind == ResetKind::kDateComment) {
        DateSomething(value, tagComment.c_str());
    } else {
        outCountDateIP(value, 0, true, true);
    }
    Put("</td>\n");
    Put("</tr>\n");

    struct tm utc = {};
    PA::GMTIME(&Now, &utc);
    Put("<tr>");
    Put("<td width=\"1\">\n");
    prtFormatter.printf(
        kind == ResetKind::kDateComment ? "<INPUT TYPE=\"RADIO\" NAME=\"%s\" "
                                          "VALUE=\"%04ld%02ld%02ld%02ld%02ld%02ldZ\">"
                                        : "<INPUT TYPE=\"RADIO\" NAME=\"%s\" "
                                          "VALUE=\"0 %04ld%02ld%02ld%02ld%02ld%02ldZ\">",
        name, static_cast<long>(utc.tm_year) + 1900, static_cast<long>(utc.tm_mon) + 1,
        static_cast<long>(utc.tm_mday), static_cast<long>(utc.tm_hour),
        static_cast<long>(utc.tm_min), static_cast<long>(utc.tm_sec));
    Put("</td>\n");
    Put("<td>");
    prtFormatter.printf("<span class=\"INNERPROMPT\">%s</span>\n", tagNow);
    Put("</td>\n");
    Put("</tr>\n");
    Put("</table>\n");
    AddFragment(DataMoves, "RadioMove('%s', 2);\n", name);
    return nullptr;
}

enum class Schedule { kDisableAfter, kMustLoginBy, kDisableUntil };

std::string ClickScript(Schedule kind, const char* name) {
    if (kind == Schedule::kDisableUntil) {
        return prtFormatter.sprintf(kDisableUntilClick, name, name, name, name, tagDisabled, name,
                                    name, name, name, name, tagDisabled, name, name);
    }
    std::string format = kPastDateClickHead;
    format += kind == Schedule::kDisableAfter ? kDisableAfterClickTail : kMustLoginByClickTail;
    return prtFormatter.sprintf(format.c_str(), name, name, name, name, tagDisabled, name, name,
                                name, name);
}

// A date chosen through DateEntry, not set, and for disable-until also
// forever. The radio group NAME is addressed by position in the scripts:
// [0] the date, then forever when offered, then not set.
Finisher ScheduleDate(Schedule kind, const char* name, const char* value) {
    value = Trimmed(value);
    Put("<table border=\"0\">\n");
    std::string date = OutDate(value);
    Put("<tr>");
    std::string click = ClickScript(kind, name);
    prtFormatter.printf(
        "<td width=\"1\"><INPUT TYPE=\"RADIO\" NAME=\"%s\" VALUE=\"%s\" onClick=\"%s\"%s></td>\n",
        name, OutAttr(value), click, date.empty() ? "" : " CHECKED");
    Put("<td>\n");
    Put("<SCRIPT LANGUAGE=\"JavaScript\">\n");
    Put("<!--\n");
    prtFormatter.printf("    DateEntry('%s', '%s', \"%s\");\n", name, date, click);
    Put("//-->\n");
    Put("</SCRIPT>\n");

    // Only the word after the stamp is offered as the comment; later words
    // are not shown.
    const char* cursor = value;
    std::string firstWord = NextToken(cursor);
    std::string comment = NextToken(cursor);
    prtFormatter.printf("<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>%s</span>", tagComment);
    prtFormatter.printf(
        "<INPUT TYPE=\"TEXT\" NAME=\"%s_COMMENT\" VALUE=\"%s\" SIZE=\"20\" MAXLENGTH=\"20\">", name,
        OutAttr(comment));
    Put("</td></tr>\n");

    bool forever = kind == Schedule::kDisableUntil && firstWord == "FOREVER";
    Put("<tr>");
    if (kind == Schedule::kDisableUntil) {
        prtFormatter.printf(
            "<td width=\"1\"><INPUT TYPE=\"RADIO\" NAME=\"%s\" VALUE=\"FOREVER\" onClick=\"%s\" "
            "%s></td>\n",
            name, click, date.empty() && forever ? " CHECKED" : "");
        prtFormatter.printf("<td><span class=\"INNERPROMPT\">%s</span></td>\n", tagForever);
        Put("</tr>");
        Put("<tr>");
    }
    prtFormatter.printf(
        "<td width=\"1\"><INPUT TYPE=\"RADIO\" NAME=\"%s\" VALUE=\"\" onClick=\"%s\" %s></td>\n",
        name, click, date.empty() && !forever ? " CHECKED" : "");
    prtFormatter.printf("<td><span class=\"INNERPROMPT\">%s</span></td>\n", tagNotSet);
    Put("</tr>");
    Put("</table>\n");

    AddFragment(DataEdits, kScheduleEdit, name, name);
    if (kind == Schedule::kDisableUntil) {
        AddFragment(DataMoves, kDisableUntilMove, name, name, name, name, name, name, name);
    } else {
        AddFragment(DataMoves, kScheduleMove, name, name, name, name);
    }
    return nullptr;
}

}  // namespace

Finisher inDateCommentOrNow(const char* name, const char* value, int, bool, bool) {
    return ResetToNow(ResetKind::kDateComment, name, value);
}

Finisher inCountDateOrNow(const char* name, const char* value, int, bool, bool) {
    return ResetToNow(ResetKind::kCountDate, name, value);
}

Finisher inDisableAfter(const char* name, const char* value, int, bool, bool) {
    return ScheduleDate(Schedule::kDisableAfter, name, value);
}

Finisher inMustLoginBy(const char* name, const char* value, int, bool, bool) {
    return ScheduleDate(Schedule::kMustLoginBy, name, value);
}

Finisher inDisableUntil(const char* name, const char* value, int, bool, bool) {
    return ScheduleDate(Schedule::kDisableUntil, name, value);
}
