// The system's map of physical addresses.
#pragma once

#include <cstdint>

// Whether all of [address, address + size) is memory: RAM, ranges that the firmware reserved, ACPI tables, the BIOS
// ROM. Other addresses must not be read, because reading device registers has effects. False if the map isn't fully
// known. Threads  any number at once
bool os_IsMemory(uint64_t address, uint64_t size);
