// The update document reader on any text. A refusal names no markup; a
// document that was read, written back in the web page's layout (one value
// per line), reads back the same, so what the page builds is what the API
// writes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "update_document.h"

namespace {

using lxrapi::UpdateDocument;

// False when a name or value could not be written back in that layout at all.
bool PageLayout(const UpdateDocument& d, std::string* out) {
    auto plain = [](const std::string& s) { return s.find_first_of("\"\r\n") == s.npos; };
    if (!plain(d.userDn)) return false;
    *out = "<User name=\"" + d.userDn + "\">\n";
    for (const auto& g : d.groups) {
        if (!plain(g.name) || !plain(g.member)) return false;
        *out += "    <Group name=\"" + g.name + "\" member=\"" + g.member + "\"/>\n";
    }
    for (const auto& a : d.attributes) {
        if (!plain(a.name)) return false;
        if (a.selfClosing) {
            *out += "    <Attribute name=\"" + a.name + "\"/>\n";
            continue;
        }
        *out += "    <Attribute name=\"" + a.name + "\">\n";
        for (const std::string& v : a.values) {
            if (v.find_first_of("\r\n") != v.npos) return false;
            *out += v.empty() ? "        <Value/>\n" : "        <Value>" + v + "</Value>\n";
        }
        *out += "    </Attribute>\n";
    }
    *out += "</User>\n";
    return true;
}

bool Same(const UpdateDocument& a, const UpdateDocument& b) {
    if (a.userDn != b.userDn || a.groups.size() != b.groups.size() ||
        a.attributes.size() != b.attributes.size())
        return false;
    for (size_t i = 0; i < a.groups.size(); ++i) {
        if (a.groups[i].name != b.groups[i].name || a.groups[i].member != b.groups[i].member)
            return false;
    }
    for (size_t i = 0; i < a.attributes.size(); ++i) {
        const auto& x = a.attributes[i];
        const auto& y = b.attributes[i];
        if (x.name != y.name || x.values != y.values || x.selfClosing != y.selfClosing)
            return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    UpdateDocument document;
    lxrapi::Status s = lxrapi::ParseUpdateDocument(text, &document);
    if (!s.ok()) {
        if (s.message().find_first_of("<>") != std::string::npos) std::abort();
        return 0;
    }
    if (document.userDn.empty()) std::abort();
    std::string again;
    if (!PageLayout(document, &again)) return 0;
    UpdateDocument reread;
    if (!lxrapi::ParseUpdateDocument(again, &reread).ok() || !Same(document, reread)) std::abort();
    return 0;
}
