// First cut: no bundles are installed yet, so every text is its English
// default. Replaced by the ICU resource-bundle catalogue.
#include "i18n/bundle.h"

#include <cctype>

std::shared_ptr<CKvXlate> CKvXlate::GetBundle(const char*, const char*) { return nullptr; }

void FormatMessagePattern(std::string& out, const char* pattern, const CpaArgList& args) {
    if (pattern == nullptr) return;
    for (const char* p = pattern; *p; ++p) {
        if (*p == '{' && std::isdigit(static_cast<unsigned char>(p[1])) && p[2] == '}') {
            size_t i = static_cast<size_t>(p[1] - '0');
            if (i < args.size()) {
                const CpaArg& a = args[i];
                if (a.isText) {
                    out += a.text ? a.text : "";
                } else {
                    out += std::to_string(a.number);
                }
            }
            p += 2;
            continue;
        }
        out += *p;
    }
}
