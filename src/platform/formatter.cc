#include "platform/formatter.h"

#include <charconv>
#include <cstring>
#include <string_view>

namespace {

// Appends snprintf(spec, value) to `out`, whatever its length.
template <class T>
void AppendPrintf(std::string& out, const std::string& spec, T value) {
    char small[64];
    int n = std::snprintf(small, sizeof small, spec.c_str(), value);
    if (n <= 0) return;
    if (static_cast<size_t>(n) < sizeof small) {
        out.append(small, static_cast<size_t>(n));
        return;
    }
    size_t at = out.size();
    out.resize(at + static_cast<size_t>(n) + 1);
    std::snprintf(&out[at], static_cast<size_t>(n) + 1, spec.c_str(), value);
    out.resize(at + static_cast<size_t>(n));
}

long long NumberOf(const CpaArg* arg) {
    return (arg && !arg->isText) ? arg->number : 0;
}

// The parts of a conversion, tested with switches rather than strchr over a
// set: a page has thousands of conversions, and a library call per character
// was most of the time spent formatting them.
bool IsFlag(char c) {
    switch (c) {
        case '-':
        case '+':
        case ' ':
        case '#':
        case '0':
            return true;
        default:
            return false;
    }
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsLengthModifier(char c) {
    switch (c) {
        case 'l':
        case 'h':
        case 'z':
        case 'j':
        case 't':
        case 'q':
            return true;
        default:
            return false;
    }
}

bool IsConversion(char c) {
    switch (c) {
        case 's':
        case 'd':
        case 'i':
        case 'u':
        case 'x':
        case 'X':
        case 'o':
        case 'c':
            return true;
        default:
            return false;
    }
}

// Formats one conversion. `flags` holds flags, width and precision as
// written; the C type is chosen here, so the caller's length modifier only
// decides the width of the unsigned conversions (`wide`).
void FormatOne(std::string& out, std::string_view flags, bool wide, char conv, const CpaArg* arg) {
    // The common plain conversions are appended without the C library: a page
    // holds thousands of them (every option of the day lists is one).
    if (flags.empty()) {
        if (conv == 's' && arg != nullptr && arg->isText) {
            out.append(arg->text ? arg->text : "(null)");
            return;
        }
        if ((conv == 'd' || conv == 'i') && (arg == nullptr || !arg->isText)) {
            char digits[24];
            auto r = std::to_chars(digits, digits + sizeof digits, NumberOf(arg));
            out.append(digits, static_cast<size_t>(r.ptr - digits));
            return;
        }
    }
    std::string spec = "%";
    spec.append(flags);
    switch (conv) {
        case 's': {
            std::string text;
            if (arg != nullptr) {
                if (arg->isText) {
                    text = arg->text ? arg->text : "(null)";
                } else {
                    text = std::to_string(arg->number);
                }
            }
            if (flags.empty()) {
                out += text;
            } else {
                AppendPrintf(out, spec + 's', text.c_str());
            }
            return;
        }
        case 'c': {
            int c = static_cast<unsigned char>(NumberOf(arg));
            if (arg && arg->isText) c = arg->text ? static_cast<unsigned char>(arg->text[0]) : 0;
            AppendPrintf(out, spec + 'c', c);
            return;
        }
        case 'd':
        case 'i':
            AppendPrintf(out, spec + "lld", NumberOf(arg));
            return;
        default: {  // u x X o
            unsigned long long v = static_cast<unsigned long long>(NumberOf(arg));
            if (!wide) v &= 0xFFFFFFFFull;
            AppendPrintf(out, spec + "ll" + conv, v);
            return;
        }
    }
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
        const char* start = pct;
        p = pct + 1;
        if (*p == '%') {
            out += '%';
            ++p;
            continue;
        }
        // Flags, width and precision as written, then any length modifiers.
        const char* flagsStart = p;
        while (IsFlag(*p)) ++p;
        while (IsDigit(*p)) ++p;
        if (*p == '.') {
            ++p;
            while (IsDigit(*p)) ++p;
        }
        std::string_view flags(flagsStart, static_cast<size_t>(p - flagsStart));
        bool wide = false;
        while (IsLengthModifier(*p)) wide = wide || (*p++ != 'h');
        char conv = *p;
        if (conv == '\0') {  // a format that ends inside a conversion
            out.append(start);
            break;
        }
        ++p;
        if (!IsConversion(conv)) {  // unknown conversion: copied as it stands
            out.append(start, static_cast<size_t>(p - start));
            continue;
        }
        const CpaArg* arg = next < args.size() ? &args[next] : nullptr;
        ++next;
        FormatOne(out, flags, wide, conv, arg);
    }
}

int CKvFormatter::fprint(FILE* stream, int /*flag*/, const char* format) {
    scratch_.clear();
    FormatArgs(scratch_, format, args_);
    return static_cast<int>(std::fwrite(scratch_.data(), 1, scratch_.size(), stream));
}
