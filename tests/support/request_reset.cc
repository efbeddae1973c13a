#include "support/request_reset.h"

#include <cstdlib>

#include "cgi/fields.h"
#include "cgi/response.h"
#include "fields/field_model.h"
#include "html/output_profile.h"
#include "html/page.h"
#include "i18n/language.h"
#include "pages/user_display.h"
#include "support/translators.h"

void ResetRequestState() {
    Args.clear();
    PostData.clear();
    for (OUTPUTFIELD* field : OutputFields) delete field;
    OutputFields.clear();
    DataEdits.clear();
    DataMoves.clear();
    for (std::string* tag :
         {&tagLocal, &tagComment,   &tagWhen,  &tagTimes,   &tagDays,     &tagDay,      &tagWeeks,
          &tagWeek,  &tagIP,        &tagClear, &tagNotSet,  &tagNow,      &tagStatus,   &tagYES,
          &tagNO,    &tagUseConfig, &tagNever, &tagForever, &tagDisabled, &tagRedisable}) {
        tag->clear();
    }
    DisabledReason.clear();
    bNewSection = true;
    bOutputHTTPHeader = false;
    bOutputHTMLHeader = false;
    charsetUsed.clear();
    Now = 0;
    Lang = nullptr;
    LangWithID = nullptr;
    SetStrictOutput(false);
}

namespace lxrtest {

void SetZone(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
}

void RequestTest::StartRequest() {
    ResetRequestState();
    UseCatalogue({});
    FillTags();
    charsetUsed = "UTF-8";
    Now = kFixedNow;
    SetZone("UTC");
}

void RequestTest::TearDown() {
    ResetRequestState();
    SetZone("UTC");
}

std::string RequestTest::Fields() {
    std::string out;
    for (const OUTPUTFIELD* f : OutputFields) out += f->name + "=" + f->value + "\n";
    return out;
}

}  // namespace lxrtest
