#include "i18n/language.h"

#include <algorithm>
#include <cstring>

#include "i18n/bundle.h"
#include "platform/system.h"
#include "platform/text.h"

Xlate::Xlate(const char* bundleName, const char* locale, bool flag)
    : bundleName_(bundleName ? bundleName : ""), flag_(flag) {
    if (locale == nullptr) {
        useAdminLocale_ = true;
    } else {
        locale_ = locale;
    }
}

Xlate::~Xlate() = default;

Xlate* Xlate::GetBundle() {
    if (loaded_) return this;
    if (useAdminLocale_) {
        const char* admin = KvGetAdminLocale();
        if (admin) locale_ = admin;
    }
    bundle_ = CKvXlate::GetBundle(bundleName_.c_str(), locale_.c_str());
    loaded_ = true;
    return this;
}

const char* Xlate::Translate(const char* key) {
    GetBundle();
    if (!bundle_ || key == nullptr) return key;
    const char* text = bundle_->Lookup(key);
    return text ? text : key;
}

const char* Xlate::BundleLocale() const {
    return bundle_ ? bundle_->LocaleName() : "";
}

const char* Xlate::FormatPattern(const char* pattern) {
    const char* text = Translate(pattern);
    if (text == nullptr) return nullptr;
    formatted_.clear();
    if (!FormatMessagePattern(formatted_, text, args_, BundleLocale())) formatted_ = text;
    return formatted_.c_str();
}

CLanguage::CLanguage(const char* application, const char* locale, bool withId)
    : Xlate(application, locale, false),
      application_(application ? application : ""),
      withId_(withId) {}

int CLanguage::Translate(char* buffer, int size, const char* key, const char* defaultText) {
    if (buffer == nullptr || size == 0) return 0;
    const char* text = Xlate::Translate(key);
    if (text == nullptr || text == key) text = defaultText;
    return InternalFormat(buffer, size, key, text);
}

int CLanguage::TranslateArgs(char* buffer, int size, const char* key, const char* defaultText) {
    if (buffer == nullptr || size == 0) return 0;
    const char* found = Xlate::Translate(key);
    std::string text;
    if (found != nullptr && found != key &&
        FormatMessagePattern(text, found, args_, BundleLocale())) {
        return InternalFormat(buffer, size, key, text.c_str());
    }
    if (defaultText == nullptr) return InternalFormat(buffer, size, key, nullptr);
    text.clear();
    if (!FormatMessagePattern(text, defaultText, args_, BundleLocale())) text = defaultText;
    return InternalFormat(buffer, size, key, text.c_str());
}

int CLanguage::InternalFormat(char* buffer, int size, const char* key, const char* text) {
    if (buffer == nullptr || size <= 0) return 0;
    bool ok = text != nullptr;
    bool prefix = withId_ && !IsURL(text);
    auto inside = [&](const char* p) { return p != nullptr && p >= buffer && p < buffer + size; };
    // A text or key inside the buffer itself is copied out before the
    // buffer is written.
    std::string keyCopy, textCopy;
    if (prefix && inside(key)) key = (keyCopy = key).c_str();
    if (inside(text)) text = (textCopy = text).c_str();
    size_t room = static_cast<size_t>(size - 1);
    size_t used = 0;
    auto put = [&](const char* part) {
        size_t n = std::min(std::strlen(part), room - used);
        std::memcpy(buffer + used, part, n);
        used += n;
    };
    if (prefix) {
        put("[");
        put(key ? key : "");
        put("] ");
    }
    if (ok) put(text);
    buffer[used] = '\0';
    return ok ? 1 : 0;
}

CLanguage* GetLanguage(const char* application, const char* language, const char* country,
                       bool withId) {
    std::string locale = language ? language : "";
    if (country && *country) {
        locale += "-";
        locale += country;
    }
    return new CLanguage(application, locale.c_str(), withId);
}
