/* The least a CGI program can do that reads a user from the embedded store
 * and answers with a page the size of the display page: Debian's static
 * SQLite (as libLXRAPI links it), the store opened read-write as the API
 * opens it, the user's values read with one prepared query, and the page
 * written in one go. No configuration, no access check, no C++, no ICU and
 * no shared library of ours. Set by the environment (the benchmark's
 * environment file):
 *
 *   LXR_FLOOR_STORE  the store file
 *   LXR_FLOOR_KEY    the user's entry key (entry.dn_key)
 *   LXR_FLOOR_BYTES  the size of the page to write (at most 262144)
 *
 * Exits 1 when the store cannot be read or the user is not found. */
#include <sqlite3.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { kMaxPage = 262144 };
static char page[kMaxPage];

int main(void) {
    const char* store = getenv("LXR_FLOOR_STORE");
    const char* key = getenv("LXR_FLOOR_KEY");
    const char* bytes = getenv("LXR_FLOOR_BYTES");
    size_t size = bytes ? (size_t)strtoul(bytes, NULL, 10) : 0;
    if (store == NULL || key == NULL || size == 0 || size > kMaxPage) return 2;

    sqlite3* db = NULL;
    sqlite3_stmt* query = NULL;
    if (sqlite3_open_v2(store, &db, SQLITE_OPEN_READWRITE, NULL) != SQLITE_OK ||
        sqlite3_prepare_v2(db,
                           "SELECT attr, text FROM value WHERE entry ="
                           " (SELECT id FROM entry WHERE dn_key = ?1) ORDER BY id",
                           -1, &query, NULL) != SQLITE_OK) {
        return 1;
    }
    sqlite3_bind_text(query, 1, key, -1, SQLITE_STATIC);
    size_t used = (size_t)snprintf(page, size, "Status: 200 OK\r\nContent-Type: text/html\r\n\r\n");
    int values = 0;
    while (sqlite3_step(query) == SQLITE_ROW) {
        int n = snprintf(page + used, size - used, "%s: %s\n",
                         (const char*)sqlite3_column_text(query, 0),
                         (const char*)sqlite3_column_text(query, 1));
        if (n > 0 && used + (size_t)n < size) used += (size_t)n;
        ++values;
    }
    sqlite3_finalize(query);
    sqlite3_close(db);
    if (values == 0) return 1;
    memset(page + used, ' ', size - used);
    return write(1, page, size) == (ssize_t)size ? 0 : 1;
}
