// Request input: the query string and the posted body as field maps, and the
// two URL codings the rest of the program uses.
#pragma once

#include <strings.h>

#include <map>
#include <string>

// Orders field names without regard to case (despite its name it is a
// less-than), so "Password" and "PASSWORD" are one field.
struct my_equal {
    bool operator()(const std::string& a, const std::string& b) const {
        return strcasecmp(a.c_str(), b.c_str()) < 0;
    }
};

using FieldMap = std::map<std::string, std::string, my_equal>;

// Query arguments; filled once per request by ParseQueryString.
extern FieldMap Args;
// Posted form fields; filled once per request by GetFields.
extern FieldMap PostData;

// Largest request body read, in bytes; a longer declared length is cut to it.
constexpr long kMaxBodyLength = 1024 * 1024;

// Form decoding ("+" is a blank, "%hh" a byte). A null text gives "".
std::string URLDecode(const char* text);
// Encodes a UTF-8 text for a URL query.
std::string URLEncode(const char* utf8Text);

// Splits `data` at "&" into `fields`; `data` is modified in place (the "&"
// separators become NULs). Values are URL-decoded when `decode` is true and
// converted to UTF-8 when the data names its character set in LXRENC.
void addToFields(FieldMap& fields, char* data, bool decode);

// Adds every pair of `query` (may be null) to Args; LXRAdminARGS values that
// end in "&" are expanded recursively.
void ParseQueryString(const char* query);

// Reads the request body from standard input into PostData.
void GetFields();
