#include "state/request_state.h"

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "platform/env.h"
#include "platform/output_profile.h"

FieldMap Args;
FieldMap PostData;

CLanguage* Lang = nullptr;
CLanguage* LangWithID = nullptr;

CKvFormatter prtFormatter;
std::string charsetUsed;
bool bOutputHTTPHeader = false;
bool bOutputHTMLHeader = false;

std::vector<OUTPUTFIELD> OutputFields;
std::vector<std::string> DataEdits;
std::vector<std::string> DataMoves;

std::string tagLocal, tagComment, tagWhen, tagTimes, tagDays, tagDay, tagWeeks, tagWeek, tagIP,
    tagClear, tagNotSet, tagNow, tagStatus, tagYES, tagNO, tagUseConfig, tagNever, tagForever,
    tagDisabled, tagRedisable;

time_t Now = 0;

std::string DisabledReason;

// Zero-initialised and never assigned.
const char* Qualifier;

void AddOutputField(std::string name, std::string value) {
    OutputFields.push_back(OUTPUTFIELD{std::move(name), std::move(value)});
}

void InitNow() {
    Now = time(nullptr);
    const char* text = CKvGetEnv("LXR_NOW").c_str();
    if (text == nullptr || *text < '0' || *text > '9') return;
    errno = 0;
    char* end = nullptr;
    long long seconds = std::strtoll(text, &end, 10);
    if (errno == 0 && *end == '\0') Now = static_cast<time_t>(seconds);
}

void ResetRequestState() {
    Args.clear();
    PostData.clear();
    Lang = nullptr;
    LangWithID = nullptr;
    prtFormatter = CKvFormatter();
    charsetUsed.clear();
    bOutputHTTPHeader = false;
    bOutputHTMLHeader = false;
    OutputFields.clear();
    DataEdits.clear();
    DataMoves.clear();
    for (std::string* tag :
         {&tagLocal, &tagComment,   &tagWhen,  &tagTimes,   &tagDays,     &tagDay,      &tagWeeks,
          &tagWeek,  &tagIP,        &tagClear, &tagNotSet,  &tagNow,      &tagStatus,   &tagYES,
          &tagNO,    &tagUseConfig, &tagNever, &tagForever, &tagDisabled, &tagRedisable}) {
        tag->clear();
    }
    Now = 0;
    DisabledReason.clear();
    SetStrictOutput(false);
}
