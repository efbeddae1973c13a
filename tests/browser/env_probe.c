/* A CGI program that answers with its own environment, one variable a line,
 * in the order the web server passed them (duplicates included, since
 * getenv() would hide them). The header tests use it to see exactly what a
 * program behind the server configuration receives. */
#include <stdio.h>

extern char** environ;

int main(void) {
    fputs("Content-Type: text/plain\r\n\r\n", stdout);
    for (char** e = environ; *e != NULL; ++e) {
        puts(*e);
    }
    return 0;
}
