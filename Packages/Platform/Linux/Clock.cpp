// The two counter calls, on the monotonic clock; ticks are nanoseconds.
#include <ctime>

#include "Packages/Platform/Linux/Handles.h"

BOOL QueryPerformanceFrequency(LARGE_INTEGER* perSecond) {
    perSecond->QuadPart = 1'000'000'000;
    return TRUE;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* ticks) {
    timespec now;
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0) return FailWithErrno();
    ticks->QuadPart = now.tv_sec * 1'000'000'000LL + now.tv_nsec;
    return TRUE;
}
