// The directory list document: the user directories an administrator may
// pick from on the selection page.
#pragma once

#include <map>
#include <string>

// Display name to identifier, ordered byte-wise by name (unlike the request's
// field maps); a later entry with the same name replaces the earlier one.
using DirectoryTable = std::map<std::string, std::string>;

// True when an entry belongs in the list: neither its name nor its identifier
// starts with "#" (hidden directories), and with a non-empty `filter` the
// identifier starts with it (case-sensitive) or the name equals it without
// regard to case.
bool KeepDirectory(const std::string& name, const std::string& id, const std::string& filter);

// Reads the whole document into `table`, keeping the entries KeepDirectory
// admits. Text before the first "<UserDirectories>" is skipped unread; after
// the end tag only whitespace may follow. True with `cursor` on the final
// NUL. False with `cursor` on the fault and `table` holding the entries read
// before it: the NUL when there is no root or an entry's text has no end
// tag, a byte where "<" was wanted between entries, the first byte after "<"
// that starts neither an entry nor the end tag, the byte where `name=`, its
// closing quotation mark or the ">" right after it was wanted, or the first
// byte after the end tag that is not whitespace.
bool ReadDirectoryList(const char* document, DirectoryTable& table, const std::string& filter,
                       const char*& cursor);
