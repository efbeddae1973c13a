// A fresh folder for one test's files.
#pragma once

#include <string>

namespace lxrtest {

// A new folder under TMPDIR (else /tmp), removed with everything in it when
// the object goes. path() is empty when the folder could not be made.
class TempDir {
  public:
    TempDir();
    ~TempDir();
    const std::string& path() const { return path_; }
    std::string File(const std::string& name) const { return path_ + "/" + name; }

    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

  private:
    std::string path_;
};

}  // namespace lxrtest
