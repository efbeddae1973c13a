#include "driver/update_document.h"

#include <strings.h>

#include "cgi/response.h"
#include "html/page.h"
#include "i18n/language.h"
#include "platform/formatter.h"
#include "platform/output_profile.h"
#include "state/request_state.h"

namespace {

constexpr const char* kAttributeClosing = "    </Attribute>\n";

// The two history attributes: the page posts "1" for them exactly when the
// administrator ticked the box that clears the history.
bool IsHistoryField(const std::string& name) {
    return strcasecmp(name.c_str(), "kvlxrLoginHistory") == 0 ||
           strcasecmp(name.c_str(), "kvfpsLog") == 0;
}

// Appends a posted name or value. The API reads a document of several lines
// one value per line, so that a value cannot close its element and open
// others; in the strict profile a line end typed into a value (no field of
// the page can hold one) becomes a blank, so it cannot start a line either.
void AppendPosted(std::string& document, const std::string& text, bool strict) {
    if (!strict) {
        document += text;
        return;
    }
    for (char c : text) document += (c == '\r' || c == '\n') ? ' ' : c;
}

}  // namespace

// Names and values go into the document exactly as posted, without XML
// escaping: the API receives them unaltered and judges them itself.
bool BuildUpdateDocument(FieldMap& fields, std::string& document) {
    const bool strict = StrictOutput();
    document = "<User name=\"";
    auto dn = fields.find("LXR-USERDN");
    if (dn == fields.end()) return false;
    AppendPosted(document, dn->second, strict);
    document += "\">\n";
    fields.erase(dn);

    std::string pending;   // closing line owed to the last attribute opened
    std::string previous;  // starts empty, so a field with an empty name gets
                           // a value line without an opening; kept as it is
    for (const auto& [name, value] : fields) {
        if (name != previous && !pending.empty()) {
            document += pending;
            pending.clear();
        }
        if (name.compare(0, 6, "GROUP-") == 0) {
            if (!value.empty()) {
                document += "    <Group name=\"";
                AppendPosted(document, name.substr(6), strict);
                document += "\" member=\"";
                AppendPosted(document, value, strict);
                document += "\"/>\n";
            }
        } else if (strcasecmp(name.c_str(), "userPassword") == 0 && value.empty()) {
            // An empty password field means "no reset".
        } else if (!IsHistoryField(name)) {
            if (name != previous) {
                document += "    <Attribute name=\"";
                AppendPosted(document, name, strict);
                document += "\">\n";
                pending = kAttributeClosing;
            }
            if (value.empty()) {
                document += "        <Value/>\n";
            } else {
                document += "        <Value>";
                AppendPosted(document, value, strict);
                document += "</Value>\n";
            }
        } else if (value == "1") {
            // An empty attribute element clears the whole history.
            document += "    <Attribute name=\"";
            document += name;
            document += "\"/>\n";
        }
        previous = name;
    }
    document += pending;
    document += "</User>\n";
    return true;
}

void DumpUpdateDocument(const std::string& document) {
    char status[4096];
    // Without the trailing blank the other "200 OK" keys carry.
    Lang->Translate(status, sizeof status, "KV-LXR-12200", "200 OK");
    HTTPHeader(status);
    HTMLHeader("KV-LXR-12060", "LXR Administration Service", "KV-LXR-12060",
               "LXR Administration Service", false);
    prtFormatter.printf("<pre>\n");
    // Only the angle brackets are escaped; "&" and quotes pass unchanged.
    for (char c : document) {
        if (c == '>') {
            prtFormatter.printf("&gt;");
        } else if (c == '<') {
            prtFormatter.printf("&lt;");
        } else {
            prtFormatter.printf("%c", c);
        }
    }
    prtFormatter.printf("</pre>\n");
    HTMLFooter();
}
