#include "list_request.h"

#include "platform/escape.h"

const ListKindName kListKinds[7] = {
    {ListKind::kLocked, "locked"},   {ListKind::kDisabled, "disabled"},
    {ListKind::kExpired, "expired"}, {ListKind::kExpiring, "expiring"},
    {ListKind::kIdle, "idle"},       {ListKind::kMustChange, "mustchange"},
    {ListKind::kSearch, "search"},
};

namespace {

// A text the request document can carry between quotation marks as it
// stands: no markup character and no control character.
bool PlainText(const std::string& text) {
    for (unsigned char c : text) {
        if (c < 0x20 || c == 0x7F || c == '"' || c == '<' || c == '>' || c == '&') return false;
    }
    return true;
}

// A decimal number from `low` to `high`, digits only (no sign, no blanks).
bool ReadNumber(const std::string& text, int low, int high, int& value) {
    if (text.empty() || text.size() > 6) return false;
    int n = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return false;
        n = n * 10 + (c - '0');
    }
    if (n < low || n > high) return false;
    value = n;
    return true;
}

const std::string* Find(const FieldMap& args, const char* name) {
    auto it = args.find(name);
    return it == args.end() ? nullptr : &it->second;
}

}  // namespace

const char* ListWord(ListKind kind) {
    for (const ListKindName& k : kListKinds) {
        if (k.kind == kind) return k.word;
    }
    return "";
}

bool TakesDays(ListKind kind) {
    return kind == ListKind::kExpiring || kind == ListKind::kIdle;
}

bool ReadListQuery(const FieldMap& args, ListQuery& query, std::string& problem) {
    if (const std::string* list = Find(args, "LIST")) {
        bool known = false;
        for (const ListKindName& k : kListKinds) {
            if (*list == k.word) {
                query.kind = k.kind;
                known = true;
            }
        }
        if (!known) return problem = "LIST", false;
    }
    if (const std::string* days = Find(args, "DAYS")) {
        if (!ReadNumber(*days, 1, kMaxDays, query.days)) return problem = "DAYS", false;
    }
    if (const std::string* size = Find(args, "SIZE")) {
        if (!ReadNumber(*size, 1, kMaxPageSize, query.size)) return problem = "SIZE", false;
    }
    struct Text {
        const char* name;
        std::string* into;
    } texts[] = {{"DIR", &query.directory}, {"START", &query.start}, {"NEXT", &query.continuation}};
    for (const Text& t : texts) {
        const std::string* value = Find(args, t.name);
        if (value == nullptr) continue;
        if (!PlainText(*value)) return problem = t.name, false;
        *t.into = *value;
    }
    return true;
}

std::string ListRequestDocument(const ListQuery& query) {
    std::string doc =
        "<ListRequest directory=\"" + query.directory + "\" list=\"" + ListWord(query.kind) + "\"";
    if (TakesDays(query.kind)) doc += " days=\"" + std::to_string(query.days) + "\"";
    if (query.kind == ListKind::kSearch) doc += " start=\"" + query.start + "\"";
    doc += " size=\"" + std::to_string(query.size) + "\"";
    if (!query.continuation.empty()) doc += " continuation=\"" + query.continuation + "\"";
    doc += "/>";
    return doc;
}

std::string ListQueryString(const ListQuery& query, const std::string& continuation) {
    std::string q = "?DIR=" + UrlArg(query.directory.c_str()) + "&LIST=" + ListWord(query.kind);
    if (TakesDays(query.kind)) q += "&DAYS=" + std::to_string(query.days);
    if (query.kind == ListKind::kSearch) q += "&START=" + UrlArg(query.start.c_str());
    q += "&SIZE=" + std::to_string(query.size);
    if (!continuation.empty()) q += "&NEXT=" + UrlArg(continuation.c_str());
    return q;
}
