#include "pages/page_parts.h"

#include "platform/formatter.h"
#include "platform/output_profile.h"
#include "state/request_state.h"

void WriteDialogOpen(const char* title, const char* innerClass) {
    prtFormatter.printf("%s",
                        R"(<table width="100%" height="75%"><tr><td valign="middle" align="center">
<table class="DIALOGBOX">
<tr><td class="TITLEBOX">
)");
    prtFormatter.printf("<span class=\"TITLE\">%s</span>\n", title);
    prtFormatter.printf("</td></tr>\n");
    prtFormatter.printf("<tr><td><table class=\"%s\">\n", innerClass);
}

void WriteLabelCell(const char* label) {
    if (label[0] != '\0') {
        prtFormatter.printf(R"(<td width="1" valign="top">
<span class="PROMPT">%s</span>
</td>
<td valign="top">
)",
                            OutText(label));
    } else {
        prtFormatter.printf("<td colspan=\"2\" valign=\"top\">\n");
    }
}
