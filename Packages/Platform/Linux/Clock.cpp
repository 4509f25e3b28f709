// The clock. The performance counter is the monotonic clock; its ticks are nanoseconds.
#include <sched.h>
#include <unistd.h>

#include <cerrno>
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

DWORD GetTickCount() {
    timespec now;
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<DWORD>(now.tv_sec * 1000 + now.tv_nsec / 1'000'000);  // wraps after 49.7 days, as on Windows
}

void Sleep(DWORD milliseconds) {
    if (milliseconds == 0) sched_yield();
    timespec left = {milliseconds / 1000, milliseconds % 1000 * 1'000'000L};
    if (milliseconds == INFINITE)
        for (;;) pause();
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

void GetLocalTime(LPSYSTEMTIME now) {
    timespec time;
    tm local;
    clock_gettime(CLOCK_REALTIME, &time);
    if (localtime_r(&time.tv_sec, &local) == nullptr) local = tm{};
    *now = {static_cast<WORD>(local.tm_year + 1900), static_cast<WORD>(local.tm_mon + 1),
            static_cast<WORD>(local.tm_wday),        static_cast<WORD>(local.tm_mday),
            static_cast<WORD>(local.tm_hour),        static_cast<WORD>(local.tm_min),
            static_cast<WORD>(local.tm_sec),         static_cast<WORD>(time.tv_nsec / 1'000'000)};
}
