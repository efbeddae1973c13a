// The library's own texts in the caller's language. Every message and
// disabled reason is a Text: a key from texts.def and its arguments, put
// into words only where the caller's language is known (the C boundary and
// the User document). A bundle of the caller's language may translate a
// text; what it lacks, or cannot format, is said in English.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace lxrapi {

enum class Say : int {
#define LXR_TEXT(key, english) key,
#define LXR_REASON(key, english) key,
#include "texts.def"
#undef LXR_TEXT
#undef LXR_REASON
};

struct Text {
    Say say;
    std::vector<std::string> args;  // outside data already made Shown()/Quoted()
};

// A text with its arguments: Words(Say::NoUserFound, Quoted(user)).
template <typename... Args>
Text Words(Say say, Args&&... args) {
    return Text{say, {std::string(std::forward<Args>(args))...}};
}

struct TextEntry {
    const char* key;
    const char* english;
    bool reason;  // a disabled reason: no comma in any language
};

// Every text, in the order of texts.def.
const std::vector<TextEntry>& TextTable();

// The text with its arguments in English.
std::string InEnglish(const Text& text);

// The directory that holds the library's bundles (LXRAPI/<locale>.res):
// LXRAPI_CATALOGUE when set and not empty, else "catalogue" beside the file
// the library was loaded from ("/opt/lxr/lib/libLXRAPI.so" ->
// "/opt/lxr/lib/catalogue"), so that the build tree and an installation
// both work without a path built in.
std::string ApiCatalogueDirectory();

class Bundle;

class Translator {
  public:
    // English: the defaults of texts.def.
    Translator() = default;
    // The bundle for the caller's arguments: `language` is a tag or an
    // accept-list ("de", "fr-CA", "fr,de;q=0.8"); `country` is joined to a
    // bare language ("EN" and "US" give "en-US") and ignored otherwise. No
    // bundle for any of them means English; a null or empty directory means
    // ApiCatalogueDirectory(). The bundle is looked for at the first text
    // asked for: most requests translate none, and finding a bundle loads
    // ICU and its data.
    Translator(const char* language, const char* country, const std::string& directory = "");

    // The text with its arguments in place. An argument is never formatted
    // as a number: it stands as the caller wrote it.
    std::string operator()(const Text& text) const;

    // The locale of the bundle in use ("de", "pt"), or "" for English.
    std::string locale() const;

  private:
    const Bundle* Found() const;

    std::string wanted_;     // the caller's locale text; empty: English
    std::string directory_;  // where to look; empty: ApiCatalogueDirectory()
    mutable bool looked_ = false;
    mutable std::shared_ptr<const Bundle> bundle_;
};

// `pattern` with each "{n}" replaced by args[n]; the English defaults need no
// more than that, and so an English request never loads ICU.
std::string FillIn(const std::string& pattern, const std::vector<std::string>& args);

}  // namespace lxrapi
