// A folder of this process's user for what the library keeps between
// processes to spare later ones work (the configuration image). Everything in
// it can be made again, so a folder or file that cannot be trusted is simply
// not used: no caller ever reports a problem with it.
#pragma once

#include <string>
#include <string_view>

namespace lxrapi {

// The package's cache folder, used when it belongs to the process's user.
inline constexpr const char* kPackageCacheDir = "/var/cache/lxradmin";

// Opens the cache folder: LXRAPI_CACHE_DIR when set (never created), else
// kPackageCacheDir, else ${TMPDIR:-/tmp}/lxrapi-EUID (made 0700 when
// missing). The folder is used only when it is a real folder (not a link),
// owned by the effective user and writable by nobody else, so that another
// local user can neither plant a file in it nor redirect our writes. Returns
// a descriptor (O_PATH) the caller closes, or -1 when no folder can be used.
int OpenCacheDir();

// Reads the file `name` in `dir` whole into `contents`. False, with
// `contents` unspecified, when it is missing, a link, not a regular file, not
// owned by the effective user, writable by group or others, or not read whole.
bool ReadCacheFile(int dir, const std::string& name, std::string* contents);

// Replaces the file `name` in `dir` with `contents`: written to a temporary
// file in the same folder and renamed over it, so a reader sees the old file
// or the new one, never a part. False (and the folder as it was) on failure.
bool WriteCacheFile(int dir, const std::string& name, std::string_view contents);

}  // namespace lxrapi
