// Stand-in: the last error. On Windows the system's own serves.
#include "Packages/Platform/Platform.h"

static thread_local DWORD lastError = 0;

DWORD GetLastError() { return lastError; }

void SetLastError(DWORD error) { lastError = error; }
