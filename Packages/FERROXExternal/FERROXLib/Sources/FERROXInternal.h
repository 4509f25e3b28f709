// What the files of the hardware library share on every system: its trace handle, ACPI tables, PCI locations.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Packages/Debug/Debug.h"
#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"

// Null while the library is closed, and if DebugLibInit failed. Each file defines
//     #define TRACE(function, level, ...) FERROX_TRACE("PCIRW", function, level, __VA_ARGS__)
extern DebugHandle_t ferroxTraceHandle;
#define FERROX_TRACE(file, function, level, ...) \
    QUORLIN_TRACE(ferroxTraceHandle, "FERROXLib\\Sources\\" file, function, level, __VA_ARGS__)

// ---- Misc.cpp: ACPI tables and PCI segments, read from the firmware tables of the machine in use

status_t OSGetACPITable(const char* name, DataBuffer_t** table);
status_t OSGetACPITableEx(const char* name, DataBuffer_t* buffer, uint32_t* size);
status_t OSGetSegBusInfo(SegBusInfo_t* segments);
// As OSGetSegBusInfo. `count` is set to the number of entries, even if there is none.
status_t OSGetSegBusInfoWithCount(SegBusInfo_t* segments, uint32_t* count);
status_t OSGetPCIExCfgBaseAddr(uint64_t* base, uint32_t location);
// OSPCIExRead for both halves: calls OSPCIRead of the machine in use under a hypervisor, otherwise `read` with the base
// address of the location's segment.
using ExtendedRead_t = status_t (*)(uint64_t base, uint32_t location, uint32_t offset, DataBuffer_t* buffer);
status_t ReadExtendedSpace(bool hasHypervisor, ExtendedRead_t read, uint32_t location, uint32_t offset,
                           DataBuffer_t* buffer);
// Parses an MCFG table of `size` bytes into an array of kMaxSegments entries. Returns their number.
uint32_t FillSegments(const uint8_t* mcfg, uint32_t size, SegBusInfo_t* segments);

// ---- The operations of the system's half, for calls between its files. A half defines those that its table names

status_t OSFERROXInitialize();
status_t OSFERROXTerminate();
status_t OSGetFERROXDriverVersion(uint32_t* version);
status_t OSGetPCILibVersion(uint32_t* version);
status_t OSGetIOLibVersion(uint32_t* version);
status_t OSGetCPULibVersion(uint32_t* version);
status_t OSPCIRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIExRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIORead(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIOReadStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSMMIOReadGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIOWriteStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSMMIOWriteGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSGetSystemTables(uint64_t address, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIOReadDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer);
status_t OSPCIMMIOWriteDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer);
status_t OSReadPort(uint16_t port, DataBuffer_t* buffer);
status_t OSWritePort(uint16_t port, DataBuffer_t* buffer);
status_t OSReadMSR(MSRRecord_t* record);
status_t OSWriteMSR(MSRRecord_t* record);
status_t OSReadCPUID(uint32_t processor, CPUIDRecord_t* record);
status_t OSCalcNonTurbo(NonTurboRecord_t* record);

// ---- PCI locations

inline uint32_t Bus(uint32_t location) { return location & 0xFF; }
inline uint32_t Device(uint32_t location) { return location >> 8 & 0x1F; }
inline uint32_t Function(uint32_t location) { return location >> 13 & 0x7; }
inline uint32_t Segment(uint32_t location) { return location >> 16; }
