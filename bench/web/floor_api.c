/* The least a CGI program can do that reads a user through libLXRAPI: the
 * library loaded as LXRAdmin loads it (at the first call, by path, lazily
 * bound), LXRAdminRead called with the display page's arguments and buffer,
 * and the reply written out, padded to the display page's size (a longer
 * reply is written whole). What
 * LXRAdmin adds above this is its own start and the page it builds. Set by
 * the environment (the benchmark's environment file), besides the API's own
 * (LXRAPI_CONFIG, LXR_NOW):
 *
 *   LXR_FLOOR_LIBRARY  the library file
 *   LXR_FLOOR_ADMIN    the administrator's path, as LXRAdmin builds it
 *   LXR_FLOOR_USER     the user's path (directory/name)
 *   HTTP_LXRADMIN      the identity
 *   LXR_FLOOR_BYTES    the size of the page to write (at most 262144)
 *
 * Exits 1 when the library cannot be loaded or the read fails. */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

typedef int (*ReadFn)(const char*, const char*, const char*, char*, int, char*, int, const char*,
                      const char*, const char*, const char*);

enum { kReplyRoom = 65535, kMaxPage = 262144 };
static char page[kMaxPage];
static char message[1024];

int main(void) {
    const char* library = getenv("LXR_FLOOR_LIBRARY");
    const char* admin = getenv("LXR_FLOOR_ADMIN");
    const char* user = getenv("LXR_FLOOR_USER");
    const char* identity = getenv("HTTP_LXRADMIN");
    const char* bytes = getenv("LXR_FLOOR_BYTES");
    size_t size = bytes ? (size_t)strtoul(bytes, NULL, 10) : 0;
    if (!library || !admin || !user || !identity || size == 0 || size > kMaxPage) return 2;

    void* handle = dlopen(library, RTLD_LAZY | RTLD_LOCAL);
    ReadFn read = handle ? (ReadFn)dlsym(handle, "LXRAdminRead") : NULL;
    if (read == NULL) return 1;
    static const char header[] = "Status: 200 OK\r\nContent-Type: text/html\r\n\r\n";
    size_t used = sizeof header - 1;
    memcpy(page, header, used);
    int result = read(identity, admin, user, page + used, kReplyRoom, message, sizeof message,
                      "LXRAdmin=YES", "", "", "");
    if (result < 0) {
        fprintf(stderr, "floor_api: %d %s\n", result, message);
        return 1;
    }
    used += strlen(page + used);
    if (used < size) {
        memset(page + used, ' ', size - used);
        used = size;
    }
    return write(1, page, used) == (ssize_t)used ? 0 : 1;
}
