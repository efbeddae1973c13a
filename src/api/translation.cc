#include "translation.h"

#include <dlfcn.h>
#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstring>
#include <map>
#include <mutex>

#include "i18n/locale_list.h"
#include "icu_library.h"

namespace lxrapi {

const std::vector<TextEntry>& TextTable() {
    static const std::vector<TextEntry> table = {
#define LXR_TEXT(key, english) {#key, english, false},
#define LXR_REASON(key, english) {#key, english, true},
#include "texts.def"
#undef LXR_TEXT
#undef LXR_REASON
    };
    return table;
}

std::string FillIn(const std::string& pattern, const std::vector<std::string>& args) {
    std::string out;
    out.reserve(pattern.size() + 32);
    for (size_t i = 0; i < pattern.size(); ++i) {
        size_t close = pattern[i] == '{' ? pattern.find('}', i) : std::string::npos;
        if (close == i + 2 && pattern[i + 1] >= '0' && pattern[i + 1] <= '9') {
            size_t n = static_cast<size_t>(pattern[i + 1] - '0');
            if (n < args.size()) out += args[n];
            i = close;
        } else {
            out += pattern[i];
        }
    }
    return out;
}

std::string InEnglish(const Text& text) {
    return FillIn(TextTable()[static_cast<size_t>(text.say)].english, text.args);
}

std::string ApiCatalogueDirectory() {
    const char* named = std::getenv("LXRAPI_CATALOGUE");
    if (named && *named) return named;
    // The file that holds this function: the shared library, or a program
    // that links the library's code in.
    std::string file;
    Dl_info info{};
    char path[PATH_MAX];
    if (dladdr(reinterpret_cast<void*>(&ApiCatalogueDirectory), &info) && info.dli_fname &&
        std::strchr(info.dli_fname, '/') && realpath(info.dli_fname, path)) {
        file = path;
    } else {
        ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
        if (n > 0) file.assign(path, static_cast<size_t>(n));
    }
    size_t slash = file.rfind('/');
    if (slash != std::string::npos) {
        std::string beside = file.substr(0, slash + 1) + "catalogue";
        if (access((beside + "/LXRAPI").c_str(), F_OK) == 0) return beside;
    }
    // An installed library keeps its texts with the shared data, not in the
    // multiarch library folder.
    return LXRAPI_INSTALLED_CATALOGUE;
}

// One opened bundle of the library's texts, shared by every Translator of
// its locale for the life of the process.
class Bundle {
  public:
    Bundle(const IcuLibrary& icu, UResourceBundle* bundle, std::string locale)
        : icu_(icu), bundle_(bundle), locale_(std::move(locale)) {}
    ~Bundle() { icu_.close(bundle_); }
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;

    // The bundle's pattern for `key`, as UTF-16; false when it has none.
    bool Pattern(const char* key, std::u16string* pattern) const;
    // `pattern` formatted with `args` by ICU's message rules; false when the
    // pattern cannot be used.
    bool Format(const std::u16string& pattern, const std::vector<std::string>& args,
                std::string* out) const;
    bool ToUtf8(const UChar* text, int32_t length, std::string* out) const;
    const std::string& locale() const { return locale_; }

  private:
    bool ToUtf16(const std::string& text, std::u16string* out) const;

