// In the shared library only: removes the crash filter before the code that it points to is unloaded.
#include "Packages/OS/CrashFilter.h"

[[gnu::destructor]] static void Unload() { os_SetCrashFilter(nullptr); }
