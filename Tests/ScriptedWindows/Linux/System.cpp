// Stand-ins for functions that the tests on Windows take from the system.
#include "Packages/OS/Windows/Windows.h"

static thread_local DWORD lastError = 0;

DWORD GetLastError() { return lastError; }

void SetLastError(DWORD error) { lastError = error; }

WORD GetActiveProcessorGroupCount() { return 1; }

HANDLE GetCurrentThread() { return nullptr; }

BOOL SetThreadGroupAffinity(HANDLE, const GROUP_AFFINITY*, GROUP_AFFINITY*) { return FALSE; }
