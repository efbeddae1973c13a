#include "i18n/bundle.h"

#include <unicode/ures.h>
#include <unicode/ustring.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "i18n/locale_list.h"
#include "platform/env.h"
#include "platform/system.h"

namespace {

// One opened ICU bundle; lookups fall back to the parent bundles ICU chains
// in ("de_CH" to "de"). Texts are converted once and kept.
class IcuBundle : public CKvXlate {
  public:
    IcuBundle(UResourceBundle* bundle, std::string locale)
        : bundle_(bundle), locale_(std::move(locale)) {}
    ~IcuBundle() override { ures_close(bundle_); }
    IcuBundle(const IcuBundle&) = delete;
    IcuBundle& operator=(const IcuBundle&) = delete;

    const char* Lookup(const char* key) override;
    const char* LocaleName() const override { return locale_.c_str(); }

  private:
    struct Text {
        bool found = false;
        std::string utf8;
    };
    UResourceBundle* bundle_;
    std::string locale_;
    std::unordered_map<std::string, Text> texts_;  // node-based: texts never move
};

const char* IcuBundle::Lookup(const char* key) {
    if (key == nullptr) return nullptr;
    auto [entry, added] = texts_.try_emplace(key);
    Text& text = entry->second;
    if (added) {
        UErrorCode status = U_ZERO_ERROR;
        int32_t length = 0;
        const UChar* u = ures_getStringByKey(bundle_, CatalogueKey(key).c_str(), &length, &status);
        if (U_SUCCESS(status) && u != nullptr) {
            // One pass: a UTF-16 unit never takes more than three bytes.
            int32_t bytes = 0;
            text.utf8.resize(static_cast<size_t>(length) * 3);
            u_strToUTF8(&text.utf8[0], length * 3, &bytes, u, length, &status);
            text.found = U_SUCCESS(status);  // includes "no room for the terminator"
            text.utf8.resize(text.found ? static_cast<size_t>(bytes) : 0);
        }
    }
    return text.found ? text.utf8.c_str() : nullptr;
}

// An application name is one plain directory name.
bool IsApplicationName(const char* name) {
    if (name == nullptr || *name == '\0' || *name == '.') return false;
    for (const char* p = name; *p; ++p) {
        if (*p == '/') return false;
    }
    return true;
}

}  // namespace

std::string CatalogueDirectory() {
    const char* named = EnvText("LXRADMIN_CATALOGUE");
    if (named) return named;
    std::string exe = ExecutableDirectory();
    return exe.empty() ? exe : exe + "/catalogue";
}

std::string ChooseCatalogueLocale(const std::string& directory, const char* bundleName,
                                  const char* locale) {
    if (directory.empty() || !IsApplicationName(bundleName)) return std::string();
    return FirstLocaleWithFile(directory + "/" + bundleName + "/", PreferredLocales(locale));
}

std::shared_ptr<CKvXlate> CKvXlate::GetBundle(const char* bundleName, const char* locale) {
    // The empty locale (the defaults) needs no directory at all.
    std::vector<std::string> wanted = PreferredLocales(locale);
    if (wanted.empty() || !IsApplicationName(bundleName)) return nullptr;
    std::string directory = CatalogueDirectory();
    if (directory.empty()) return nullptr;
    // ICU reads "<tree><name>.res" when the path ends with a separator.
    std::string tree = directory + "/" + bundleName + "/";
    std::string name = FirstLocaleWithFile(tree, wanted);
    if (name.empty()) return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    UResourceBundle* bundle = ures_open(tree.c_str(), name.c_str(), &status);
    // A default-locale warning means ICU did not find our file after all and
    // took the process's locale instead: not what was asked for.
    if (U_FAILURE(status) || status == U_USING_DEFAULT_WARNING) {
        ures_close(bundle);
        return nullptr;
    }
    return std::make_shared<IcuBundle>(bundle, name);
}
