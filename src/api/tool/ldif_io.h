// LDIF in and out of the directory store, through libldap's LDIF routines.
#pragma once

#include <string>
#include <vector>

#include "status.h"
#include "store.h"

namespace lxrapi {

// Reads content records (and "changetype: add" records) from LDIF text.
// `name` names the source in messages ("file:line: problem"). Fails with
// kBadRequest on the first faulty record; nothing is returned then.
Status ParseLdif(const std::string& text, const std::string& name, std::vector<Entry>* entries);

// Reads the LDIF file at `path`.
Status ReadLdifFile(const std::string& path, std::vector<Entry>* entries);

// One entry as an LDIF record (dn line, one line per value, wrapped at 76
// columns, base64 where the value needs it), followed by an empty line.
std::string FormatLdif(const Entry& entry);

}  // namespace lxrapi
