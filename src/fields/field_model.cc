#include "fields/field_model.h"

#include <strings.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "fields/display.h"
#include "fields/edit_date.h"
#include "fields/edit_multi.h"
#include "fields/edit_simple.h"
#include "fields/field_util.h"
#include "i18n/page_text.h"
#include "platform/env.h"

// kvlxrHistory has no handlers so that its values are neither shown nor
// edited; userPassword has no display handler because a password is only
// ever entered, never shown.
const FUNCS Funcs[] = {
    {"kvlxrAccountInactivityDays", 0, outDaysOverride, inDaysOverride},
    {"kvlxrBaseDate", 0, outDateComment, inDateCommentOrNow},
    {"kvlxrDisableAfter", 0, outDateComment, inDisableAfter},
    {"kvlxrDisableUntil", 0, outDateComment, inDisableUntil},
    {"kvlxrExpirePasswordDays", 0, outDaysOverride, inDaysOverride},
    {"kvlxrFailureCount", 0, outCountDateIP, inCountDateOrNow},
    {"kvlxrRealmBasedFailureCount", 0, outCountDateIP, inCountDateOrNow},
    {"kvlxrFailuresSinceLastLogin", 0, outCountDateIP, nullptr},
    {"kvlxrFailuresSincePreviousLogin", 0, outCountDateIP, nullptr},
    {"kvlxrGenerationalRedirects", 0, outGenRedirect, inGenRedirect},
    {"kvlxrGraceLoginsUsed", 0, outCountComment, inCount},
    {"kvlxrHistory", 0, nullptr, nullptr},
    {"kvlxrImmediateChange", 0, outImmediateChange, inImmediateChange},
    {"kvlxrInactivityWarning", 0, outDateComment, nullptr},
    {"kvlxrLastLogin", 0, outDateIP, nullptr},
    {"kvlxrLastPasswordChange", 0, outDateComment, nullptr},
    {"kvlxrLoginHistory", 1, outHistory, inHistory},
    {"kvlxrMaxFailures", 0, outCountDateIP, nullptr},
    {"kvlxrMustLoginBy", 0, outDateComment, inMustLoginBy},
    {"kvlxrNextAction", 0, outDateComment, nullptr},
    {"kvlxrPreviousLogin", 0, outDateIP, nullptr},
    {"kvlxrTotalFailures", 0, outStandard, nullptr},
    {"kvlxrTotalLogins", 0, outStandard, nullptr},
    {"kvfpsLockoutCounter", 0, outCountDateIP, inCountDateOrNow},
    {"kvfpsLog", 1, outHistory, inHistory},
    {"userPassword", 0, nullptr, inPassword},
    {nullptr, 0, nullptr, nullptr},
};

const FUNCS* FindFuncs(const char* name) {
    if (name == nullptr) return nullptr;
    // Every attribute row looks its name up here; comparing lengths first
    // leaves one or two rows to compare as text.
    static const std::vector<size_t> lengths = [] {
        std::vector<size_t> all;
        for (const FUNCS* row = Funcs; row->name != nullptr; ++row) {
            all.push_back(std::strlen(row->name));
        }
        return all;
    }();
    size_t length = std::strlen(name);
    for (size_t i = 0; Funcs[i].name != nullptr; ++i) {
        if (lengths[i] == length && strcasecmp(Funcs[i].name, name) == 0) return &Funcs[i];
    }
    return nullptr;
}

namespace {

struct TagRow {
    std::string* tag;
    const char* key;
    const char* defaultText;
};

// In assignment order; the defaults already hold HTML entities.
const TagRow kTags[] = {
    {&tagLocal, "KV-LXR-12025", "(local)"},
    {&tagComment, "KV-LXR-12017", "Comment:"},
    {&tagWhen, "KV-LXR-12026", "When:"},
    {&tagTimes, "KV-LXR-12027", "Count:"},
    {&tagDays, "KV-LXR-12028", "Days"},
    {&tagDay, "KV-LXR-12029", "Day"},
    {&tagWeeks, "KV-LXR-12030", "Weeks"},
    {&tagWeek, "KV-LXR-12031", "Week"},
    {&tagIP, "KV-LXR-12032", "IP:"},
    {&tagClear, "KV-LXR-12033", "Clear"},
    {&tagNotSet, "KV-LXR-12024", "Not&nbsp;Set"},
    {&tagNow, "KV-LXR-12034", "Reset&nbsp;to&nbsp;Now"},
    {&tagStatus, "KV-LXR-12035", "Status:"},
    {&tagYES, "KV-LXR-12036", "Yes"},
    {&tagNO, "KV-LXR-12037", "No"},
    {&tagUseConfig, "KV-LXR-12038", "&lt;default&gt;"},
    {&tagNever, "KV-LXR-12039", "&lt;never&gt;"},
    {&tagForever, "KV-LXR-12040", "Forever"},
    {&tagDisabled, "KV-LXR-12041", "User will not be able to login"},
    {&tagRedisable, "KV-LXR-12042",
     "Unless reset, this value may cause the user to be disabled at next login"},
};

}  // namespace

void FillTags() {
    for (const TagRow& row : kTags) *row.tag = PageText(Lang, row.key, row.defaultText).buffer;
}
