#include "platform/console.h"

#include <cstdio>

#include "platform/formatter.h"

int KvGetStringInputFromConsole(int size, char* buffer, int /*flag*/) {
    if (buffer == nullptr || size <= 0) return 0;
    size_t want = static_cast<size_t>(size - 1);
    size_t got = 0;
    while (got < want) {
        size_t n = std::fread(buffer + got, 1, want - got, stdin);
        if (n == 0) break;
        got += n;
    }
    buffer[got] = '\0';
    return static_cast<int>(got);
}

static void PrintTo(FILE* stream, const char* text, int flag) {
    // After what the formatter has gathered, which may not have left yet.
    if (stream == stdout) FlushFormattedOutput();
    if (text) std::fputs(text, stream);
    if (flag == 1) std::fputc('\n', stream);
    std::fflush(stream);
}

void KvPrintBufferToConsole(const char* text, int flag) {
    PrintTo(stdout, text, flag);
}
void KvPrintBufferToError(const char* text, int flag) {
    PrintTo(stderr, text, flag);
}
