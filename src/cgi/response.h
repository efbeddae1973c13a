// The response header block, redirects and the response character set.
#pragma once

#include <string>
#include <vector>

// The character set named in every Content-Type header; set by SetCharSet.
extern std::string charsetUsed;
// True once the page header block has been written.
extern bool bOutputHTTPHeader;

// Chooses charsetUsed from HTTP_ACCEPT_CHARSET. Called once, before output.
void SetCharSet();

// Writes "Status: ...\nContent-Type: text/html;charset=...\n\n" once.
void HTTPHeader(const char* status);

// Writes a whole 302 response to `url` (with "<NAME>" macros expanded from
// Args), with `query` appended (URL-encoded when `encodeQuery`).
void Redirect(const char* url, const char* query, bool encodeQuery);

// Appends the entries of an accept header to `result`, best quality first.
// Returns 0 for an empty header, else 1.
int SortAcceptHeader(std::string& header, std::vector<std::string>& result);

// True when `text` is non-null, non-empty and starts with "/", "http:" or
// "https:" (case-sensitive).
bool IsURL(const char* text);
