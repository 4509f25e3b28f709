#include "Packages/OS/Processors.h"

bool os_ReadCPUID(uint32_t registers[4]) {
    for (int place = 0; place < 4; ++place) registers[place] = 0;
    return false;
}
