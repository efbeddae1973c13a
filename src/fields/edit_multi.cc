#include "fields/edit_multi.h"

#include "fields/display.h"
#include "fields/field_util.h"
#include "fields/redirect_entry.h"
#include "platform/output_profile.h"

using fields::AddFragment;
using fields::Put;
using fields::Trimmed;

namespace {

const char kHistoryMove[] =
    "if (document.DisplayForm.elements['%s'].checked)\n"
    "        document.PostForm.elements['%s'].value = '1';\n"
    "    else\n"
    "        document.PostForm.elements['%s'].value = '0';\n";

// Several entries share the field name, so each row addresses its own
// checkbox and hidden field by index; a single entry has no array to index.
const char kRedirectMoveIndexed[] =
    "if (document.DisplayForm.elements['%s'][%ld].checked)\n"
    "        document.PostForm.elements['%s'][%ld].value = '%s=0';\n"
    "    else\n"
    "        document.PostForm.elements['%s'][%ld].value = '%s';\n";

const char kRedirectMoveSingle[] =
    "if (document.DisplayForm.elements['%s'].checked)\n"
    "        document.PostForm.elements['%s'].value = '%s=0';\n"
    "    else\n"
    "        document.PostForm.elements['%s'].value = '%s';\n";

}  // namespace

Finisher inHistory(const char*, const char* value, int index, bool first, bool last) {
    // Entries are only shown; the one Clear box after the last one is the
    // attribute's only posted field.
    outHistory(value, index, first, last);
    return ResetHistory;
}

void ResetHistory(const char* name, int count) {
    if (count == 0) return;  // an empty history offers nothing to clear
    Put("<br><span class=\"INNERPROMPT\">");
    prtFormatter.printf("<INPUT TYPE=\"CHECKBOX\" NAME=\"%s\" VALUE=\"YES\">%s", name, tagClear);
    Put("</span>\n");
    AddOutputField(name, "0");
    // The server reads "1" as a request to clear the whole history.
    AddFragment(DataMoves, kHistoryMove, name, name, name);
}

Finisher inGenRedirect(const char* name, const char* value, int index, bool first, bool last) {
    value = Trimmed(value);
    if (*value == '\0') {
        prtFormatter.printf("%s\n", tagNotSet);
        return nullptr;
    }
    if (first) fields::WriteRedirectHead(true);
    fields::RedirectEntry entry = fields::ReadRedirectEntry(value);
    Put("<tr>\n");
    prtFormatter.printf("<td nowrap align=\"center\"><INPUT TYPE=\"CHECKBOX\" NAME=\"%s\"></td>\n",
                        name);
    prtFormatter.printf("<td nowrap><span class=\"INNERPROMPT\">%s&nbsp;</span></td>\n",
                        OutText(entry.label));
    prtFormatter.printf("<td align=\"center\" nowrap>%s</td>\n", OutText(entry.target));
    fields::WriteRedirectTail(entry);
    if (last) Put("</table>\n");

    // A checked box posts KEY=0 in place of the entry; by default the key and
    // the entry go into the script strings unescaped, as they always have.
    std::string key = OutScript(entry.key);
    std::string entryValue = OutScript(value);
    if (first && last) {
        AddFragment(DataMoves, kRedirectMoveSingle, name, name, key, name, entryValue);
    } else {
        long at = index;
        AddFragment(DataMoves, kRedirectMoveIndexed, name, at, name, at, key, name, at, entryValue);
    }
    // The entry's hidden field is made by the caller; the n-th checkbox and
    // the n-th hidden field belong together.
    return nullptr;
}
