#include "platform/formatter.h"

#include <charconv>
#include <cstring>
#include <string_view>

namespace {

// The bytes printf has formatted and not yet handed to stdout. A page is
// written in thousands of small pieces, and each fwrite costs more than the
// copy it makes; so the pieces gather here and leave in chunks. The chunk is
// smaller than a page: every 4 KB of it touched is a page fault in a fresh
// process, and one write more costs less than the faults it saves.
class StdoutChunk {
  public:
    ~StdoutChunk() { Flush(); }

    // Fills the chunk before it leaves, so that a page goes out in as few
    // writes as the chunk allows.
    void append(const char* data, size_t n) {
        total_ += n;
        while (n > sizeof buffer_ - used_) {
            size_t room = sizeof buffer_ - used_;
            std::memcpy(buffer_ + used_, data, room);
            used_ += room;
            data += room;
            n -= room;
            Flush();
        }
        std::memcpy(buffer_ + used_, data, n);
        used_ += n;
    }

    void push_back(char c) {
        if (used_ == sizeof buffer_) Flush();
        buffer_[used_++] = c;
        ++total_;
    }

    void Flush() {
        if (used_ != 0) std::fwrite(buffer_, 1, used_, stdout);
        used_ = 0;
    }

    // Bytes appended since the process started; differences count a call.
    size_t total() const { return total_; }

  private:
    char buffer_[32 * 1024];
    size_t used_ = 0;
    size_t total_ = 0;
};

StdoutChunk stdoutChunk;

// Collects the small pieces of one formatted text on the stack and adds them
// to the text in a few appends; a piece by piece append cost more than the
// copy. Whatever is collected is added when the sink is destroyed.
class TextSink {
  public:
    explicit TextSink(std::string& text) : text_(text) {}
    ~TextSink() { Flush(); }
    TextSink(const TextSink&) = delete;
    TextSink& operator=(const TextSink&) = delete;

    void append(const char* data, size_t n) {
        if (n <= sizeof buffer_ - used_) {
            std::memcpy(buffer_ + used_, data, n);
            used_ += n;
            return;
        }
        Flush();
        text_.append(data, n);
    }

    void push_back(char c) {
        if (used_ == sizeof buffer_) Flush();
        buffer_[used_++] = c;
    }

  private:
    void Flush() {
        text_.append(buffer_, used_);
        used_ = 0;
    }

    std::string& text_;
    char buffer_[512];
    size_t used_ = 0;
};

// Appends snprintf(spec, value) to `out`, whatever its length.
template <class Out, class T>
void AppendPrintf(Out& out, const std::string& spec, T value) {
    char small[64];
    int n = std::snprintf(small, sizeof small, spec.c_str(), value);
    if (n <= 0) return;
    if (static_cast<size_t>(n) < sizeof small) {
        out.append(small, static_cast<size_t>(n));
        return;
    }
    std::string big(static_cast<size_t>(n) + 1, '\0');
    std::snprintf(&big[0], big.size(), spec.c_str(), value);
    out.append(big.data(), static_cast<size_t>(n));
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

// The width of flags that are a "0" and digits only ("02", "04"), else -1:
// the zero-padded decimals of every date and time on a page.
int ZeroPadWidth(std::string_view flags) {
    if (flags.size() < 2 || flags.size() > 3 || flags[0] != '0') return -1;
    int width = 0;
    for (char c : flags.substr(1)) {
        if (!IsDigit(c)) return -1;
        width = width * 10 + (c - '0');
    }
    return width;
}

// `value` in decimal, zero-padded to `width`, as "%0<width>d" writes a
// number that is not negative.
template <class Out>
void AppendDecimal(Out& out, long long value, int width) {
    char digits[24];
    auto r = std::to_chars(digits, digits + sizeof digits, value);
    size_t n = static_cast<size_t>(r.ptr - digits);
    for (size_t i = n; i < static_cast<size_t>(width); ++i) out.push_back('0');
    out.append(digits, n);
}

// The common conversions, without the C library: a page holds thousands of
// them. False when the conversion needs the general path.
template <class Out>
bool FormatPlain(Out& out, std::string_view flags, char conv, const CpaArg* arg) {
    bool number = arg == nullptr || !arg->isText;
    if (conv == 's' && flags.empty() && !number) {
        const char* text = arg->text ? arg->text : "(null)";
        out.append(text, std::strlen(text));
        return true;
    }
    if ((conv == 'd' || conv == 'i') && number) {
        if (flags.empty()) {
            AppendDecimal(out, NumberOf(arg), 0);
            return true;
        }
        int width = ZeroPadWidth(flags);
        if (width >= 0 && NumberOf(arg) >= 0) {
            AppendDecimal(out, NumberOf(arg), width);
            return true;
        }
    }
    return false;
}

// Formats one conversion. `flags` holds flags, width and precision as
// written; the C type is chosen here, so the caller's length modifier only
// decides the width of the unsigned conversions (`wide`).
template <class Out>
void FormatOne(Out& out, std::string_view flags, bool wide, char conv, const CpaArg* arg) {
    if (FormatPlain(out, flags, conv, arg)) return;
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
                out.append(text.data(), text.size());
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

template <class Out>
void Format(Out& out, const char* format, const CpaArgList& args) {
    if (format == nullptr) return;
    size_t next = 0;
    const char* p = format;
    while (*p) {
        const char* pct = std::strchr(p, '%');
        if (pct == nullptr) {
            out.append(p, std::strlen(p));
            break;
        }
        out.append(p, static_cast<size_t>(pct - p));
        const char* start = pct;
        p = pct + 1;
        if (*p == '%') {
            out.push_back('%');
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
            out.append(start, std::strlen(start));
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

}  // namespace

void FormatArgs(std::string& out, const char* format, const CpaArgList& args) {
    TextSink sink(out);
    Format(sink, format, args);
}

void FlushFormattedOutput() {
    stdoutChunk.Flush();
}

int CKvFormatter::fprint(FILE* stream, int /*flag*/, const char* format) {
    if (stream == stdout) {
        size_t before = stdoutChunk.total();
        Format(stdoutChunk, format, args_);
        return static_cast<int>(stdoutChunk.total() - before);
    }
    scratch_.clear();
    FormatArgs(scratch_, format, args_);
    return static_cast<int>(std::fwrite(scratch_.data(), 1, scratch_.size(), stream));
}

int CKvFormatter::write(const char* data, size_t size) {
    stdoutChunk.append(data, size);
    return static_cast<int>(size);
}
