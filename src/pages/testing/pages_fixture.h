// Test support for the user pages: translators with a chosen catalogue, and
// a fixture that resets every process-wide global the pages read or write.
// Not for the program itself.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cgi/fields.h"
#include "cgi/response.h"
#include "fields/field_model.h"
#include "html/page.h"
#include "html/testing/capture.h"
#include "i18n/bundle.h"
#include "i18n/language.h"
#include "pages/user_display.h"
#include "state/request_state.h"

namespace pagestest {

using Catalogue = std::map<std::string, std::string>;
// Request arguments for a table row, copied into Args.
using FieldMapInit = std::vector<std::pair<std::string, std::string>>;

// A bundle that knows exactly the texts it is given.
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

// A translator whose bundle is `texts`, loaded already.
class TestLanguage : public CLanguage {
  public:
    TestLanguage(bool withId, const Catalogue& texts) : CLanguage("LXRAdmin", "en", withId) {
        bundle_ = std::make_shared<MapBundle>(texts);
        loaded_ = true;
    }
};

// Installs Lang and LangWithID over `texts` (empty: every text its English
// default).
inline void UseCatalogue(const Catalogue& texts) {
    static std::unique_ptr<CLanguage> plain, withId;
    plain = std::make_unique<TestLanguage>(false, texts);
    withId = std::make_unique<TestLanguage>(true, texts);
    Lang = plain.get();
    LangWithID = withId.get();
}

inline void ResetPageGlobals() {
    ResetRequestState();
    charsetUsed = "UTF-8";
    tagDisabled = "DISABLED-TAG";
    tagRedisable = "REDISABLE-TAG";
    Now = 1700000000;  // 2023-11-14 22:13:20 UTC
    UseCatalogue({});
}

// The page globals reset before each test; the CGI variables the pages read
// are unset for the test's duration.
class PagesTest : public ::testing::Test {
  protected:
    void SetUp() override { ResetPageGlobals(); }
    void TearDown() override { ResetPageGlobals(); }

    template <class F>
    std::string Capture(F body) {
        return lxrtest::CaptureStdout(body);
    }

    // The hidden fields collected so far, as "name=value" lines.
    static std::string Fields() {
        std::string out;
        for (const OUTPUTFIELD& f : OutputFields) out += f.name + "=" + f.value + "\n";
        return out;
    }

  private:
    lxrtest::ScopedEnv agent_{"HTTP_USER_AGENT", nullptr};
    lxrtest::ScopedEnv returnTo_{"HTTP_RETURNTO", nullptr};
    lxrtest::ScopedEnv help_{"HTTP_HELPURL", nullptr};
    lxrtest::ScopedEnv script_{"SCRIPT_NAME", nullptr};
    lxrtest::ScopedEnv now_{"LXR_NOW", nullptr};
};

// Where a reader stopped, as an offset into the text it was given.
inline long Offset(const char* text, const char* cursor) {
    return cursor - text;
}

}  // namespace pagestest
