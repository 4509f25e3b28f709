#include "Packages/OS/CrashFilter.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "Packages/OS/Windows/Windows.h"

static CrashFilter_t theFilter = nullptr;

static LONG WINAPI OnException(EXCEPTION_POINTERS* pointers) {
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    Fault_t fault = {record.ExceptionCode, reinterpret_cast<uint64_t>(record.ExceptionAddress), {}};
    std::copy_n(record.ExceptionInformation, std::min<size_t>(record.NumberParameters, std::size(fault.Information)),
                fault.Information);
    return theFilter == nullptr ? EXCEPTION_CONTINUE_SEARCH : theFilter(fault);
}

void os_SetCrashFilter(CrashFilter_t filter) {
    theFilter = filter;
    const LPTOP_LEVEL_EXCEPTION_FILTER before = SetUnhandledExceptionFilter(filter == nullptr ? nullptr : OnException);
    if (filter == nullptr && before != OnException) SetUnhandledExceptionFilter(before);
}

// Flushes, because the system doesn't when a process ends by a fault.
void os_WriteCrashText(const char* text, size_t size) {
    std::fwrite(text, 1, size, stdout);
    std::fflush(stdout);
}
