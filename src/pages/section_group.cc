#include "pages/section_group.h"

#include "cgi/fields.h"
#include "fields/field_model.h"
#include "i18n/language.h"
#include "pages/page_parts.h"
#include "pages/user_display.h"
#include "pages/xml_reader.h"
#include "platform/formatter.h"
#include "platform/output_profile.h"
#include "state/request_state.h"

namespace {

constexpr int kLabelSize = 1024;

// The status picture of a group whose membership disables the user.
void WriteGroupImage(const GroupElement& group) {
    prtFormatter.printf(
        "<img name=\"GROUP-%s_IMAGE\" width=\"20\" height=\"20\" hspace=\"0\" vspace=\"0\" "
        "border=\"0\"",
        OutAttr(group.name));
    switch (group.member) {
        case Membership::kMember:
            prtFormatter.printf(" src=\"../korvelagent/dmspages/Disabled.gif\" title=\"%s\"",
                                tagDisabled);
            break;
        case Membership::kNotMember:
            prtFormatter.printf(" src=\"../korvelagent/dmspages/Blank.gif\" title=\"\"");
            break;
        case Membership::kUnknown:
            prtFormatter.printf(" src=\"../korvelagent/dmspages/Unknown.gif\" title=\"\"");
            break;
    }
    prtFormatter.printf(">\n");
}

// Membership known and changeable: one box, posted as "1" or "0".
void WriteCheckbox(const GroupElement& group) {
    const std::string name = OutAttr(group.name);
    const std::string handlerName = OutHandler(group.name);
    const std::string scriptName = OutScript(group.name);
    prtFormatter.printf("<INPUT TYPE=\"CHECKBOX\" NAME=\"GROUP-%s\"", name);
    bool member = group.member == Membership::kMember;
    if (member) prtFormatter.printf(" checked");
    AddOutputField("GROUP-" + group.name, member ? "1" : "0");
    if (!group.reasoncode.empty())
        prtFormatter.printf(" onClick=\"CheckDisabled('%s');\"", handlerName);
    DataMoves.emplace_back(
        prtFormatter.sprintf("if (document.DisplayForm.elements['GROUP-%s'].checked)\n"
                             "        document.PostForm.elements['GROUP-%s'].value = '1';\n"
                             "    else\n"
                             "        document.PostForm.elements['GROUP-%s'].value = '0';\n",
                             scriptName, scriptName, scriptName));
    prtFormatter.printf(">\n");
}

// Membership unknown but changeable: no change, add or remove. The script
// library's setting for "Remove" is 2 (blank picture) although it posts "0".
void WriteRadioButtons(const GroupElement& group, char* label) {
    struct Choice {
        const char* button;
        const char* onClick;
        const char* key;
        const char* text;
    };
    static const Choice kChoices[] = {
        {"<INPUT TYPE=\"RADIO\" NAME=\"GROUP-%s\" VALUE=\"\" checked ",
         "onClick=\"CheckDisabled3('%s', 0);\"", "KV-LXR-12073", "No Change"},
        {"<INPUT TYPE=\"RADIO\" NAME=\"GROUP-%s\" VALUE=\"1\" ",
         "onClick=\"CheckDisabled3('%s', 1);\"", "KV-LXR-12074", "Add"},
        {"<INPUT TYPE=\"RADIO\" NAME=\"GROUP-%s\" VALUE=\"0\" ",
         "onClick=\"CheckDisabled3('%s', 2);\"", "KV-LXR-12075", "Remove"},
    };
    const std::string name = OutAttr(group.name);
    const std::string handlerName = OutHandler(group.name);
    const std::string scriptName = OutScript(group.name);
    prtFormatter.printf("%s",
                        "<table width=\"100%\" border=\"0\" cellpadding=\"0\" "
                        "cellspacing=\"0\"><tr>\n");
    for (const Choice& choice : kChoices) {
        prtFormatter.printf("%s", "<td width=\"33%\">\n");
        prtFormatter.printf("<span class=\"GROUPBUTTONS\">");
        prtFormatter.printf(choice.button, name);
        if (!group.reasoncode.empty()) prtFormatter.printf(choice.onClick, handlerName);
        Lang->Translate(label, kLabelSize, choice.key, choice.text);
        prtFormatter.printf(">%s", label);
        prtFormatter.printf("</span>");
        prtFormatter.printf("</td>\n");
    }
    AddOutputField("GROUP-" + group.name, "");
    prtFormatter.printf("</tr></table>\n");
    DataMoves.emplace_back(
        prtFormatter.sprintf("if (document.DisplayForm.elements['GROUP-%s'][1].checked)\n"
                             "        document.PostForm.elements['GROUP-%s'].value = \"1\";\n"
                             "    else\n"
                             "    if (document.DisplayForm.elements['GROUP-%s'][2].checked)\n"
                             "        document.PostForm.elements['GROUP-%s'].value = \"0\";\n"
                             "    else\n"
                             "        document.PostForm.elements['GROUP-%s'].value = \"\";\n",
                             scriptName, scriptName, scriptName, scriptName, scriptName));
}

// Read-only: the membership as a word.
void WriteMembership(const GroupElement& group, char* label) {
    if (!group.read || group.member == Membership::kUnknown) {
        Lang->Translate(label, kLabelSize, "KV-LXR-12072", "Unknown");
    } else if (group.member == Membership::kMember) {
        Lang->Translate(label, kLabelSize, "KV-LXR-12071", "Yes");
    } else {
        Lang->Translate(label, kLabelSize, "KV-LXR-12070", "No");
    }
    prtFormatter.printf("<span class=\"GROUPMEMBER\">%s</span>\n", label);
}

}  // namespace

void WriteSectionRow(const SectionElement& section) {
    char label[kLabelSize];
    MakeLabel(label, sizeof label, section.prompt, section.name);
    prtFormatter.printf("<tr><td class=\"SECTIONBOX\" colspan=\"3\">\n");
    if (label[0] == '\0') {
        prtFormatter.printf("<hr class=\"INTERSECTION\">\n");
    } else {
        prtFormatter.printf("<span class=\"SECTION\">%s</span>\n", OutText(label));
    }
    prtFormatter.printf("</td></tr>\n");
}

void WriteGroupRow(const GroupElement& group) {
    // No "<tr>" here: the row's start is left to the browser, as it always
    // has been; the row is closed below.
    prtFormatter.printf("<td width=\"1\" valign=\"top\">\n");
    if (!group.reasoncode.empty()) WriteGroupImage(group);
    prtFormatter.printf("</td>\n");

    char label[kLabelSize];
    MakeLabel(label, sizeof label, group.prompt,
              group.reasoncode.empty() ? group.name : group.reasoncode);
    WriteLabelCell(label);

    if (group.write && group.read) {
        WriteCheckbox(group);
    } else if (group.write) {
        WriteRadioButtons(group, label);
    } else {
        WriteMembership(group, label);
    }
    prtFormatter.printf("</td>\n");
    prtFormatter.printf("</tr>\n");
}

bool ProcessSection(const char*& cursor) {
    SectionElement section;
    if (!ReadSection(cursor, section)) return false;
    WriteSectionRow(section);
    return true;
}

bool ProcessGroup(const char*& cursor) {
    GroupElement group;
    if (!ReadGroup(cursor, group)) return false;
    // A read-only request turns every group into a display row.
    if (Args.count("READONLY") != 0) group.write = false;
    WriteGroupRow(group);
    return true;
}
