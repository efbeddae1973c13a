// The process-wide state of one request, put back as a fresh process has it,
// and a fixture that gives every page and handler test the same start.
#pragma once

#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "state/request_state.h"  // ResetRequestState()
#include "support/capture.h"

namespace lxrtest {

// 2005-01-05 10:20:30 UTC, a Wednesday.
constexpr time_t kFixedNow = 1104920430;

// Sets TZ and makes the C library read it again.
void SetZone(const char* zone);

// Each test starts from ResetRequestState() with English translators, the
// tag labels filled, charsetUsed "UTF-8", Now at kFixedNow, the zone UTC and
// none of the CGI variables the pages read; the state is reset again after.
class RequestTest : public ::testing::Test {
  protected:
    void SetUp() override { StartRequest(); }
    void TearDown() override;

    // The start above, again: for each case of a table.
    static void StartRequest();

    // The hidden fields collected so far, as "name=value" lines.
    static std::string Fields();

  private:
    ScopedEnv agent_{"HTTP_USER_AGENT", nullptr};
    ScopedEnv returnTo_{"HTTP_RETURNTO", nullptr};
    ScopedEnv help_{"HTTP_HELPURL", nullptr};
    ScopedEnv script_{"SCRIPT_NAME", nullptr};
    ScopedEnv now_{"LXR_NOW", nullptr};
};

}  // namespace lxrtest
