#include "Packages/OS/MemoryMap.h"

// Windows provides no map. An _SM_ entry point can only name tables below 4 GiB.
bool os_IsMemory(uint64_t address, uint64_t size) {
    constexpr uint64_t kEnd = 1ull << 32;
    return address <= kEnd && size <= kEnd - address;
}
