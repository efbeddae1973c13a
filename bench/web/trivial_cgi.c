/* The yardstick of the web benchmark: a CGI program that does the least any
 * CGI can do, namely write one fixed page and exit, served through the same
 * lighttpd as LXRAdmin. The difference is what the program itself costs. */
#include <stdio.h>

static const char page[] =
    "Status: 200 OK\r\n"
    "Content-Type: text/html;charset=UTF-8\r\n"
    "\r\n"
    "<html>\n"
    "<head>\n"
    "<title>LXR Administration Service</title>\n"
    "</head>\n"
    "<body>\n"
    "<p>A fixed page.</p>\n"
    "</body>\n"
    "</html>\n";

int main(void) {
    fwrite(page, 1, sizeof page - 1, stdout);
    return 0;
}
