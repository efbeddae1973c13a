// Small operating-system services the program uses.
#pragma once

#include <string>

// access(2): 0 when `path` is accessible in `mode`, else -1.
int KvAccess(const char* path, int mode);

// The administrator's locale for the command line: LXRADMIN_LOCALE when set
// and non-empty, else "en". Never null.
const char* KvGetAdminLocale();

// The folder of the running executable (from /proc/self/exe, so symbolic
// links are resolved), without a final "/"; "" when it cannot be read. The
// program finds what is installed with it (its catalogue) from here, so a
// copied or packaged tree needs no path built in.
std::string ExecutableDirectory();
