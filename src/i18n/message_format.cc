// Argument formatting of catalogue texts with ICU's MessageFormat.
#include <unicode/fmtable.h>
#include <unicode/messagepattern.h>
#include <unicode/msgfmt.h>

#include <cstring>
#include <vector>

#include "i18n/bundle.h"

namespace {

using Part = icu::MessagePattern::Part;

// The argument number of the argument that starts at part `i`, or -1.
int32_t ArgumentAt(const icu::MessagePattern& pattern, int32_t i) {
    const Part& number = pattern.getPart(i + 1);
    return number.getType() == UMSGPAT_PART_TYPE_ARG_NUMBER ? number.getValue() : -1;
}

// Prepares `text` for `count` arguments. A number shows in plain decimal
// where the text names it plainly ("{0}") and by the locale's rules where it
// gives a type ("{0,number}"). MessageFormat formats one argument one way
// only, so for an argument used both ways every plain use is renumbered to
// an extra argument count + n, which carries the decimal text. `typed`
// receives, per argument, whether it has a typed use. Returns false for
// named arguments ("{name}"): the program's arguments are numbered, so such
// a text is malformed.
bool Prepare(const icu::MessagePattern& pattern, size_t count, icu::UnicodeString& text,
             std::vector<bool>& typed) {
    typed.assign(count, false);
    for (int32_t i = 0; i + 1 < pattern.countParts(); ++i) {
        const Part& part = pattern.getPart(i);
        if (part.getType() == UMSGPAT_PART_TYPE_ARG_NAME) return false;
        if (part.getType() != UMSGPAT_PART_TYPE_ARG_START) continue;
        int32_t n = ArgumentAt(pattern, i);
        if (n >= 0 && static_cast<size_t>(n) < count &&
            part.getArgType() != UMSGPAT_ARG_TYPE_NONE) {
            typed[static_cast<size_t>(n)] = true;
        }
    }
    // Rewrite from the end so that earlier positions stay valid.
    for (int32_t i = pattern.countParts() - 2; i >= 0; --i) {
        const Part& part = pattern.getPart(i);
        if (part.getType() != UMSGPAT_PART_TYPE_ARG_START ||
            part.getArgType() != UMSGPAT_ARG_TYPE_NONE) {
            continue;
        }
        int32_t n = ArgumentAt(pattern, i);
        if (n < 0 || static_cast<size_t>(n) >= count || !typed[static_cast<size_t>(n)]) continue;
        const Part& limit = pattern.getPart(pattern.getLimitPartIndex(i));
        int32_t start = part.getIndex();
        int32_t end = limit.getIndex() + limit.getLength();
        std::string plain = "{" + std::to_string(count + static_cast<size_t>(n)) + "}";
        text.replace(start, end - start, icu::UnicodeString::fromUTF8(plain));
    }
    return true;
}

}  // namespace

bool FormatMessagePattern(std::string& out, const char* pattern, const CpaArgList& args,
                          const char* locale) {
    if (pattern == nullptr) return false;
    // Without a brace or an apostrophe MessageFormat would return the text as
    // it is; most texts are like that, so ICU is not asked.
    if (std::strpbrk(pattern, "{'") == nullptr) {
        out += pattern;
        return true;
    }
    UErrorCode status = U_ZERO_ERROR;
    UParseError where;
    icu::UnicodeString text = icu::UnicodeString::fromUTF8(pattern);
    icu::MessagePattern parsed(text, &where, status);
    if (U_FAILURE(status)) return false;
    std::vector<bool> typed;
    if (!Prepare(parsed, args.size(), text, typed)) return false;

    // Arguments 0..count-1 as given, then the plain decimal forms of the
    // numbers that also have typed uses.
    std::vector<icu::Formattable> values(args.size() * 2);
    for (size_t i = 0; i < args.size(); ++i) {
        const CpaArg& a = args[i];
        icu::UnicodeString plain = icu::UnicodeString::fromUTF8(
            a.isText ? std::string(a.text ? a.text : "") : std::to_string(a.number));
        values[i] = (!a.isText && typed[i]) ? icu::Formattable(static_cast<int64_t>(a.number))
                                            : icu::Formattable(plain);
        values[args.size() + i] = icu::Formattable(plain);
    }
    icu::MessageFormat format(text, icu::Locale(locale ? locale : ""), where, status);
    if (U_FAILURE(status)) return false;
    icu::UnicodeString result;
    icu::FieldPosition ignore;
    format.format(values.data(), static_cast<int32_t>(values.size()), result, ignore, status);
    if (U_FAILURE(status)) return false;
    result.toUTF8String(out);
    return true;
}
