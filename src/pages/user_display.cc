#include "pages/user_display.h"

#include <cctype>

#include "cgi/fields.h"
#include "cgi/response.h"
#include "fields/field_model.h"
#include "html/errors.h"
#include "html/page.h"
#include "i18n/language.h"
#include "pages/attribute_row.h"
#include "pages/elements.h"
#include "pages/page_parts.h"
#include "pages/section_group.h"
#include "platform/env.h"
#include "platform/formatter.h"
#include "platform/output_profile.h"
#include "state/request_state.h"

namespace {

constexpr int kTextSize = 4096;

// The error for a read that offers nothing to see. The page follows it all
// the same: the header and head are written once, so the rows come after the
// error text.
void WriteNothingToShow() {
    char text[kTextSize];
    Lang->Translate(text, sizeof text, "KV-LXR-15002",
                    "No user attributes are available for view/edit.");
    char status[kTextSize];
    ErrorPageOrRedirect(text, "KV-LXR-12503", status, sizeof status);
}

void WriteHead() {
    char text[kTextSize];
    Lang->Translate(text, sizeof text, "KV-LXR-12200", "200 OK");
    HTTPHeader(text);
    HTMLHeader("KV-LXR-12076", "PAGE_TITLE", "KV-LXR-12060", "LXR Administration Service", true);
    DoBody();
    Lang->Translate(text, sizeof text, "KV-LXR-12043", "User Information");
    prtFormatter.printf(R"(<FORM METHOD="POST" NAME="DisplayForm" OnSubmit="return SubmitForm();">
)");
    WriteDialogOpen(text, "DISPLAYINNERBOX");
}

// The reasons as the API words them, each comma a line-break opportunity.
void WriteDisabledRow() {
    char text[kTextSize];
    Lang->Translate(text, sizeof text, "KV-LXR-12014", "Disabled For");
    prtFormatter.printf("<tr>\n");
    prtFormatter.printf("%s", "<td width=\"1%\" valign=\"top\">\n");
    prtFormatter.printf(
        "<img src=\"../korvelagent/dmspages/Disabled.gif\" width=\"20\" height=\"20\" "
        "hspace=\"0\" vspace=\"0\" border=\"0\" title=\"%s\">\n",
        tagDisabled);
    prtFormatter.printf("</td>\n");
    prtFormatter.printf("<td width=\"1\" valign=\"top\">\n");
    prtFormatter.printf("<span class=\"PROMPT\">%s</span>\n", text);
    prtFormatter.printf("</td>\n");
    prtFormatter.printf("<td valign=\"top\">\n");
    prtFormatter.printf("<span class=\"DISABLEDISPLAY\">");
    for (char c : DisabledReason) {
        if (c == ',') {
            prtFormatter.printf(", <wbr>");
        } else if (std::isspace(static_cast<unsigned char>(c))) {
            prtFormatter.printf("&nbsp;");
        } else {
            prtFormatter.printf("%s", OutText(std::string(1, c)));
        }
    }
    prtFormatter.printf("</span>\n");
    prtFormatter.printf("</td>\n");
    prtFormatter.printf("</tr>\n");
}

// The way back to the selection page: this script with the request's
// arguments but the user and directory, neither of them URL-encoded.
std::string SelectionTarget() {
    const char* script = CKvGetEnv("SCRIPT_NAME").c_str();
    return std::string(script != nullptr ? script : "") + ReturnQuery();
}

void WriteButtons() {
    char text[kTextSize];
    prtFormatter.printf("</table>\n");
    prtFormatter.printf("</td></tr>\n");
    prtFormatter.printf("<tr><td valign=\"middle\" align=\"center\">\n");
    if (!OutputFields.empty()) {
        Lang->Translate(text, sizeof text, "KV-LXR-12007", "Submit");
        prtFormatter.printf("<INPUT TYPE=\"SUBMIT\" VALUE=\"%s\">\n", text);
        Lang->Translate(text, sizeof text, "KV-LXR-12008", "Reset");
        if (text[0] != '\0') prtFormatter.printf("<INPUT TYPE=\"RESET\" VALUE=\"%s\">\n", text);
    }

    const char* returnTo = EnvText("HTTP_RETURNTO");
    auto cancelTo = Args.find("CancelTo");
    if (Args.count("CLOSE") != 0) {
        Lang->Translate(text, sizeof text, "KV-LXR-12011", "Close");
        prtFormatter.printf("<INPUT TYPE=\"BUTTON\" VALUE=\"%s\" onClick=\"window.close();\">\n",
                            text);
    } else {
        Lang->Translate(text, sizeof text, "KV-LXR-12009", "Cancel");
        // A return address given by the caller is offered even without a
        // label; the way back to our own selection page only with one.
        const char* format =
            "<INPUT TYPE=\"BUTTON\" VALUE=\"%s\" onClick=\"window.location='%s';\">\n";
        if (cancelTo != Args.end()) {
            prtFormatter.printf(format, text, OutHandler(OutAddress(cancelTo->second)));
        } else if (returnTo != nullptr) {
            prtFormatter.printf(format, text, OutHandler(OutAddress(returnTo)));
        } else if (text[0] != '\0') {
            prtFormatter.printf(format, text, OutHandler(OutAddress(SelectionTarget())));
        }
    }

    const char* help = EnvText("HTTP_HELPURL");
    if (help != nullptr) {
        Lang->Translate(text, sizeof text, "KV-LXR-12010", "Help");
        prtFormatter.printf(
            "<INPUT TYPE=\"BUTTON\" VALUE=\"%s\" onClick=\"window.open('%s', 'LXRADMINHELP', '', "
            "true);\">\n",
            text, OutHandler(OutAddress(help)));
    }
    prtFormatter.printf("</td></tr>\n");
    prtFormatter.printf("</table>\n");
    prtFormatter.printf("</td></tr></table>\n");
    prtFormatter.printf("</FORM> <!-- DisplayForm -->\n");
}

void WriteSubmitScript() {
    prtFormatter.printf(R"(
<!-- ************************************************************** -->
<!-- * function to handle DisplayForm.OnSubmit                    * -->
<!-- ************************************************************** -->

<SCRIPT LANGUAGE="JavaScript">
<!--
function SubmitForm()
{
    // Perform any required data edits

)");
    for (const std::string& edit : DataEdits) {
        prtFormatter.printf("    if (%s)\n        return false;\n", edit);
    }
    prtFormatter.printf("\n    // Move data from the DisplayForm to the PostForm\n\n");
    for (const std::string& move : DataMoves) prtFormatter.printf("    %s\n", move);
    prtFormatter.printf(R"(    document.PostForm.submit();

    return false; // We NEVER post DisplayForm
}
//-->
</SCRIPT>
)");
}

// Only fields of known format are posted, so the posting form holds nothing
// but the collected hidden fields and the user's name.
void WritePostForm(const std::string& userName) {
    prtFormatter.printf(R"(
<!-- ************************************************************** -->
<!-- * This is the REAL form for posting, so only REAL fields in  * -->
<!-- * known format are posted.                                   * -->
<!-- ************************************************************** -->

<FORM METHOD="POST" NAME="PostForm">
)");
    for (const OUTPUTFIELD& field : OutputFields) {
        prtFormatter.printf("    <INPUT TYPE=\"HIDDEN\" NAME=\"%s\" VALUE=\"%s\">\n",
                            OutAttr(field.name), OutAttr(field.value));
    }
    prtFormatter.printf("    <INPUT TYPE=\"HIDDEN\" NAME=\"LXR-USERDN\" VALUE=\"%s\">\n",
                        OutAttr(userName));
    auto packed = Args.find("LXRAdminARGS");
    if (packed != Args.end()) {
        prtFormatter.printf("    <INPUT TYPE=\"HIDDEN\" NAME=\"LXRAdminARGS\" VALUE=\"%s\">\n",
                            OutAttr(URLEncode(packed->second.c_str())));
    }
    prtFormatter.printf("</FORM>\n");
}

}  // namespace

void UserDisplay(const char* document, int readResult) {
    if (readResult == 0) WriteNothingToShow();
    if (Args.count("DUMPXML") != 0) {
        DumpXML(document);
        return;
    }
    FillTags();
    WriteHead();

    const char* cursor = document;
    UserElement user;
    if (!ReadUserStart(document, cursor, user)) {
        InvalidXML(document, cursor);
        return;
    }
    DisabledReason += user.disabled;
    if (!DisabledReason.empty()) WriteDisabledRow();
    // Rows written before a fault stay on the page; the error follows them.
    if (!ReadUserRows(cursor, UserRowReaders{ProcessSection, ProcessGroup, ProcessAttribute})) {
        InvalidXML(document, cursor);
        return;
    }

    WriteButtons();
    WriteSubmitScript();
    if (!OutputFields.empty()) WritePostForm(user.name);
    SetFocus();
    HTMLFooter();
}
