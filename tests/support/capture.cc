#include "support/capture.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "platform/formatter.h"

namespace lxrtest {

std::string CaptureStdout(const std::function<void()>& body) {
    FlushFormattedOutput();
    std::fflush(stdout);
    FILE* sink = std::tmpfile();
    if (sink == nullptr) return "<capture failed: tmpfile>";
    int saved = ::dup(1);
    ::dup2(::fileno(sink), 1);
    body();
    FlushFormattedOutput();
    std::fflush(stdout);
    ::dup2(saved, 1);
    ::close(saved);
    std::string out;
    std::rewind(sink);
    char chunk[4096];
    size_t n;
    while ((n = std::fread(chunk, 1, sizeof chunk, sink)) > 0) out.append(chunk, n);
    std::fclose(sink);
    return out;
}

ScopedStdin::ScopedStdin(const std::string& bytes) {
    char path[] = "/tmp/lxrtest-stdin-XXXXXX";
    int fd = ::mkstemp(path);
    if (fd < 0) return;
    path_ = path;
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n <= 0) break;
        done += static_cast<size_t>(n);
    }
    ::close(fd);
    ok_ = std::freopen(path_.c_str(), "rb", stdin) != nullptr;
}

ScopedStdin::~ScopedStdin() {
    std::freopen("/dev/null", "rb", stdin);
    if (!path_.empty()) ::unlink(path_.c_str());
}

ScopedEnv::ScopedEnv(const char* name, const char* value) : name_(name) {
    const char* old = std::getenv(name);
    hadOld_ = old != nullptr;
    if (hadOld_) old_ = old;
    if (value != nullptr) {
        ::setenv(name, value, 1);
    } else {
        ::unsetenv(name);
    }
}

ScopedEnv::~ScopedEnv() {
    if (hadOld_) {
        ::setenv(name_.c_str(), old_.c_str(), 1);
    } else {
        ::unsetenv(name_.c_str());
    }
}

}  // namespace lxrtest
