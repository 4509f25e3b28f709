#include "Packages/OS/MemoryMap.h"

// The system tells no map. The firmware's tables lie below 4 GiB, where the entry point can name them.
bool os_IsMemory(uint64_t address, uint64_t size) {
    constexpr uint64_t kEnd = 1ull << 32;
    return address <= kEnd && size <= kEnd - address;
}
