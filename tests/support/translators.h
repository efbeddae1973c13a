// Translators for tests: the English defaults, or chosen catalogue texts,
// without any catalogue installed.
//
//   lxrtest::UseCatalogue({{"KV-LXR-15000", "/errors/bad.html"}});
//   lxrtest::UseCatalogue({});   // every text its English default
#pragma once

#include <map>
#include <string>

namespace lxrtest {

using Catalogue = std::map<std::string, std::string>;

// Sets Lang and LangWithID to translators that know `texts` and give the
// English default for every other key. The translators belong to this
// module; each call frees those the previous call installed.
void UseCatalogue(const Catalogue& texts);

}  // namespace lxrtest
