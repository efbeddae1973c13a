// The program's translators: every visible text is fetched by a message key
// ("KV-LXR-nnnnn") with an English default written at the place of use.
#pragma once

#include <memory>
#include <string>

#include "platform/formatter.h"
#include "state/request_state.h"

class CKvXlate;  // a loaded message bundle (i18n/bundle.h)

// Bundle handle and argument formatting, shared by the translators.
class Xlate {
  public:
    Xlate(const char* bundleName, const char* locale, bool flag);
    virtual ~Xlate();

    // Loads the bundle on first use; a failure is never retried or reported.
    Xlate* GetBundle();

    // The catalogue text for `key`, or `key` itself (the same pointer) when
    // there is no bundle or no entry.
    const char* Translate(const char* key);

    // Formats `pattern` (a key, looked up first, or a plain text) with the
    // arguments in args(): "{n}" is the n-th argument (FormatMessagePattern
    // in i18n/bundle.h). A text that cannot be formatted is returned as it
    // stands; null stays null. The result lives until the next call on this
    // object.
    const char* FormatPattern(const char* pattern);

    CpaArgList& args() { return args_; }

    // The locale of the loaded bundle ("de"), or "" without one; the rules
    // for typed arguments such as "{0,number}".
    const char* BundleLocale() const;

  protected:
    std::shared_ptr<CKvXlate> bundle_;
    CpaArgList args_;
    std::string bundleName_;
    std::string locale_;
    bool flag_ = false;
    bool loaded_ = false;
    bool useAdminLocale_ = false;
    std::string formatted_;
};

class CLanguage : public Xlate {
  public:
    CLanguage(const char* application, const char* locale, bool withId);

    // Writes the text for `key` (or `defaultText` when the catalogue has none)
    // into `buffer`, cut to size - 1 bytes, with "[key] " in front when this
    // translator shows keys and the text is not a URL. Returns 1 on success,
    // 0 for a null buffer, a zero size or no text.
    int Translate(char* buffer, int size, const char* key, const char* defaultText);

    // The same with arguments, "{0}", "{1}"... in the texts. The catalogue
    // text is formatted with them; when there is none, or it cannot be
    // formatted, the default is formatted instead (a default that cannot be
    // formatted is used as it stands).
    template <class A1>
    int Translate(char* b, int s, const char* k, const A1& a1, const char* d) {
        args_.clear();
        args_.add(a1);
        return TranslateArgs(b, s, k, d);
    }
    template <class A1, class A2>
    int Translate(char* b, int s, const char* k, const A1& a1, const A2& a2, const char* d) {
        args_.clear();
        args_.add(a1);
        args_.add(a2);
        return TranslateArgs(b, s, k, d);
    }
    template <class A1, class A2, class A3>
    int Translate(char* b, int s, const char* k, const A1& a1, const A2& a2, const A3& a3,
                  const char* d) {
        args_.clear();
        args_.add(a1);
        args_.add(a2);
        args_.add(a3);
        return TranslateArgs(b, s, k, d);
    }
    template <class A1, class A2, class A3, class A4>
    int Translate(char* b, int s, const char* k, const A1& a1, const A2& a2, const A3& a3,
                  const A4& a4, const char* d) {
        args_.clear();
        args_.add(a1);
        args_.add(a2);
        args_.add(a3);
        args_.add(a4);
        return TranslateArgs(b, s, k, d);
    }
    template <class A1, class A2, class A3, class A4, class A5>
    int Translate(char* b, int s, const char* k, const A1& a1, const A2& a2, const A3& a3,
                  const A4& a4, const A5& a5, const char* d) {
        args_.clear();
        args_.add(a1);
        args_.add(a2);
        args_.add(a3);
        args_.add(a4);
        args_.add(a5);
        return TranslateArgs(b, s, k, d);
    }

    // The common last step: prefix, copy, cut.
    int InternalFormat(char* buffer, int size, const char* key, const char* text);

    const char* Application() const { return application_.c_str(); }
    const char* ISO() const { return locale_.c_str(); }
    const char* Country() const { return locale_.c_str(); }
    bool IsWithID() const { return withId_; }
    bool Translating() const { return true; }

  private:
    int TranslateArgs(char* buffer, int size, const char* key, const char* defaultText);

    std::string application_;
    bool withId_;
};

// A new translator for `application` and language[-country]; never null.
CLanguage* GetLanguage(const char* application, const char* language, const char* country,
                       bool withId);
