// What linking ICU statically costs a process that never calls it: a C++
// program built like LXRAdmin (position-independent, libstdc++ and libgcc
// static, unused sections dropped, packed relocations) that writes the
// trivial CGI's page. Built twice: web_floor_cxx without ICU, web_floor_icu
// with the ICU calls LXRAdmin makes linked in but never reached, so the
// difference is the loader's work on ICU's tables alone.
#include <cstdio>
#include <string>

#ifdef LXR_FLOOR_WITH_ICU
#include <unicode/casemap.h>
#include <unicode/msgfmt.h>
#include <unicode/ucnv.h>
#include <unicode/ures.h>
#endif

int main(int argc, char** argv) {
#ifdef LXR_FLOOR_WITH_ICU
    // Never true under the benchmark (no arguments); the compiler cannot know.
    if (argc > 9) {
        UErrorCode status = U_ZERO_ERROR;
        ures_close(ures_open(argv[1], argv[2], &status));
        icu::MessageFormat format(icu::UnicodeString::fromUTF8(argv[3]), status);
        ucnv_close(ucnv_open(argv[4], &status));
        char lower[16];
        icu::CaseMap::utf8ToLower(nullptr, 0, argv[5], 1, lower, sizeof lower, nullptr, status);
    }
#else
    (void)argc;
    (void)argv;
#endif
    std::string body = "<p>A fixed page.</p>\n";
    std::printf(
        "Status: 200 OK\r\nContent-Type: text/html;charset=UTF-8\r\n\r\n<html>\n<head>\n"
        "<title>LXR Administration Service</title>\n</head>\n<body>\n%s</body>\n</html>\n",
        body.c_str());
    return 0;
}
