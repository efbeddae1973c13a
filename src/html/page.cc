#include "html/page.h"

#include <string>

#include "html/script_library.h"
#include "i18n/language.h"
#include "i18n/page_text.h"
#include "platform/formatter.h"
#include "state/request_state.h"

// The name of every rule is padded to sixteen columns (a longer one gets one
// blank) so the rules line up when a page's source is read.
const char* const DefaultStyles =
    R"(.DIALOGBOX      { background-color: #c0c0c0; border-style: outset; }
.TITLEBOX       { background-color: #000080; border-style: inset; border-left: 1px inset; border-right: 1px inset; border-top: 1px inset; border-bottom: 1px inset; }
.TITLE          { text-align: left; font-family: Arial; vertical-align: middle; white-space: nowrap; font-weight: bold; font-size: small; color: #FFFFFF; }
.SELECTINNERBOX { background-color: #c0c0c0; border-left: 1px inset; border-right: 1px inset; border-top: 1px inset; border-bottom: 1px inset; }
.DISPLAYINNERBOX { background-color: #c0c0c0; border-left: 1px inset; border-right: 1px inset; border-top: 1px inset; border-bottom: 1px inset; }
.DISPLAYINNERFRAME { background-color: #c0c0c0; }
.SECTIONBOX     { background-color: #c0c0c0; vertical-align: middle; border-left: 1px outset; border-right: 1px outset; border-top: 1px outset; border-bottom: 1px outset; }
.SECTION        { font-family: Arial; font-weight: bold; font-size: medium; white-space: nowrap; text-align: center; }
.PROMPT         { white-space: nowrap; text-align: left; font-weight: bold; }
.INNERPROMPTRO  { white-space: nowrap; }
.INNERPROMPT    { white-space: nowrap; font-weight: bold; }
.DISABLEDISPLAY { white-space: nowrap; text-align: left; }
.DATADISPLAY    { text-align: left; }
.INTERSECTION   { }
.INTERFIELD     { }
.GROUPBUTTONS   { }
.GROUPMEMBER    { }
.LOCALLABEL     { }
.HISTORYFRAME   {  height: 50; }
.HISTORYLAYER   {  height: 50;  clip: hidden;  overflow: scroll; }
.STATUSFAILED   { font-weight: bold; color: red; }
.STATUSSUCCESS  { font-weight: bold; color: green; }
)";

void HTMLHeader(const char* descriptionKey, const char* descriptionDefault, const char* titleKey,
                const char* titleDefault, bool /*flag*/) {
    if (bOutputHTMLHeader) return;
    PageText title(Lang, titleKey, titleDefault);
    PageText description(Lang, descriptionKey, descriptionDefault);
    prtFormatter.printf("<html>\n<head>\n");
    prtFormatter.printf("<title>%s</title>\n", title.buffer);
    prtFormatter.printf("<meta name=\"Description\" content=\"%s\">\n", description.buffer);
    if (html::StyleSheetFileExists()) {
        prtFormatter.printf("%s\n", html::kStyleSheetLink);
    } else {
        prtFormatter.printf("<style type=\"text/css\">\n<!--\n%s-->\n</style>\n", DefaultStyles);
    }
    prtFormatter.printf("<SCRIPT LANGUAGE=\"JavaScript\">\n<!--\n");
    html::WriteScriptLibrary();
    prtFormatter.printf("//-->\n</SCRIPT>\n</head>\n\n");
    bOutputHTMLHeader = true;
}

void DoBody() {
    PageText attributes(Lang, "KV-LXR-12022", " ");
    prtFormatter.printf("<body %s>\n", attributes.buffer);
    // A catalogue may add a banner line; the default (a blank) adds nothing.
    PageText banner(Lang, "KV-LXR-12023", " ");
    if (banner.buffer[0] != ' ') prtFormatter.printf("%s\n", banner.buffer);
}

void HTMLFooter() {
    prtFormatter.printf("</body>\n</html>\n");
}

void SetFocus() {
    prtFormatter.printf(R"(
<!-- ************************************************************** -->
<!-- * Set the focus on the first visible, editable input field   * -->
<!-- * on the form.                                               * -->
<!-- ************************************************************** -->

<SCRIPT LANGUAGE="JavaScript">
<!--
if (document.forms.length > 0)
{
    var FocusElements = document.forms[0].elements;
    for (var FocusIndex = 0; FocusIndex < FocusElements.length; FocusIndex++)
    {
        var FocusType = FocusElements[FocusIndex].type;
        if (FocusType == 'checkbox' || FocusType == 'password' || FocusType == 'radio' ||
            FocusType == 'select-one' || FocusType == 'select-multiple' ||
            FocusType == 'text' || FocusType == 'textarea')
        {
            FocusElements[FocusIndex].focus();
            break;
        }
    }
}
//-->
</SCRIPT>
)");
}
