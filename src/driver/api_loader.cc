// The three API calls, forwarded into libLXRAPI, which is loaded at the
// first call. A request that ends before it needs the directory (every
// identity or method failure, for one) then never loads the library and the
// libraries it depends on, which would cost more than the rest of such a
// request together. The calls keep their names and argument lists; callers
// cannot tell the difference.
#include <dlfcn.h>

#include <cstdio>
#include <string>

#include "lxrapi.h"
#include "platform/system.h"

// The library's SONAME: what an installation puts in the library path.
#ifndef LXRAPI_LIBRARY
#define LXRAPI_LIBRARY "libLXRAPI.so.0"
#endif
// The build tree's folder of the library, relative to the executable's.
#ifndef LXRAPI_FROM_EXECUTABLE
#define LXRAPI_FROM_EXECUTABLE ""
#endif

namespace {

using GetDirectoryFn = int (*)(const char*, char*, int, char*, int, const char*, const char*,
                               const char*);
using ReadFn = int (*)(const char*, const char*, const char*, char*, int, char*, int, const char*,
                       const char*, const char*, const char*);
using WriteFn = int (*)(const char*, const char*, const char*, char*, int, const char*, const char*,
                        const char*, const char*);
using ListFn = int (*)(const char*, const char*, const char*, char*, int, char*, int, const char*,
                       const char*, const char*);

struct Library {
    GetDirectoryFn getDirectory = nullptr;
    ReadFn read = nullptr;
    WriteFn write = nullptr;
    // Looked up on its own: a library without the list call still serves the
    // user pages, and only the list page reports it missing.
    ListFn list = nullptr;
    std::string error;  // why loading failed; empty when it worked
};

// Loaded once per process and never closed, with lazy binding: a request
// calls a small part of the library and its dependencies.
// The executable carries no run path: the dynamic linker would search it
// for the C library too, at every start, and probe a dozen folders there.
// So the build tree's copy, beside the executable, is tried first by its
// full path (one failed open where the program is installed), and then
// the library by name, as the dynamic linker finds one (LD_LIBRARY_PATH,
// the system's library path, where the package puts it).
void* OpenLibrary(std::string* error) {
    if (*LXRAPI_FROM_EXECUTABLE != '\0') {
        std::string beside = ExecutableDirectory();
        if (!beside.empty()) {
            beside += "/" LXRAPI_FROM_EXECUTABLE "/" LXRAPI_LIBRARY;
            if (void* handle = dlopen(beside.c_str(), RTLD_LAZY | RTLD_LOCAL)) return handle;
        }
    }
    void* handle = dlopen(LXRAPI_LIBRARY, RTLD_LAZY | RTLD_LOCAL);
    if (handle == nullptr) {
        const char* why = dlerror();
        *error = why ? why : LXRAPI_LIBRARY;
    }
    return handle;
}

const Library& Load() {
    static const Library library = [] {
        Library l;
        void* handle = OpenLibrary(&l.error);
        if (handle == nullptr) return l;
        l.getDirectory = reinterpret_cast<GetDirectoryFn>(dlsym(handle, "LXRAdminGetDirectory"));
        l.read = reinterpret_cast<ReadFn>(dlsym(handle, "LXRAdminRead"));
        l.write = reinterpret_cast<WriteFn>(dlsym(handle, "LXRAdminWrite"));
        if (!l.getDirectory || !l.read || !l.write) {
            l.getDirectory = nullptr;
            l.read = nullptr;
            l.write = nullptr;
            l.error = LXRAPI_LIBRARY " lacks the administration calls";
            return l;
        }
        l.list = reinterpret_cast<ListFn>(dlsym(handle, "LXRAdminList"));
        return l;
    }();
    return library;
}

// The failure of a call that could not be made. The text does not start with
// "/", so that it is shown and never taken for an address to redirect to.
int Unavailable(const Library& library, char* message, int messageSize) {
    if (message != nullptr && messageSize > 0) {
        std::snprintf(message, static_cast<size_t>(messageSize),
                      "the administration API could not be loaded: %s", library.error.c_str());
    }
    return LXRAPI_UNREACHABLE;
}

}  // namespace

extern "C" int LXRAdminGetDirectory(const char* identity, char* reply, int replySize, char* message,
                                    int messageSize, const char* language, const char* country,
                                    const char* qualifier) {
    const Library& api = Load();
    if (!api.getDirectory) return Unavailable(api, message, messageSize);
    return api.getDirectory(identity, reply, replySize, message, messageSize, language, country,
                            qualifier);
}

extern "C" int LXRAdminRead(const char* identity, const char* administratorPath,
                            const char* userPath, char* reply, int replySize, char* message,
                            int messageSize, const char* context, const char* language,
                            const char* country, const char* qualifier) {
    const Library& api = Load();
    if (!api.read) return Unavailable(api, message, messageSize);
    return api.read(identity, administratorPath, userPath, reply, replySize, message, messageSize,
                    context, language, country, qualifier);
}

extern "C" int LXRAdminWrite(const char* identity, const char* administratorPath,
                             const char* updateDocument, char* message, int messageSize,
                             const char* context, const char* language, const char* country,
                             const char* qualifier) {
    const Library& api = Load();
    if (!api.write) return Unavailable(api, message, messageSize);
    return api.write(identity, administratorPath, updateDocument, message, messageSize, context,
                     language, country, qualifier);
}

extern "C" int LXRAdminList(const char* identity, const char* administratorPath,
                            const char* listRequest, char* reply, int replySize, char* message,
                            int messageSize, const char* language, const char* country,
                            const char* qualifier) {
    const Library& api = Load();
    if (!api.list) {
        if (api.error.empty()) {
            Library missing;
            missing.error = LXRAPI_LIBRARY " lacks the list call";
            return Unavailable(missing, message, messageSize);
        }
        return Unavailable(api, message, messageSize);
    }
    return api.list(identity, administratorPath, listRequest, reply, replySize, message,
                    messageSize, language, country, qualifier);
}
