#include "reply_fit.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "attributes.h"
#include "text.h"

namespace lxrapi {

namespace {

// One value that may be left out, and what it weighs.
struct Candidate {
    uint64_t age;      // the stamp's digits as a number; 0 (older than any) without one
    size_t attribute;  // index in UserView::attributes
    size_t index;      // index in its values
    size_t bytes;      // what leaving it out saves
};

// YYYYMMDDhhmmss of a stamp YYYYMMDDhhmmssZ as a number, which orders stamps
// as the instants they name; 0 for anything else.
uint64_t StampAge(std::string_view word) {
    if (word.size() != 15 || word[14] != 'Z') return 0;
    uint64_t age = 0;
    for (size_t i = 0; i < 14; ++i) {
        if (word[i] < '0' || word[i] > '9') return 0;
        age = age * 10 + static_cast<uint64_t>(word[i] - '0');
    }
    return age;
}

uint64_t AgeOf(ValueForm form, std::string_view value) {
    std::string_view rest = value;
    std::string_view first = TakeWord(rest);
    return StampAge(form == ValueForm::kRedirect ? TakeWord(rest) : first);
}

// Oldest first: by stamp, and of equal stamps the later stored one first.
bool Older(const Candidate& a, const Candidate& b) {
    if (a.age != b.age) return a.age < b.age;
    if (a.attribute != b.attribute) return a.attribute > b.attribute;
    return a.index > b.index;
}

// The values of the attributes of `form`, oldest first.
std::vector<Candidate> EntriesOldestFirst(const UserView& view, ValueForm form) {
    std::vector<Candidate> entries;
    for (size_t a = 0; a < view.attributes.size(); ++a) {
        if (view.attributes[a].info->form != form) continue;
        const std::vector<std::string>& values = view.attributes[a].values;
        // Last stored first: stores keep the newest first, so one history
        // comes out in order and needs no sorting.
        for (size_t i = values.size(); i-- > 0;)
            entries.push_back({AgeOf(form, values[i]), a, i, ValueBytes(values[i])});
    }
    if (!std::is_sorted(entries.begin(), entries.end(), Older))
        std::sort(entries.begin(), entries.end(), Older);
    return entries;
}

// Leaves out the first `count` of `entries`; the other values keep their
// stored order.
void Remove(UserView* view, const std::vector<Candidate>& entries, size_t count) {
    std::vector<std::vector<bool>> dropped(view->attributes.size());
    for (size_t k = 0; k < count; ++k) {
        std::vector<bool>& marks = dropped[entries[k].attribute];
        marks.resize(view->attributes[entries[k].attribute].values.size(), false);
        marks[entries[k].index] = true;
    }
    for (size_t a = 0; a < view->attributes.size(); ++a) {
        if (dropped[a].empty()) continue;
        std::vector<std::string>& values = view->attributes[a].values;
        std::vector<std::string> kept;
        for (size_t i = 0; i < values.size(); ++i)
            if (!dropped[a][i]) kept.push_back(std::move(values[i]));
        values = std::move(kept);
    }
}

// Each history cut to its `limit` newest entries.
void CapHistories(UserView* view, size_t limit) {
    for (AttributeView& a : view->attributes) {
        if (a.info->form != ValueForm::kHistoryEntry || a.values.size() <= limit) continue;
        UserView one;
        one.attributes.push_back(std::move(a));
        std::vector<Candidate> entries = EntriesOldestFirst(one, ValueForm::kHistoryEntry);
        Remove(&one, entries, entries.size() - limit);
        a = std::move(one.attributes.front());
    }
}

// Leaves out entries of `form`, oldest first, until `excess` bytes are saved
// or only the `keep` newest are left; returns what is still in excess.
size_t Shed(UserView* view, ValueForm form, size_t keep, size_t excess) {
    std::vector<Candidate> entries = EntriesOldestFirst(*view, form);
    size_t count = 0;
    while (excess > 0 && count + keep < entries.size()) {
        excess -= std::min(excess, entries[count].bytes);
        ++count;
    }
    Remove(view, entries, count);
    return excess;
}

}  // namespace

Status WriteFittedUserDocument(UserView view, size_t room, int historyLimit, std::string* out) {
    out->clear();
    CapHistories(&view, static_cast<size_t>(std::max(historyLimit, 0)));
    std::string document = WriteUserDocument(view);
    if (document.size() > room) {
        size_t excess = document.size() - room;
        excess = Shed(&view, ValueForm::kHistoryEntry, 0, excess);
        // The page posts the redirects it shows, and an empty field when it
        // shows none, which the write reads as "remove them all"; so the
        // newest redirect stays.
        excess = Shed(&view, ValueForm::kRedirect, 1, excess);
        document = WriteUserDocument(view);
        if (excess > 0 || document.size() > room)
            // Even without histories and with one redirect.
            return Status(kBufferTooSmall,
                          Words(Say::ReplyTooLarge, std::to_string(document.size() + 1),
                                std::to_string(room + 1)));
    }
    *out = std::move(document);
    return Status::OK();
}

}  // namespace lxrapi
