// The message catalogue: compiled ICU resource bundles, one tree per
// application, read at run time from the catalogue directory
// (docs/catalogues.md describes the files).
#pragma once

#include <memory>
#include <string>

#include "i18n/locale_list.h"
#include "platform/formatter.h"

// The catalogue texts of one application for one locale.
class CKvXlate {
  public:
    virtual ~CKvXlate() = default;

    // The bundle of `bundleName` ("LXRAdmin", "KvCPW") for `locale`, or null
    // when none can be opened. `locale` is a tag or an accept-list; its
    // entries are tried in quality order, each with its parents ("de_DE",
    // then "de"), and the first that has a compiled bundle is opened. An
    // English entry (or "*") without a bundle of its own ends the search with
    // null: English is what the program's defaults already say. No entry,
    // no catalogue directory, or a file ICU cannot read also give null; the
    // callers then use their English defaults. Nothing of ICU is touched
    // unless a bundle file exists.
    static std::shared_ptr<CKvXlate> GetBundle(const char* bundleName, const char* locale);

    // The text stored for `key` (as UTF-8), or null when the bundle has no
    // such entry. The text lives as long as the bundle.
    virtual const char* Lookup(const char* key) = 0;

    // The locale the bundle was opened for ("de", "de_CH"); texts with
    // arguments are formatted by its rules.
    virtual const char* LocaleName() const { return ""; }
};

// The directory that holds the catalogue: LXRADMIN_CATALOGUE when set and
// not empty, else "catalogue" beside the running executable
// ("/opt/lxr/cgi-bin/LXRAdmin" -> "/opt/lxr/cgi-bin/catalogue"). "" when
// neither can be found.
std::string CatalogueDirectory();

// The locale whose bundle GetBundle would open for `locale` in
// <directory>/<bundleName>/, or "" when the English defaults apply.
std::string ChooseCatalogueLocale(const std::string& directory, const char* bundleName,
                                  const char* locale);

// Formats `pattern` the way catalogue texts are formatted, with ICU's
// message syntax: "{n}" is the n-th argument of `args`, counted from 0, in
// any order. An argument that appears only as a plain "{n}" is written as it
// stands, numbers in plain decimal ("{0}" with 1234 gives "1234"); one given
// a type ("{0,number}") is formatted by the rules of `locale`. A pattern
// with neither "{" nor an apostrophe is copied unformatted. "%0" means
// nothing and stays. Appends to `out` and returns true; returns false and
// appends nothing for a null or malformed pattern or arguments the pattern
// cannot take.
bool FormatMessagePattern(std::string& out, const char* pattern, const CpaArgList& args,
                          const char* locale = "");
