// What lies at physical addresses, as the system tells it.
#pragma once

#include <cstdint>

// Whether [address, address + size) is memory throughout, as reading registers of devices has effects: RAM, what the
// firmware has reserved, ACPI tables, the BIOS ROM. False where the system doesn't tell all of its map.
// Threads  any number at once
bool os_IsMemory(uint64_t address, uint64_t size);
