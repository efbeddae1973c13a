#include "fields/redirect_entry.h"

#include "fields/dates.h"
#include "fields/field_util.h"
#include "i18n/page_text.h"
#include "platform/output_profile.h"

namespace fields {

RedirectEntry ReadRedirectEntry(const char* value) {
    RedirectEntry entry;
    const char* cursor = value;
    entry.key = NextToken(cursor);
    entry.date = NextToken(cursor);
    entry.address = NextToken(cursor);
    entry.comment = NextToken(cursor);
    if (!entry.date.empty()) entry.date = OutDate(entry.date.c_str());
    if (!entry.key.empty()) {
        std::string::size_type equals = entry.key.find('=');
        if (equals != std::string::npos) {
            entry.target = entry.key.substr(equals + 1);
            entry.key.erase(equals);
        }
        // Keys are catalogue keys so that a catalogue can name each redirect.
        entry.label = PageText(Lang, entry.key.c_str(), entry.key.c_str()).buffer;
    }
    return entry;
}

void WriteRedirectHead(bool clearColumn) {
    Put("<table width=\"100%\">\n");
    Put("<thead>\n");
    if (clearColumn) prtFormatter.printf("<th width=\"1%%\">%s</th>\n", tagClear);
    Put("<th width=\"1%\"></th>\n");
    Put("<th width=\"1%\"></th>\n");
    prtFormatter.printf("<th align=\"center\" width=\"1%%\">%s</th>\n", tagWhen);
    prtFormatter.printf("<th align=\"center\" width=\"1%%\">%s</th>\n", tagIP);
    prtFormatter.printf("<th>%s</th>\n", tagComment);
    Put("</thead>\n");
}

void WriteRedirectTail(const RedirectEntry& entry) {
    if (!entry.date.empty()) {
        Put("<td nowrap>\n");
        Put("<SCRIPT LANGUAGE=\"JavaScript\">\n");
        Put("<!--\n");
        prtFormatter.printf("    InsertLocalDate2('%s');\n", entry.date);
        Put("//-->\n");
        Put("</SCRIPT>\n");
        Put("</td>\n");
    }
    prtFormatter.printf("<td>%s</td>\n", OutText(entry.address));
    prtFormatter.printf("<td>%s</td>\n", OutText(entry.comment));
    Put("</tr>\n");
}

}  // namespace fields
