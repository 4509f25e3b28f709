// The processors of the machine. They are numbered from 0 without gaps, through all processor groups.
#pragma once

#include <cstdint>

// Returns the number of active processors; 0 if unknown.
uint32_t os_GetProcessorCount();

// Executes the CPUID instruction on the processor that runs the calling thread.
// registers  eax, ebx, ecx, edx; the caller sets eax to the leaf and ecx to the sub-leaf
// Returns false, and sets all registers to 0, if the processor doesn't have the instruction.
bool os_ReadCPUID(uint32_t registers[4]);
