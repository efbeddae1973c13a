#include "platform/formatter.h"

#include <cstring>

CKvFormatter prtFormatter;

namespace {

// Formats one conversion through the C library: the spec (without the length
// modifier) is rebuilt with the right modifier for the argument's C type.
void FormatOne(std::string& out, const std::string& flags, char conv, const CpaArg* arg) {
    char buf[128];
    std::string spec = "%" + flags;
    int n = 0;
    switch (conv) {
        case 's': {
            std::string text;
            if (arg == nullptr) {
                text = "";
            } else if (arg->isText) {
                text = arg->text ? arg->text : "(null)";
            } else {
                text = std::to_string(arg->number);
            }
            if (flags.empty()) {
                out += text;
                return;
            }
            spec += 's';
            n = std::snprintf(nullptr, 0, spec.c_str(), text.c_str());
            if (n > 0) {
                std::string tmp(static_cast<size_t>(n) + 1, '\0');
                std::snprintf(&tmp[0], tmp.size(), spec.c_str(), text.c_str());
                out.append(tmp.c_str(), static_cast<size_t>(n));
            }
            return;
        }
        case 'c': {
            long long v = (arg && !arg->isText) ? arg->number : 0;
            spec += 'c';
            n = std::snprintf(buf, sizeof buf, spec.c_str(), static_cast<int>(static_cast<unsigned char>(v)));
            break;
        }
        case 'd':
        case 'i': {
            long long v = (arg && !arg->isText) ? arg->number : 0;
            spec += "lld";
            n = std::snprintf(buf, sizeof buf, spec.c_str(), v);
            break;
        }
        default: {  // u x X o
            long long v = (arg && !arg->isText) ? arg->number : 0;
            spec += "ll";
            spec += conv;
            n = std::snprintf(buf, sizeof buf, spec.c_str(), static_cast<unsigned long long>(v));
            break;
        }
    }
    if (n > 0) out.append(buf, static_cast<size_t>(n) < sizeof buf ? static_cast<size_t>(n) : sizeof buf - 1);
}

}  // namespace

void FormatArgs(std::string& out, const char* format, const CpaArgList& args) {
    if (format == nullptr) return;
    size_t next = 0;
    const char* p = format;
    while (*p) {
        const char* pct = std::strchr(p, '%');
        if (pct == nullptr) {
            out.append(p);
            break;
        }
        out.append(p, static_cast<size_t>(pct - p));
        p = pct + 1;
        if (*p == '%') {
            out += '%';
            ++p;
            continue;
        }
        std::string flags;
        while (*p && std::strchr("-+ #0", *p)) flags += *p++;
        while (*p >= '0' && *p <= '9') flags += *p++;
        if (*p == '.') {
            flags += *p++;
            while (*p >= '0' && *p <= '9') flags += *p++;
        }
        while (*p == 'l' || *p == 'h' || *p == 'z' || *p == 'j' || *p == 't') ++p;
        char conv = *p;
        if (conv == '\0') {
            out += '%';
            out += flags;
            break;
        }
        ++p;
        if (!std::strchr("sdiuxXoc", conv)) {  // unknown conversion: written as it stands
            out += '%';
            out += flags;
            out += conv;
            continue;
        }
        const CpaArg* arg = next < args.size() ? &args[next] : nullptr;
        ++next;
        FormatOne(out, flags, conv, arg);
    }
}

int CKvFormatter::fprint(FILE* stream, int /*flag*/, const char* format) {
    scratch_.clear();
    FormatArgs(scratch_, format, args_);
    return static_cast<int>(std::fwrite(scratch_.data(), 1, scratch_.size(), stream));
}
