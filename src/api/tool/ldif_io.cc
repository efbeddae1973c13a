#include "tool/ldif_io.h"

#include <lber.h>
#include <ldif.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "text.h"

namespace lxrapi {

namespace {

Status Fault(const std::string& name, unsigned long line, const std::string& problem) {
    return Status::BadRequest(name + ":" + std::to_string(line) + ": " + problem);
}

// Parses one record's text into `entry`. Sets `skip` for a record that holds
// only "version: 1" (the version line may also open the first entry).
Status ParseRecord(char* record, const std::string& name, unsigned long line, Entry* entry,
                   bool* skip) {
    *skip = false;
    bool sawVersion = false;
    char* next = record;
    while (char* text = ldif_getline(&next)) {
        if (text[0] == '#' || text[0] == '\0') continue;
        struct berval type, value;
        int freeval = 0;
        if (ldif_parse_line2(text, &type, &value, &freeval) != 0)
            return Fault(name, line, "cannot read the line \"" + std::string(text) + "\"");
        // libldap ends a type written with blanks before its ":" ("cn :")
        // with a NUL but counts the blanks in its length: the name is the
        // text before the NUL.
        std::string t(type.bv_val, strnlen(type.bv_val, type.bv_len));
        // Only an attribute description (letters, digits, "-", ";" options,
        // "." in OIDs) can be written out again: libldap reads "\r#: x" as an
        // attribute named "#", which an export would turn into a comment.
        if (t.empty() || t.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                             "0123456789-;.") != std::string::npos)
            return Fault(name, line, "the attribute name \"" + t + "\" is not valid");
        std::string v(value.bv_val ? value.bv_val : "", value.bv_len);
        if (freeval) ber_memfree(value.bv_val);
        if (entry->dn.empty()) {
            if (!sawVersion && EqualsNoCase(t, "version")) {
                sawVersion = true;
                continue;
            }
            if (!EqualsNoCase(t, "dn")) return Fault(name, line, "a record must begin with dn:");
            if (v.empty()) return Fault(name, line, "the dn is empty");
            entry->dn = v;
            continue;
        }
        if (EqualsNoCase(t, "changetype")) {
            if (!EqualsNoCase(v, "add"))
                return Fault(name, line, "only content records and changetype add are read");
            continue;
        }
        if (v.find('\0') != std::string::npos)
            return Fault(name, line, "binary values are not kept (attribute " + t + ")");
        // Appended in place: a user's history may hold thousands of values.
        EntryAttribute* attribute = nullptr;
        for (EntryAttribute& a : entry->attributes)
            if (!attribute && EqualsNoCase(a.name, t)) attribute = &a;
        if (attribute)
            attribute->values.push_back(std::move(v));
        else
            entry->attributes.push_back({std::move(t), {std::move(v)}});
    }
    if (entry->dn.empty()) {
        if (!sawVersion) return Fault(name, line, "a record without dn:");
        *skip = true;
    }
    return Status::OK();
}

}  // namespace

Status ParseLdif(const std::string& text, const std::string& name, std::vector<Entry>* entries) {
    entries->clear();
    std::string copy = text;
    LDIFFP* fp = ldif_open_mem(copy.data(), copy.size(), "r");
    if (!fp) return Status::BadRequest(name + ": cannot read the LDIF text");
    unsigned long lineno = 0;
    char* buffer = nullptr;
    int size = 0;
    Status s;
    for (;;) {
        unsigned long start = lineno + 1;
        int rc = ldif_read_record(fp, &lineno, &buffer, &size);
        if (rc == 0) break;
        if (rc < 0) {
            s = Fault(name, start, "cannot read the record");
            break;
        }
        Entry entry;
        bool skip = false;
        s = ParseRecord(buffer, name, start, &entry, &skip);
        if (!s.ok()) break;
        if (!skip) entries->push_back(std::move(entry));
    }
    ber_memfree(buffer);
    ldif_close(fp);
    if (!s.ok()) entries->clear();
    return s;
}

Status ReadLdifFile(const std::string& path, std::vector<Entry>* entries) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return Status::BadRequest(path + ": cannot open: " + std::strerror(errno));
    std::ostringstream text;
    text << in.rdbuf();
    return ParseLdif(text.str(), path, entries);
}

namespace {
void Put(std::string* out, const char* name, const std::string& value) {
    char* line = ldif_put_wrap(LDIF_PUT_VALUE, name, value.data(), value.size(), 76);
    if (line) {
        *out += line;
        ber_memfree(line);
    }
}
}  // namespace

std::string FormatLdif(const Entry& entry) {
    std::string out;
    Put(&out, "dn", entry.dn);
    for (const EntryAttribute& a : entry.attributes)
        for (const std::string& v : a.values) Put(&out, a.name.c_str(), v);
    out += "\n";
    return out;
}

}  // namespace lxrapi
