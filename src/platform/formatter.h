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
// refills it, so a list is only valid until the next call on its owner. The
// first kInline arguments are held in the list itself: a page makes
// thousands of calls, most with a few arguments, and formatters made for one
// call (DateText) then allocate nothing.
class CpaArgList {
  public:
    void clear() {
        count_ = 0;
        more_.clear();
    }
    void add(int v) { push(CpaArg{false, v, nullptr}); }
    void add(long v) { push(CpaArg{false, v, nullptr}); }
    void add(long long v) { push(CpaArg{false, v, nullptr}); }
    void add(unsigned v) { push(CpaArg{false, v, nullptr}); }
    void add(unsigned long v) { push(CpaArg{false, static_cast<long long>(v), nullptr}); }
    void add(unsigned long long v) { push(CpaArg{false, static_cast<long long>(v), nullptr}); }
    void add(char v) { push(CpaArg{false, static_cast<unsigned char>(v), nullptr}); }
    void add(const char* v) { push(CpaArg{true, 0, v}); }
    void add(const std::string& v) { push(CpaArg{true, 0, v.c_str()}); }
    size_t size() const { return count_ + more_.size(); }
    const CpaArg& operator[](size_t i) const {
        return i < kInline ? inline_[i] : more_[i - kInline];
    }

  private:
    static constexpr size_t kInline = 16;

    void push(const CpaArg& arg) {
        if (count_ < kInline) {
            inline_[count_++] = arg;
        } else {
            more_.push_back(arg);
        }
    }

    CpaArg inline_[kInline];
    size_t count_ = 0;
    std::vector<CpaArg> more_;  // the arguments after the first kInline
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

// Hands what printf has formatted so far on to the stdio stream stdout.
// printf gathers the bytes of a page in a buffer of its own and passes them
// on a large piece at a time, so whatever writes to standard output in
// another way (the console functions, a test that captures the output) calls
// this first to keep the bytes in order. Runs by itself at exit, before
// stdio flushes its streams, so nothing formatted is lost.
void FlushFormattedOutput();

class CKvFormatter {
  public:
    // Formats to standard output. Returns the number of bytes written.
    template <class... A>
    int printf(const char* format, const A&... a) {
        args_.clear();
        (args_.add(a), ...);
        return fprint(stdout, 1, format);
    }

    // Writes `size` bytes of `data` to standard output as they stand, a "%"
    // included, as printf("%s") would write them; for a text already made.
    // Returns `size`.
    int write(const char* data, size_t size);

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

    // Formats the current argument list to `stream` and returns the number of
    // bytes formatted. Standard output goes through the buffer that
    // FlushFormattedOutput empties; any other stream is written at once. The
    // flag is accepted for the callers' sake and has no effect.
    int fprint(FILE* stream, int flag, const char* format);

  private:
    CpaArgList args_;
    std::string text_;
    std::string scratch_;
};
