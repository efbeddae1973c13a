#include "support/request_reset.h"

#include <cstdlib>

#include "fields/field_model.h"
#include "state/request_state.h"
#include "support/translators.h"

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
    for (const OUTPUTFIELD& f : OutputFields) out += f.name + "=" + f.value + "\n";
    return out;
}

}  // namespace lxrtest
