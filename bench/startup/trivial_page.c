/* The yardstick for the start-up benchmark: the least a CGI program can do,
 * namely write one fixed page and exit. */
#include <stdio.h>

static const char page[] =
    "Status: 503 SERVICE UNAVAILABLE\n"
    "Content-Type: text/html;charset=UTF-8\n"
    "\n"
    "<html>\n"
    "<head>\n"
    "<title>LXR Administration Service</title>\n"
    "</head>\n"
    "<body>\n"
    "<h1>[KV-LXR-15003] LXR Administration Service must run under a Web Agent.</h1>\n"
    "</body>\n"
    "</html>\n";

int main(void) {
    fwrite(page, 1, sizeof page - 1, stdout);
    return 0;
}
