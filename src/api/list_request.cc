#include "list_request.h"

#include <cstdint>
#include <cstdlib>

#include "message.h"
#include "text.h"

namespace lxrapi {

namespace {

constexpr char kHex[] = "0123456789abcdef";
constexpr size_t kFingerprintDigits = 16;

struct ListName {
    const char* name;
    ListKind kind;
    bool days;
};

constexpr ListName kLists[] = {
    {"locked", ListKind::kLocked, false},   {"disabled", ListKind::kDisabled, false},
    {"expired", ListKind::kExpired, false}, {"expiring", ListKind::kExpiring, true},
    {"idle", ListKind::kIdle, true},        {"mustchange", ListKind::kMustChange, false},
    {"search", ListKind::kSearch, false},
};

Status Malformed(size_t offset, std::string_view problem) {
    return Status::BadRequest(
        Words(Say::ListRequestMalformed, std::to_string(offset), std::string(problem)));
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The attribute value with its five predefined references resolved.
bool Unescape(std::string_view raw, std::string* out) {
    static constexpr std::pair<std::string_view, char> kRefs[] = {
        {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
    out->clear();
    for (size_t i = 0; i < raw.size();) {
        if (raw[i] == '<') return false;
        if (raw[i] != '&') {
            *out += raw[i++];
            continue;
        }
        bool known = false;
        for (const auto& [ref, c] : kRefs)
            if (raw.substr(i, ref.size()) == ref) {
                *out += c;
                i += ref.size();
                known = true;
                break;
            }
        if (!known) return false;
    }
    return true;
}

// FNV-1a over the fields that choose the users of a list.
std::string Fingerprint(const ListRequest& r) {
    uint64_t h = 14695981039346656037ull;
    auto add = [&h](std::string_view text) {
        for (unsigned char c : text) h = (h ^ c) * 1099511628211ull;
        h = (h ^ 0xff) * 1099511628211ull;  // separates the fields
    };
    add(Lower(r.directory));
    add(r.listName);
    add(std::to_string(r.days));
    add(Lower(r.start));
    std::string out;
    for (int shift = 60; shift >= 0; shift -= 4) out += kHex[(h >> shift) & 0xf];
    return out;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

bool ParseNumber(const std::string& text, long low, long high, long* value) {
    if (text.empty() || text.size() > 9 || !AllDigits(text)) return false;
    *value = std::strtol(text.c_str(), nullptr, 10);
    return *value >= low && *value <= high;
}

Status CheckFields(ListRequest* r, const std::string& days, bool haveDays, bool haveStart,
                   const std::string& size, bool haveSize, const std::string& continuation) {
    const ListName* list = nullptr;
    for (const ListName& l : kLists)
        if (r->listName == l.name) list = &l;
    if (r->directory.empty()) return Status::BadRequest(Words(Say::ListRequestNeeds, "directory"));
    if (!list) return Status::BadRequest(Words(Say::UnknownList, Quoted(r->listName, 40)));
    r->kind = list->kind;
    if (list->days != haveDays)
        return Status::BadRequest(
            Words(haveDays ? Say::ListTakesNo : Say::ListRequestNeeds, "days"));
    if (haveDays && !ParseNumber(days, 1, kMaxListDays, &r->days))
        return Status::BadRequest(Words(Say::ListNumberOutOfRange, "days", Quoted(days, 20),
                                        std::to_string(kMaxListDays)));
    if (haveStart && r->kind != ListKind::kSearch)
        return Status::BadRequest(Words(Say::ListTakesNo, "start"));
    long n = kDefaultListSize;
    if (haveSize && !ParseNumber(size, 1, kMaxListSize, &n))
        return Status::BadRequest(Words(Say::ListNumberOutOfRange, "size", Quoted(size, 20),
                                        std::to_string(kMaxListSize)));
    r->size = static_cast<int>(n);
    if (continuation.empty()) return Status::OK();
    bool good = continuation.size() > kFingerprintDigits && continuation.size() % 2 == 0 &&
                continuation.compare(0, kFingerprintDigits, Fingerprint(*r)) == 0;
    for (size_t i = kFingerprintDigits; good && i < continuation.size(); i += 2) {
        int hi = HexDigit(continuation[i]), lo = HexDigit(continuation[i + 1]);
        good = hi >= 0 && lo >= 0;
        r->position += static_cast<char>(hi * 16 + lo);
    }
    if (!good) {
        r->position.clear();
        return Status::BadRequest(Words(Say::ContinuationNotOfRequest));
    }
    return Status::OK();
}

}  // namespace

Status ParseListRequest(std::string_view text, ListRequest* request) {
    constexpr std::string_view kOpen = "<ListRequest";
    size_t i = 0;
    while (i < text.size() && IsBlank(text[i])) ++i;
    if (text.substr(i, kOpen.size()) != kOpen) return Malformed(i, "ListRequest");
    i += kOpen.size();
    ListRequest r;
    std::string days, size, continuation;
    bool haveDays = false, haveStart = false, haveSize = false, haveContinuation = false;
    bool haveDirectory = false, haveList = false;
    for (;;) {
        size_t before = i;
        while (i < text.size() && IsBlank(text[i])) ++i;
        if (text.substr(i, 2) == "/>") {
            i += 2;
            break;
        }
        if (i == before || i >= text.size()) return Malformed(i, "/");
        size_t nameStart = i;
        while (i < text.size() && text[i] != '=' && !IsBlank(text[i]) && text[i] != '/') ++i;
        std::string_view name = text.substr(nameStart, i - nameStart);
        while (i < text.size() && IsBlank(text[i])) ++i;
        if (i >= text.size() || text[i] != '=') return Malformed(i, "=");
        ++i;
        while (i < text.size() && IsBlank(text[i])) ++i;
        if (i >= text.size() || text[i] != '"') return Malformed(i, "'");
        size_t close = text.find('"', i + 1);
        if (close == std::string_view::npos) return Malformed(i, "'");
        std::string value;
        if (!Unescape(text.substr(i + 1, close - i - 1), &value))
            return Malformed(i + 1, "amp lt gt quot apos");
        struct Slot {
            const char* name;
            std::string* value;
            bool* seen;
        } slots[] = {{"directory", &r.directory, &haveDirectory},
                     {"list", &r.listName, &haveList},
                     {"days", &days, &haveDays},
                     {"start", &r.start, &haveStart},
                     {"size", &size, &haveSize},
                     {"continuation", &continuation, &haveContinuation}};
        Slot* slot = nullptr;
        for (Slot& s : slots)
            if (name == s.name) slot = &s;
        if (!slot || *slot->seen)
            return Malformed(nameStart, "directory list days start size continuation");
        *slot->value = std::move(value);
        *slot->seen = true;
        i = close + 1;
    }
    while (i < text.size() && IsBlank(text[i])) ++i;
    if (i != text.size()) return Malformed(i, "/");
    Status s = CheckFields(&r, days, haveDays, haveStart, size, haveSize, continuation);
    if (s.ok()) *request = std::move(r);
    return s;
}

std::string MakeContinuation(const ListRequest& request, std::string_view position) {
    std::string out = Fingerprint(request);
    for (unsigned char c : position) {
        out += kHex[c >> 4];
        out += kHex[c & 0xf];
    }
    return out;
}

}  // namespace lxrapi
