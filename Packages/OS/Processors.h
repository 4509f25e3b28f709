// The processors of the machine, by logical numbers: from 0, without gaps, through all processor groups.
#pragma once

#include <cstdint>

// How many are active; 0 when the system doesn't tell.
uint32_t os_GetProcessorCount();

// The CPUID instruction on the processor that runs the calling thread. registers: eax, ebx, ecx, edx, with leaf and
// sub-leaf in eax and ecx. False, with zeros, on processors without the instruction.
bool os_ReadCPUID(uint32_t registers[4]);
