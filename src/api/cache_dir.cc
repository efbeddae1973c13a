#include "cache_dir.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

namespace lxrapi {
namespace {

// Asked once: the program never changes its user.
uid_t EffectiveUser() {
    static const uid_t user = ::geteuid();
    return user;
}

// Ours alone: of the expected type, owned by the effective user, and not
// writable by group or others.
bool Private(const struct stat& st, mode_t type) {
    return (st.st_mode & S_IFMT) == type && st.st_uid == EffectiveUser() &&
           (st.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

// The descriptor of the folder at `path` when it is private, else -1.
// O_NOFOLLOW: a link in the last place is refused, not followed.
int OpenPrivateDir(const std::string& path) {
    int fd = ::open(path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return -1;
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !Private(st, S_IFDIR)) {
        ::close(fd);
        return -1;
    }
    return fd;
}

std::string TempCacheDir() {
    const char* tmp = std::getenv("TMPDIR");
    std::string base = tmp && tmp[0] == '/' ? tmp : "/tmp";
    return base + "/lxrapi-" + std::to_string(EffectiveUser());
}

}  // namespace

int OpenCacheDir() {
    const char* chosen = std::getenv("LXRAPI_CACHE_DIR");
    if (chosen && *chosen) return OpenPrivateDir(chosen);
    int fd = OpenPrivateDir(kPackageCacheDir);
    if (fd >= 0) return fd;
    std::string temp = TempCacheDir();
    fd = OpenPrivateDir(temp);
    // A folder someone else made first stays theirs: mkdir fails and the
    // second check refuses it again.
    if (fd < 0 && ::mkdir(temp.c_str(), 0700) == 0) fd = OpenPrivateDir(temp);
    return fd;
}

bool ReadCacheFile(int dir, const std::string& name, std::string* contents) {
    int fd = ::openat(dir, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) return false;
    struct stat st {};
    // What the library keeps is a few kilobytes; anything near the limit is
    // not ours to read.
    bool ok = ::fstat(fd, &st) == 0 && Private(st, S_IFREG) && st.st_size < (1 << 24);
    if (ok) {
        contents->resize(static_cast<size_t>(st.st_size));
        size_t done = 0;
        while (done < contents->size()) {
            ssize_t n = ::read(fd, contents->data() + done, contents->size() - done);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) break;
            done += static_cast<size_t>(n);
        }
        ok = done == contents->size();
    }
    ::close(fd);
    return ok;
}

bool WriteCacheFile(int dir, const std::string& name, std::string_view contents) {
    // Unique among this process's threads and, by the process number, among
    // processes; one left by a process that died is replaced.
    static std::atomic<unsigned> serial{0};
    std::string temp =
        "." + name + "." + std::to_string(::getpid()) + "." + std::to_string(serial++) + ".tmp";
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    int fd = ::openat(dir, temp.c_str(), flags, 0600);
    if (fd < 0 && errno == EEXIST && ::unlinkat(dir, temp.c_str(), 0) == 0)
        fd = ::openat(dir, temp.c_str(), flags, 0600);
    if (fd < 0) return false;
    bool ok = true;
    while (ok && !contents.empty()) {
        ssize_t n = ::write(fd, contents.data(), contents.size());
        if (n < 0 && errno == EINTR) continue;
        ok = n > 0;
        if (ok) contents.remove_prefix(static_cast<size_t>(n));
    }
    ok = ::close(fd) == 0 && ok;
    ok = ok && ::renameat(dir, temp.c_str(), dir, name.c_str()) == 0;
    if (!ok) ::unlinkat(dir, temp.c_str(), 0);
    return ok;
}

}  // namespace lxrapi
