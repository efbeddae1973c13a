// Compiled as part of the translators (src/i18n), which sit below the pages:
// the build must refuse this include (tests/layers/CMakeLists.txt).
#include "pages/user_display.h"
