// Standard input, standard output and the environment under a test's control.
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

#include <functional>
#include <string>

namespace lxrtest {

// Runs `body` with file descriptor 1 pointed at a temporary file and returns
// every byte written to standard output meanwhile (through stdio or write(2)).
// Standard output is flushed before and after, so nothing earlier leaks in
// and nothing written inside is lost. Not reentrant.
std::string CaptureStdout(const std::function<void()>& body);

// Makes standard input read `bytes` (may hold NULs) until destroyed; then
// standard input reads /dev/null. Uses a temporary file, so reads never
// block.
class ScopedStdin {
  public:
    explicit ScopedStdin(const std::string& bytes);
    ~ScopedStdin();
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
    ScopedEnv(const char* name, const char* value);
    ~ScopedEnv();

    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

  private:
    std::string name_;
    std::string old_;
    bool hadOld_ = false;
};

}  // namespace lxrtest
