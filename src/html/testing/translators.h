// Test helpers: translators that answer with the English defaults, or with
// chosen catalogue texts, without any catalogue installed. Header-only.
//
//   lxrtest::UseDefaultTranslators();              // Lang, LangWithID: defaults
//   lxrtest::UseCatalogue({{"KV-LXR-15000", "/errors/bad.html"}});
//
// Each call replaces (and frees) the translators the previous call installed.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "i18n/bundle.h"
#include "i18n/language.h"

namespace lxrtest {

// A bundle holding exactly the given texts.
class FakeBundle : public CKvXlate {
  public:
    explicit FakeBundle(std::map<std::string, std::string> texts) : texts_(std::move(texts)) {}
    const char* Lookup(const char* key) override {
        auto it = texts_.find(key ? key : "");
        return it == texts_.end() ? nullptr : it->second.c_str();
    }

  private:
    std::map<std::string, std::string> texts_;
};

// A translator whose bundle is set in advance, so nothing is loaded.
class FakeLanguage : public CLanguage {
  public:
    FakeLanguage(bool withId, std::shared_ptr<CKvXlate> bundle)
        : CLanguage("LXRAdmin", "en", withId) {
        bundle_ = std::move(bundle);
        loaded_ = true;
    }
};

// Sets Lang and LangWithID to translators that know `texts` and give the
// English default for every other key.
inline void UseCatalogue(const std::map<std::string, std::string>& texts) {
    static std::unique_ptr<CLanguage> plain;
    static std::unique_ptr<CLanguage> withId;
    auto bundle = std::make_shared<FakeBundle>(texts);
    plain = std::make_unique<FakeLanguage>(false, bundle);
    withId = std::make_unique<FakeLanguage>(true, bundle);
    Lang = plain.get();
    LangWithID = withId.get();
}

inline void UseDefaultTranslators() {
    UseCatalogue({});
}

}  // namespace lxrtest
