#include <cstdio>
#include <cstdlib>

#include "driver/dispatch.h"
#include "platform/formatter.h"
#include "state/request_state.h"

namespace {

// While TZ is unset, the C library looks at its default zone file again on
// every mktime, a stat for each date on a page. Naming that same file once
// lets it keep the zone it has read; the local time is the same. A zone the
// server sets is left alone.
void FixLocalZone() {
    if (std::getenv("TZ") == nullptr) setenv("TZ", ":/etc/localtime", 0);
}

}  // namespace

int main(int argc, char** argv, char** envp) {
    // One response per process: the formatter gathers it and passes it on in
    // large pieces, which stdio then need not copy into a buffer of its own.
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    FixLocalZone();
    // "Now" is the time the request started (LXR_NOW fixes it for tests).
    InitNow();
    int result = KvMainEnvUTF8(argc, argv, envp);
    FlushFormattedOutput();
    std::fflush(stdout);
    return result;
}
