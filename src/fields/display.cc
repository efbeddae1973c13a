#include "fields/display.h"

#include <cctype>
#include <cstring>
#include <string>

#include "fields/dates.h"
#include "fields/field_model.h"
#include "fields/field_util.h"
#include "fields/redirect_entry.h"
#include "platform/output_profile.h"

using fields::kStampLength;
using fields::Put;
using fields::SkipBlanks;
using fields::TakeWord;
using fields::Trimmed;

namespace {

// The read-only "comment" span and the text after it, when text is left.
void WriteReadOnlyComment(const char* rest) {
    if (*rest == '\0') return;
    prtFormatter.printf("<span class=\"INNERPROMPTRO\">&nbsp;&nbsp;<wbr>%s&nbsp;</span>%s",
                        tagComment, OutText(rest));
}

void WriteStatusLabel() {
    prtFormatter.printf("<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>%s&nbsp;</span>", tagStatus);
}

void WriteAddress(const char* rest) {
    if (*rest == '\0') return;
    prtFormatter.printf("<span class=\"INNERPROMPT\">&nbsp;&nbsp;<wbr>%s&nbsp;</span>%s", tagIP,
                        OutText(rest));
}

}  // namespace

void outStandard(const char* value, int, bool, bool) {
    value = Trimmed(value);
    prtFormatter.printf("%s\n", *value ? OutText(value) : tagNotSet);
}

void outImmediateChange(const char* value, int, bool, bool) {
    value = Trimmed(value);
    if (*value == '\0') {
        prtFormatter.printf("%s\n", tagNO);
    } else {
        prtFormatter.printf("%s - %s\n", tagYES, OutText(value));
    }
}

void outDateComment(const char* value, int, bool, bool) {
    DateSomething(value, tagComment.c_str());
}

void outDateIP(const char* value, int, bool, bool) {
    DateSomething(value, tagIP.c_str());
}

void outCountDateIP(const char* value, int, bool, bool) {
    outSomethingDateSomething(value, tagTimes.c_str(), tagIP.c_str());
}

void outSomethingDateIP(const char* value, int, bool, bool) {
    outSomethingDateSomething(value, nullptr, tagIP.c_str());
}

void outCountComment(const char* value, int, bool, bool) {
    value = Trimmed(value);
    if (*value == '\0') {
        prtFormatter.printf("%s", tagNotSet);
        return;
    }
    prtFormatter.printf("<span class=\"INNERPROMPTRO\">%s&nbsp;</span>", tagTimes);
    prtFormatter.printf("%s", OutText(TakeWord(value)));
    WriteReadOnlyComment(SkipBlanks(value));
}

void outDaysOverride(const char* value, int, bool, bool) {
    value = Trimmed(value);
    if (*value == '\0') {
        prtFormatter.printf("%s", tagUseConfig);
        return;
    }
    // Leading zeros are dropped, so a stored "0" (never) collects nothing.
    std::string days;
    for (; *value && !std::isspace(static_cast<unsigned char>(*value)); ++value) {
        if (*value != '0' || !days.empty()) days += *value;
    }
    if (days.empty()) {
        prtFormatter.printf("%s", tagNever);
    } else {
        prtFormatter.printf("<span class=\"INNERPROMPTRO\">%s&nbsp;</span>", tagDays);
        prtFormatter.printf("%s", OutText(days));
    }
    WriteReadOnlyComment(SkipBlanks(value));
}

void outDateStatusIP(const char* value, int, bool, bool) {
    value = Trimmed(value);
    if (*value == '\0') {
        prtFormatter.printf("%s\n", tagNotSet);
        return;
    }
    std::string date = OutDate(value);
    if (date.empty()) {
        WriteStatusLabel();
        prtFormatter.printf("%s", OutText(TakeWord(value)));
        WriteAddress(SkipBlanks(value));
        return;
    }
    prtFormatter.printf("<span class=\"INNERPROMPT\">%s&nbsp;</span>\n", tagWhen);
    fields::WriteLocalDate(date);
    if (std::strlen(value) <= kStampLength) return;
    const char* rest = SkipBlanks(value + kStampLength);
    WriteStatusLabel();
    // The status word also names its style class (STATUSFAILED, STATUSSUCCESS).
    std::string status = TakeWord(rest);
    prtFormatter.printf("<span class=\"STATUS%s\">%s</span>\n", OutAttr(status), OutText(status));
    WriteAddress(SkipBlanks(rest));
}

void outHistory(const char* value, int, bool, bool) {
    value = Trimmed(value);
    if (*value == '\0') {
        Put("    W.document.write('<tr><td width=\"100%\" valign=\"middle\">');\n");
        prtFormatter.printf("    W.document.write('%s');\n", tagNotSet);
        Put("    W.document.writeln('</td></tr>');\n");
        return;
    }
    std::string date = OutDate(value);
    std::string status, address, rest;
    const char* cursor = value;
    bool more = true;
    if (!date.empty()) {
        more = std::strlen(value) > kStampLength;
        if (more) cursor = SkipBlanks(value + kStampLength);
    }
    if (more) {
        std::string word = NextToken(cursor);
        // The status word is markup of ours around the directory's word.
        status =
            OutScript("<span class=\"STATUS" + OutAttr(word) + "\">" + OutText(word) + "</span>");
        address = OutScriptHtml(NextToken(cursor));
        rest = OutScriptHtml(cursor);
    }
    // Written into the body of ShowDetail_NAME, whose LogEntry writes the
    // texts into the document as markup; by default they go into the script
    // strings unescaped, as they always have.
    prtFormatter.printf("    LogEntry(W, '%s', '%s', '%s', '%s');\n", date, status, address, rest);
}

void outGenRedirect(const char* value, int, bool first, bool last) {
    value = Trimmed(value);
    if (*value == '\0') {
        prtFormatter.printf("%s\n", tagNotSet);
        return;
    }
    if (first) fields::WriteRedirectHead(false);
    fields::RedirectEntry entry = fields::ReadRedirectEntry(value);
    Put("<tr>\n");
    prtFormatter.printf("<td nowrap><span class=\"INNERPROMPT\">%s&nbsp;</span></td>\n",
                        OutText(entry.label));
    prtFormatter.printf("<td align=\"center\" nowrap>%s</td>\n", OutText(entry.target));
    fields::WriteRedirectTail(entry);
    if (last) Put("</table>\n");
}
