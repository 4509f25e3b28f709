#include <cpuid.h>

#include "Packages/OS/Processors.h"

bool os_ReadCPUID(uint32_t registers[4]) {
    __cpuid_count(registers[0], registers[2], registers[0], registers[1], registers[2], registers[3]);
    return true;
}
