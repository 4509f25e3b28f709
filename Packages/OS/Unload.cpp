// For the shared library alone: before its code goes, nothing may lead to it any more.
#include "Packages/OS/CrashFilter.h"

[[gnu::destructor]] static void Unload() { os_SetCrashFilter(nullptr); }
