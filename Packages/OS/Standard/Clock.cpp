#include <chrono>

#include "Packages/OS/OS.h"

status_t os_GetTimestampMs(uint64_t* milliseconds) {
    if (milliseconds == nullptr) return kNullPointer;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    *milliseconds = static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
    return kSuccess;
}
