#include "pages/user_selection.h"

#include "cgi/fields.h"
#include "cgi/response.h"
#include "html/errors.h"
#include "html/page.h"
#include "i18n/language.h"
#include "pages/directory_list.h"
#include "pages/page_parts.h"
#include "platform/env.h"
#include "platform/formatter.h"
#include "platform/output_profile.h"
#include "state/request_state.h"

namespace {

constexpr int kTextSize = 4096;

// Nothing to choose from: an error page, or a redirect when the catalogue
// names a page of the site's own.
void WriteNoDirectories() {
    char text[kTextSize];
    LangWithID->Translate(text, sizeof text, "KV-LXR-15001", "No User Directories are available.");
    char status[kTextSize];
    ErrorPageOrRedirect(text, "KV-LXR-12503", status, sizeof status);
}

void WriteDirectoryRow(const DirectoryTable& table, char* text) {
    Lang->Translate(text, kTextSize, "KV-LXR-12001", "Directory");
    prtFormatter.printf("<tr>\n");
    prtFormatter.printf("<td nowrap width=\"1\">\n");
    prtFormatter.printf("<span class=\"PROMPT\">%s</span>\n", text);
    prtFormatter.printf("</td>\n");
    prtFormatter.printf("<td><select name=\"USERDIR\" size=\"1\">\n");
    // No option is pre-selected and, as always, none is closed.
    for (const auto& entry : table) {
        prtFormatter.printf("<option value=\"%s\">%s\n", OutAttr(entry.second),
                            OutText(entry.first));
    }
    prtFormatter.printf("</select></td>\n");
    prtFormatter.printf("</tr>\n");
}

void WriteUserRow(char* text) {
    Lang->Translate(text, kTextSize, "KV-LXR-12002", "User");
    prtFormatter.printf("<tr>\n");
    prtFormatter.printf("<td nowrap width=\"1\">\n");
    prtFormatter.printf("<span class=\"PROMPT\">%s</span>\n", text);
    prtFormatter.printf("</td>\n");
    prtFormatter.printf("<td>\n");
    prtFormatter.printf("<INPUT TYPE=\"TEXT\" NAME=\"USER\" SIZE=\"30\">\n");
    prtFormatter.printf("</td>\n");
    prtFormatter.printf("</tr>\n");
}

void WriteButtonRow(char* text) {
    prtFormatter.printf("<tr><td colspan=\"2\" valign=\"middle\" align=\"center\">\n");
    Lang->Translate(text, kTextSize, "KV-LXR-12003", "Submit");
    prtFormatter.printf("<INPUT TYPE=\"SUBMIT\" VALUE=\"%s\">\n", text);
    // A catalogue removes the Reset button by translating it to nothing.
    Lang->Translate(text, kTextSize, "KV-LXR-12004", "Reset");
    if (text[0] != '\0') prtFormatter.printf("<INPUT TYPE=\"RESET\" VALUE=\"%s\">\n", text);

    const char* returnTo = EnvText("HTTP_RETURNTO");
    auto cancelTo = Args.find("CancelTo");
    if (cancelTo != Args.end() || returnTo != nullptr) {
        Lang->Translate(text, kTextSize, "KV-LXR-12005", "Cancel");
        prtFormatter.printf(
            "<INPUT TYPE=\"BUTTON\" VALUE=\"%s\" onClick=\"window.location='%s';\">\n", text,
            OutHandler(OutAddress(cancelTo != Args.end() ? cancelTo->second.c_str() : returnTo)));
    }
    const char* help = EnvText("HTTP_HELPURL");
    if (help != nullptr) {
        Lang->Translate(text, kTextSize, "KV-LXR-12006", "Help");
        prtFormatter.printf(
            "<INPUT TYPE=\"BUTTON\" VALUE=\"%s\" onClick=\"window.open('%s', 'LXRADMINHELP', '', "
            "true);\">\n",
            text, OutHandler(OutAddress(help)));
    }
}

}  // namespace

void UserSelection(const char* document) {
    if (Args.count("DUMPXML") != 0) {
        DumpXML(document);
        return;
    }
    auto dir = Args.find("DIR");
    std::string filter = dir != Args.end() ? dir->second : std::string();
    DirectoryTable table;
    const char* cursor = document;
    if (!ReadDirectoryList(document, table, filter, cursor)) {
        InvalidXML(document, cursor);
        return;
    }
    if (table.empty()) {
        WriteNoDirectories();
        return;
    }

    char text[kTextSize];
    Lang->Translate(text, sizeof text, "KV-LXR-12200 ", "200 OK");  // the key's blank is kept
    HTTPHeader(text);
    HTMLHeader("KV-LXR-12076", "PAGE_TITLE", "KV-LXR-12060", "LXR Administration Service", false);
    DoBody();

    prtFormatter.printf("<FORM METHOD=\"GET\">\n");
    if (Args.count("ReadOnly") != 0) {
        prtFormatter.printf("<INPUT TYPE=\"HIDDEN\" NAME=\"READONLY\" VALUE=\"\">\n");
    }
    // With one directory there is nothing to choose.
    if (table.size() == 1) {
        prtFormatter.printf("<INPUT TYPE=\"HIDDEN\" NAME=\"USERDIR\" VALUE=\"%s\">\n",
                            OutAttr(table.begin()->second));
    }
    Lang->Translate(text, sizeof text, "KV-LXR-12000", "Enter User Specification");
    WriteDialogOpen(text, "SELECTINNERBOX");
    if (table.size() > 1) WriteDirectoryRow(table, text);
    WriteUserRow(text);
    WriteButtonRow(text);
    prtFormatter.printf("</td></tr>\n");
    prtFormatter.printf("</table>\n");
    prtFormatter.printf("</td></tr></table>\n");
    prtFormatter.printf("</td></tr></table>\n");

    // The request's context goes forward whole, ReadOnly included, although
    // the READONLY field above already says the same.
    for (const auto& arg : Args) {
        prtFormatter.printf("<INPUT TYPE=\"HIDDEN\" NAME=\"%s\" VALUE=\"%s\">\n",
                            OutAttr(arg.first), OutAttr(arg.second));
    }
    prtFormatter.printf("</FORM>\n");
    SetFocus();
    HTMLFooter();
}
