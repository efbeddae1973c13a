#include "support/translators.h"

#include <memory>
#include <utility>

#include "i18n/bundle.h"
#include "i18n/language.h"

namespace lxrtest {
namespace {

// A bundle holding exactly the given texts.
class MapBundle : public CKvXlate {
  public:
    explicit MapBundle(Catalogue texts) : texts_(std::move(texts)) {}
    const char* Lookup(const char* key) override {
        auto it = texts_.find(key ? key : "");
        return it == texts_.end() ? nullptr : it->second.c_str();
    }

  private:
    Catalogue texts_;
};

// A translator whose bundle is set in advance, so nothing is loaded.
class PreloadedLanguage : public CLanguage {
  public:
    PreloadedLanguage(bool withId, std::shared_ptr<CKvXlate> bundle)
        : CLanguage("LXRAdmin", "en", withId) {
        bundle_ = std::move(bundle);
        loaded_ = true;
    }
};

}  // namespace

void UseCatalogue(const Catalogue& texts) {
    static std::unique_ptr<CLanguage> plain;
    static std::unique_ptr<CLanguage> withId;
    auto bundle = std::make_shared<MapBundle>(texts);
    plain = std::make_unique<PreloadedLanguage>(false, bundle);
    withId = std::make_unique<PreloadedLanguage>(true, bundle);
    Lang = plain.get();
    LangWithID = withId.get();
}

}  // namespace lxrtest
