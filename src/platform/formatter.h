// The process-wide printf-style formatter through which every byte of a
// response is written, and the argument list it formats from.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

// One argument of a formatted call: a whole number or a text.
struct CpaArg {
    bool isText = false;
    long long number = 0;
    const char* text = nullptr;
};

// The arguments of one formatting call, in order. Each call clears and
// refills it, so a list is only valid until the next call on its owner.
class CpaArgList {
  public:
    void clear() { args_.clear(); }
    void add(int v) { args_.push_back(CpaArg{false, v, nullptr}); }
    void add(long v) { args_.push_back(CpaArg{false, v, nullptr}); }
    void add(long long v) { args_.push_back(CpaArg{false, v, nullptr}); }
    void add(unsigned v) { args_.push_back(CpaArg{false, v, nullptr}); }
    void add(unsigned long v) {
        args_.push_back(CpaArg{false, static_cast<long long>(v), nullptr});
    }
    void add(unsigned long long v) {
        args_.push_back(CpaArg{false, static_cast<long long>(v), nullptr});
    }
    void add(char v) { args_.push_back(CpaArg{false, static_cast<unsigned char>(v), nullptr}); }
    void add(const char* v) { args_.push_back(CpaArg{true, 0, v}); }
    void add(const std::string& v) { args_.push_back(CpaArg{true, 0, v.c_str()}); }
    size_t size() const { return args_.size(); }
    const CpaArg& operator[](size_t i) const { return args_[i]; }

  private:
    std::vector<CpaArg> args_;
};

// Formats `format` with `args` and appends the result to `out`.
// Conversions: %s %d %i %u %x %X %o %c %%, with flags, width, precision and
// length modifiers (%ld, %02lX) as printf takes them. Signed conversions
// always show the whole value; the unsigned ones (%u %x %X %o) show a
// negative number as C does, in 32 bits without a length modifier and in 64
// bits with "l" or "ll". A missing argument formats as 0 or the empty text; a
// number where a text is wanted is written in decimal; a text where a number
// is wanted counts as 0, except that %c writes the text's first byte; a null
// text is written as "(null)". An unknown conversion is copied as it stands.
void FormatArgs(std::string& out, const char* format, const CpaArgList& args);

class CKvFormatter {
  public:
    // Formats to standard output. Returns the number of bytes written.
    template <class... A>
    int printf(const char* format, const A&... a) {
        args_.clear();
        (args_.add(a), ...);
        return fprint(stdout, 1, format);
    }

    // Formats into the formatter's own text, read back with c_str(); valid
    // until the next sprintf.
    template <class... A>
    const char* sprintf(const char* format, const A&... a) {
        args_.clear();
        (args_.add(a), ...);
        text_.clear();
        FormatArgs(text_, format, args_);
        return text_.c_str();
    }

    const char* c_str() const { return text_.c_str(); }

    // Formats the current argument list to `stream`. The flag is accepted for
    // the callers' sake and has no effect.
    int fprint(FILE* stream, int flag, const char* format);

  private:
    CpaArgList args_;
    std::string text_;
    std::string scratch_;
};