    const IcuLibrary& icu_;
    UResourceBundle* bundle_;
    std::string locale_;
};

bool Bundle::Pattern(const char* key, std::u16string* pattern) const {
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    const UChar* text = icu_.getStringByKey(bundle_, key, &length, &status);
    if (U_FAILURE(status) || !text) return false;
    pattern->assign(text, static_cast<size_t>(length));
    return true;
}

bool Bundle::ToUtf16(const std::string& text, std::u16string* out) const {
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    icu_.fromUTF8(nullptr, 0, &length, text.data(), static_cast<int32_t>(text.size()), &status);
    if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return false;
    out->assign(static_cast<size_t>(length) + 1, u'\0');
    status = U_ZERO_ERROR;
    icu_.fromUTF8(&(*out)[0], length + 1, &length, text.data(), static_cast<int32_t>(text.size()),
                  &status);
    out->resize(static_cast<size_t>(length));
    return U_SUCCESS(status);
}

bool Bundle::ToUtf8(const UChar* text, int32_t length, std::string* out) const {
    UErrorCode status = U_ZERO_ERROR;
    int32_t bytes = 0;
    icu_.toUTF8(nullptr, 0, &bytes, text, length, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return false;
    out->assign(static_cast<size_t>(bytes) + 1, '\0');
    status = U_ZERO_ERROR;
    icu_.toUTF8(&(*out)[0], bytes + 1, &bytes, text, length, &status);
    out->resize(static_cast<size_t>(bytes));
    return U_SUCCESS(status);
}

// The most arguments a text of texts.def takes.
constexpr size_t kMaxArgs = 4;

// True when `pattern` holds no apostrophe and no brace other than in "{n}":
// MessageFormat would then do no more than FillIn does. Loading ICU's
// formatter and its locale data costs more than the rest of a request, so
// it is kept for texts that use its syntax (plural or select forms).
bool IsPlain(const std::u16string& pattern) {
    for (size_t i = 0; i < pattern.size(); ++i) {
        char16_t c = pattern[i];
        if (c == u'\'' || c == u'}') return false;
        if (c != u'{') continue;
        if (i + 2 >= pattern.size() || pattern[i + 1] < u'0' || pattern[i + 1] > u'9' ||
            pattern[i + 2] != u'}')
            return false;
        i += 2;
    }
    return true;
}

bool Bundle::Format(const std::u16string& pattern, const std::vector<std::string>& args,
                    std::string* out) const {
    if (IsPlain(pattern)) {
        std::string text;
        if (!ToUtf8(pattern.data(), static_cast<int32_t>(pattern.size()), &text)) return false;
        *out = FillIn(text, args);
        return true;
    }
    std::string error;
    const IcuFormatLibrary* formats = IcuFormats(&error);
    if (!formats || args.size() > kMaxArgs) return false;
    std::u16string wide[kMaxArgs];
    for (size_t i = 0; i < args.size(); ++i)
        if (!ToUtf16(args[i], &wide[i])) return false;
    UErrorCode status = U_ZERO_ERROR;
    UParseError where;
    UMessageFormat* format = formats->msgOpen(pattern.data(), static_cast<int32_t>(pattern.size()),
                                              locale_.c_str(), &where, &status);
    if (U_FAILURE(status)) {
        if (format) formats->msgClose(format);
        return false;
    }
    // Every argument is text: the callers have written their numbers already.
    auto run = [&](UChar* result, int32_t size) {
        return formats->msgFormat(format, result, size, &status, wide[0].c_str(), wide[1].c_str(),
                                  wide[2].c_str(), wide[3].c_str());
    };
    int32_t length = run(nullptr, 0);
    std::u16string result;
    if (status == U_BUFFER_OVERFLOW_ERROR) {
        status = U_ZERO_ERROR;
        result.assign(static_cast<size_t>(length) + 1, u'\0');
        length = run(&result[0], length + 1);
    }
    formats->msgClose(format);
    return U_SUCCESS(status) && ToUtf8(result.data(), length, out);
}

namespace {

// The caller's arguments as one locale text.
std::string Requested(const char* language, const char* country) {
    std::string wanted = language ? language : "";
    bool bare = !wanted.empty() && wanted.find_first_of("-_,;*") == std::string::npos;
    if (bare && country && *country && std::strcmp(country, language) != 0)
        wanted += std::string("-") + country;
    return wanted;
}

std::shared_ptr<const Bundle> OpenBundle(const std::string& directory, const std::string& wanted) {
    std::string tree = directory + "/LXRAPI/";
    std::string name = FirstLocaleWithFile(tree, PreferredLocales(wanted.c_str()));
    if (name.empty()) return nullptr;

    static std::mutex mutex;
    static std::map<std::string, std::shared_ptr<const Bundle>> opened;
    std::lock_guard<std::mutex> lock(mutex);
    auto found = opened.find(tree + name);
    if (found != opened.end()) return found->second;
    std::string error;
    const IcuLibrary* icu = Icu(&error);
    std::shared_ptr<const Bundle> bundle;
    if (icu) {
        UErrorCode status = U_ZERO_ERROR;
        UResourceBundle* b = icu->open(tree.c_str(), name.c_str(), &status);
        // A default-locale warning means ICU took the process's locale
        // instead of our file.
        if (U_SUCCESS(status) && status != U_USING_DEFAULT_WARNING)
            bundle = std::make_shared<Bundle>(*icu, b, name);
        else if (b)
            icu->close(b);
    }
    opened[tree + name] = bundle;  // a failure is not tried again either
    return bundle;
}

}  // namespace

Translator::Translator(const char* language, const char* country, const std::string& directory)
    : wanted_(Requested(language, country)), directory_(directory) {}

const Bundle* Translator::Found() const {
    if (!looked_) {
        looked_ = true;
        if (wanted_.empty()) return nullptr;
        std::string where = directory_.empty() ? ApiCatalogueDirectory() : directory_;
        if (!where.empty()) bundle_ = OpenBundle(where, wanted_);
    }
    return bundle_.get();
}

std::string Translator::operator()(const Text& text) const {
    const TextEntry& entry = TextTable()[static_cast<size_t>(text.say)];
    std::u16string pattern;
    std::string out;
    const Bundle* bundle = Found();
    if (!bundle) return InEnglish(text);
    if (text.say == Say::AsConfigured) {
        // A reason from the configuration may be translated under "#" and
        // its text, as the program's catalogue translates configured prompts.
        std::string key = CatalogueKey(("#" + text.args.at(0)).c_str());
        if (bundle->Pattern(key.c_str(), &pattern) &&
            bundle->ToUtf8(pattern.data(), static_cast<int32_t>(pattern.size()), &out))
            return out;
    } else if (bundle->Pattern(entry.key, &pattern) && bundle->Format(pattern, text.args, &out)) {
        return out;
    }
    return InEnglish(text);
}

std::string Translator::locale() const {
    const Bundle* bundle = Found();
    return bundle ? bundle->locale() : std::string();
}

}  // namespace lxrapi
