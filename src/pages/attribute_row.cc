#include "pages/attribute_row.h"

#include <strings.h>

#include <cstring>

#include "cgi/fields.h"
#include "fields/dates.h"
#include "fields/display.h"
#include "fields/edit_simple.h"
#include "pages/page_parts.h"
#include "pages/xml_reader.h"
#include "platform/env.h"
#include "platform/formatter.h"
#include "platform/output_profile.h"
#include "state/request_state.h"

namespace {

constexpr int kLabelSize = 1024;

enum class Picture { kNone, kDisabled, kBlank, kRedisable };

// The server's view at page time of whether the value disables the user; the
// date edit handlers update the same picture in the browser.
Picture ChoosePicture(const AttributeElement& attribute) {
    const char* name = attribute.name.c_str();
    const char* first = attribute.values.empty() ? nullptr : attribute.values[0].c_str();
    if (strcasecmp(name, "kvlxrDisableUntil") == 0) {
        if (first != nullptr &&
            (std::strncmp(first, "FOREVER", 7) == 0 || ConvertDate(first) > Now)) {
            return Picture::kDisabled;
        }
        return Picture::kBlank;
    }
    if (strcasecmp(name, "kvlxrDisableAfter") == 0 || strcasecmp(name, "kvlxrMustLoginBy") == 0) {
        // A value that is no time stamp converts to 0, which lies in the
        // past: an unreadable deadline is shown as already passed.
        if (first != nullptr && ConvertDate(first) < Now) return Picture::kDisabled;
        return Picture::kBlank;
    }
    return attribute.redisable ? Picture::kRedisable : Picture::kNone;
}

void WritePicture(const AttributeElement& attribute) {
    Picture picture = ChoosePicture(attribute);
    if (picture == Picture::kNone) return;
    prtFormatter.printf(
        "<img name=\"%s_IMAGE\" width=\"20\" height=\"20\" hspace=\"0\" vspace=\"0\" border=\"0\"",
        OutAttr(attribute.name));
    switch (picture) {
        case Picture::kDisabled:
            prtFormatter.printf(" src=\"../korvelagent/dmspages/Disabled.gif\" title=\"%s\"",
                                tagDisabled);
            break;
        case Picture::kBlank:
            prtFormatter.printf(" src=\"../korvelagent/dmspages/Blank.gif\" title=\"\"");
            break;
        default:
            prtFormatter.printf(" src=\"../korvelagent/dmspages/Redisable.gif\" title=\"%s\"",
                                tagRedisable);
            break;
    }
    prtFormatter.printf(">\n");
}

// The handlers of a detail attribute write the body of this function.
void OpenDetailScript(const char* name) {
    prtFormatter.printf(R"(<SCRIPT LANGUAGE="JavaScript">
<!--
function ShowDetail_%s(W, bDoc)
{
    if (bDoc)
        DocHead(W);
    W.document.writeln('<table width="100%%">');
)",
                        name);
}

// The end tag lacks its ">" as it always has. Browsers that know frames
// fill the frame from the same function with a whole document around it.
void CloseDetailScript(const char* name) {
    prtFormatter.printf(R"(    W.document.writeln('</table');
    if (bDoc)
        DocFoot(W);
    if (bDoc)
        W.document.close();
}
//-->
</SCRIPT>
)");
    const char* agent = CKvGetEnv("HTTP_USER_AGENT").c_str();
    bool frames = agent != nullptr && std::strstr(agent, "MSIE") != nullptr;
    if (frames) {
        prtFormatter.printf(
            "<IFRAME NAME=\"%s_FRAME\" CLASS=\"HISTORYFRAME\" FRAMEBORDER=\"0\" WIDTH=\"100%%\" "
            "SCROLLING=\"YES\" SRC=\"javascript:parent.ShowDetail_%s(window, true);\" "
            "MARGINHEIGHT=\"0\" MARGINWIDTH=\"0\">\n",
            name, name);
    }
    prtFormatter.printf(R"(<SCRIPT LANGUAGE="JavaScript">
<!--
    ShowDetail_%s(window, false);
//-->
</SCRIPT>
)",
                        name);
    if (frames) prtFormatter.printf("</IFRAME>\n");
}

}  // namespace

RowHandlers LookupHandlers(const char* name) {
    RowHandlers handlers;
    const FUNCS* row = FindFuncs(name);
    if (row == nullptr) {
        handlers.display = outStandard;
        handlers.edit = inStandard;
    } else {
        handlers.detail = row->detail != 0;
        handlers.display = row->display;
        handlers.edit = row->edit;
    }
    return handlers;
}

void WriteAttributeRow(const AttributeElement& attribute, const RowHandlers& handlers) {
    const char* name = attribute.name.c_str();
    char label[kLabelSize];
    MakeLabel(label, sizeof label, attribute.prompt, attribute.name);

    prtFormatter.printf(R"(<tr>
<td width="1%%" valign="top">
)");
    WritePicture(attribute);
    prtFormatter.printf("</td>\n");
    WriteLabelCell(label);
    prtFormatter.printf("<nobr><span class=\"DATADISPLAY\">");
    if (handlers.detail) OpenDetailScript(name);

    Finisher finisher = nullptr;
    int count = static_cast<int>(attribute.values.size());
    // Without values the handler still gets one call, so that an unset
    // attribute shows "not set" or offers an empty control.
    int calls = count == 0 ? 1 : count;
    for (int i = 0; i < calls; ++i) {
        const char* value = count == 0 ? "" : attribute.values[i].c_str();
        int index = count == 0 ? -1 : i;
        bool first = count == 0 || i == 0;
        bool last = count == 0 || i + 1 == count;
        if (attribute.write && handlers.edit != nullptr) {
            finisher = handlers.edit(name, value, index, first, last);
            if (finisher == nullptr) {
                AddOutputField(attribute.name, value);
            }
        } else if (attribute.read && handlers.display != nullptr) {
            handlers.display(value, index, first, last);
        }
    }

    if (handlers.detail) CloseDetailScript(name);
    if (finisher != nullptr) finisher(name, count);
    prtFormatter.printf(R"(</span></nobr></td>
</tr>
)");
}

bool ProcessAttribute(const char*& cursor) {
    AttributeElement attribute;
    if (!ReadAttribute(cursor, attribute)) return false;
    if (Args.count("READONLY") != 0) attribute.write = false;
    WriteAttributeRow(attribute, LookupHandlers(attribute.name.c_str()));
    return true;
}
