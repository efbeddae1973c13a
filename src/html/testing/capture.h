// Test helpers for code that writes to standard output or reads standard
// input, header-only so any test executable can use them without linking
// anything. Not for the program itself.
//
//   std::string page = CaptureStdout([] { HTTPHeader("200 OK"); });
//
//   {
//       ScopedStdin in("a=1&b=2");   // stdin now reads these bytes
//       GetFields();
//   }                                // stdin is /dev/null again
//
//   ScopedEnv env("CONTENT_LENGTH", "7");   // unset with nullptr; restored
//                                           // when env goes out of scope
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

namespace lxrtest {

// Runs `body` with file descriptor 1 pointed at a temporary file and returns
// every byte written to standard output meanwhile (through stdio or write(2)).
// Standard output is flushed before and after, so nothing earlier leaks in
// and nothing written inside is lost. Not reentrant.
inline std::string CaptureStdout(const std::function<void()>& body) {
    std::fflush(stdout);
    FILE* sink = std::tmpfile();
    if (sink == nullptr) return "<capture failed: tmpfile>";
    int saved = ::dup(1);
    ::dup2(::fileno(sink), 1);
    body();
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

// Makes standard input read `bytes` (may hold NULs) until destroyed; then
// standard input reads /dev/null. Uses a temporary file, so reads never
// block.
class ScopedStdin {
  public:
    explicit ScopedStdin(const std::string& bytes) {
        char path[] = "/tmp/lxrtest-stdin-XXXXXX";
        int fd = ::mkstemp(path);
        if (fd >= 0) {
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
    }
    ~ScopedStdin() {
        std::freopen("/dev/null", "rb", stdin);
        if (!path_.empty()) ::unlink(path_.c_str());
    }
    bool ok() const { return ok_; }

    ScopedStdin(const ScopedStdin&) = delete;
    ScopedStdin& operator=(const ScopedStdin&) = delete;

  private:
    std::string path_;
    bool ok_ = false;
};

// Sets (or, with a null value, unsets) one environment variable and restores
// its earlier state when destroyed.
class ScopedEnv {
  public:
    ScopedEnv(const char* name, const char* value) : name_(name) {
        const char* old = std::getenv(name);
        hadOld_ = old != nullptr;
        if (hadOld_) old_ = old;
        if (value != nullptr) {
            ::setenv(name, value, 1);
        } else {
            ::unsetenv(name);
        }
    }
    ~ScopedEnv() {
        if (hadOld_) {
            ::setenv(name_.c_str(), old_.c_str(), 1);
        } else {
            ::unsetenv(name_.c_str());
        }
    }

    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

  private:
    std::string name_;
    std::string old_;
    bool hadOld_ = false;
};

}  // namespace lxrtest
