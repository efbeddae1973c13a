// Small operating-system services the program uses.
#pragma once

// access(2): 0 when `path` is accessible in `mode`, else -1.
int KvAccess(const char* path, int mode);

// The administrator's locale for the command line: LXRADMIN_LOCALE when set
// and non-empty, else "en". Never null.
const char* KvGetAdminLocale();
