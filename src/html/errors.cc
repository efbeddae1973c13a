#include "html/errors.h"

#include <cstring>
#include <string>

#include "cgi/response.h"
#include "html/page.h"
#include "i18n/language.h"
#include "i18n/page_text.h"
#include "platform/formatter.h"
#include "platform/output_profile.h"
#include "platform/text.h"
#include "state/request_state.h"

namespace {

// Writes the bytes from `text` to its end with only "<" and ">" escaped:
// "&" stays, so entities in the document show as the API sent them.
void WriteMarkupAsText(const char* text) {
    std::string out;
    for (const char* p = text ? text : ""; *p; ++p) {
        if (*p == '<') {
            out += "&lt;";
        } else if (*p == '>') {
            out += "&gt;";
        } else {
            out += *p;
        }
    }
    prtFormatter.printf("%s", out);
}

void StandardHead() {
    HTMLHeader("KV-LXR-12060", "LXR Administration Service", "KV-LXR-12060",
               "LXR Administration Service", false);
}

}  // namespace

void ErrorPageOrRedirect(const char* message, const char* statusKey, char* status, int statusSize) {
    if (IsURL(message)) {
        Redirect(message, nullptr, true);
        return;
    }
    Lang->Translate(status, statusSize, statusKey, "503 SERVICE UNAVAILABLE");
    HTTPHeader(status);
    StandardHead();
    DoError(message, nullptr);
    HTMLFooter();
}

void AlertAndNavigate(const char* message, const char* navigate, const char* linkHref,
                      const char* linkText) {
    prtFormatter.printf("<SCRIPT LANGUAGE=\"JavaScript\">\n");
    prtFormatter.printf("<!--\n");
    prtFormatter.printf("      alert(\"%s\");\n", OutScript(message));
    prtFormatter.printf("      %s\n", navigate);
    prtFormatter.printf("//-->\n");
    prtFormatter.printf("</SCRIPT>\n");
    prtFormatter.printf("<noscript>\n");
    prtFormatter.printf("<span align=\"center\">\n");
    prtFormatter.printf("<h1>%s</h1><br>\n", OutText(message));
    if (linkHref != nullptr) prtFormatter.printf("<a href=\"%s\">%s</a>\n", linkHref, linkText);
    prtFormatter.printf("</span>\n");
    prtFormatter.printf("</noscript>\n");
}

// The error page goes back without a semicolon, as it always has.
void DoError(const char* message, const char* returnURL) {
    if (returnURL == nullptr) {
        AlertAndNavigate(message, "window.history.back()", nullptr, nullptr);
        return;
    }
    PageText back(LangWithID, "KV-LXR-12013", "Click here to return.");
    std::string href = OutAttr(OutAddress(returnURL));
    AlertAndNavigate(message, "window.history.back()", href.c_str(), back.buffer);
}

void DumpXML(const char* xml) {
    // The key's trailing blank is how the catalogue has always keyed it.
    PageText status(Lang, "KV-LXR-12200 ", "200 OK");
    HTTPHeader(status.buffer);
    StandardHead();
    prtFormatter.printf("<h1>XML Dump</h1>\n");
    prtFormatter.printf("<hr><pre>\n");
    WriteMarkupAsText(xml);
    prtFormatter.printf("</pre><hr>\n");
    HTMLFooter();
}

void InvalidXML(const char* xml, const char* errorPosition) {
    PageText message(LangWithID, "KV-LXR-15000", "Invalid data from LXR API.");
    // A catalogue may send parse failures to a page of the site's own.
    if (IsURL(message.buffer)) {
        Redirect(message.buffer, nullptr, true);
        return;
    }
    PageText status(Lang, "KV-LXR-12503", "503 SERVICE UNAVAILABLE");
    HTTPHeader(status.buffer);
    StandardHead();
    // The message itself is not shown: the page shows the document and,
    // below it, the part from where reading stopped.
    prtFormatter.printf("<h1>XML Parse Error</h1>\n");
    prtFormatter.printf("<hr><pre>\n");
    WriteMarkupAsText(xml);
    prtFormatter.printf("</pre><hr><pre>\n");
    WriteMarkupAsText(errorPosition);
    prtFormatter.printf("</pre><hr>\n");
    HTMLFooter();
}
