// A message bundle: the catalogue texts of one application for one locale.
#pragma once

#include <memory>
#include <string>

#include "platform/formatter.h"

class CKvXlate {
public:
    virtual ~CKvXlate() = default;

    // The bundle of `bundleName` for `locale`, or null when none can be
    // opened.
    static std::shared_ptr<CKvXlate> GetBundle(const char* bundleName, const char* locale);

    // The text stored for `key`, or null when the bundle has no such entry.
    virtual const char* Lookup(const char* key) = 0;
};

// Formats `pattern` with `args`: "{n}" is the n-th argument (numbers written
// plainly). Appends to `out`.
void FormatMessagePattern(std::string& out, const char* pattern, const CpaArgList& args);
