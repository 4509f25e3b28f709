// Stand-ins where Windows' own functions serve the tests: the last error, the performance counter and the filter of
// unhandled exceptions, which stays unset.
#include "Packages/Platform/Platform.h"

static thread_local DWORD lastError = 0;

DWORD GetLastError() { return lastError; }

void SetLastError(DWORD error) { lastError = error; }

BOOL QueryPerformanceCounter(LARGE_INTEGER* ticks) {
    ticks->QuadPart = 1000;
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* perSecond) {
    perSecond->QuadPart = 1000;
    return TRUE;
}

LPTOP_LEVEL_EXCEPTION_FILTER SetUnhandledExceptionFilter(LPTOP_LEVEL_EXCEPTION_FILTER) { return nullptr; }
