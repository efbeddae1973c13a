#include <cstdio>

#include "driver/dispatch.h"
#include "state/request_state.h"

int main(int argc, char** argv, char** envp) {
    // One response per process: let it leave in a few large writes.
    static char outBuffer[1 << 16];
    std::setvbuf(stdout, outBuffer, _IOFBF, sizeof outBuffer);
    // "Now" is the time the request started (LXR_NOW fixes it for tests).
    InitNow();
    int result = KvMainEnvUTF8(argc, argv, envp);
    std::fflush(stdout);
    return result;
}
