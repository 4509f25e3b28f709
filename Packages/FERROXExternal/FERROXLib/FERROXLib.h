// The hardware library: PCI configuration space, memory-mapped I/O, ports, model-specific registers, CPUID, physical
// memory and ACPI tables. It uses the kernel driver Ravelink on Windows, and the kernel's own interfaces on Linux
// (Docs/Linux.md), where "the driver refused" means that the kernel refused.
//
// Life cycle FERROXInitialize opens the library and FERROXTerminate closes it. Calls nest. The last FERROXTerminate of
// the
//            process closes the device; on Windows the last one of the machine also stops and removes the driver's
//            service. All other operations need an open library. On a closed one, those that use the driver return 0
//            or 5.
// Status     1 success; 4 null pointer; 2 argument out of range; 3 out of memory; 5 failure; 6 not available on this
//            system or by this access method; 0 the driver refused the request. Null pointers are checked first.
// Ownership  Records and buffers are the caller's. A read writes to the caller's block on status 1 only, except that
//            PCIRead, and PCIExRead under a hypervisor, may have written the first bytes when they fail. The caller
//            releases what an operation allocates for it, with os_FreeBlock.
// Threads    FERROXInitialize and FERROXTerminate take the named lock "FERROXLIB", on Windows shared by the processes
// of
//            a session. All other operations take no lock: several threads may call them at once, but not at the same
//            time as the last FERROXTerminate.
// Numbers    Little-endian. A `location` is a PCI location: bits 0-7 bus, 8-12 device, 13-15 function, from 16 segment.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Packages/FERROXExternal/FERROXLib/Sources/Protocol.h"
#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

// The start of a block of 4 + Size bytes, which the caller provides. On a read, Size bytes are stored after Size; on a
// write, those bytes are written.
struct DataBuffer_t {
    uint32_t Size;

    uint8_t* Data() { return reinterpret_cast<uint8_t*>(this + 1); }
    const uint8_t* Data() const { return reinterpret_cast<const uint8_t*>(this + 1); }
};
static_assert(sizeof(DataBuffer_t) == 4);

// The processor number that means any processor.
inline constexpr uint32_t kAnyProcessor = 256;

// A PCI segment and the memory-mapped configuration space of its buses.
#pragma pack(push, 1)
struct SegBusInfo_t {
    uint32_t Segment;
    uint32_t StartBus;  // both ends included
    uint32_t EndBus;
    uint64_t BaseAddress;   // physical address of bus 0
    uint32_t SegmentCount;  // number of all segments; the same in each entry
};
#pragma pack(pop)
static_assert(sizeof(SegBusInfo_t) == 24 && offsetof(SegBusInfo_t, BaseAddress) == 12 &&
              offsetof(SegBusInfo_t, SegmentCount) == 20);

// The largest number of PCI segments. Further entries of the MCFG table are ignored.
inline constexpr uint32_t kMaxSegments = 256;

extern "C" {
// Opens the library. If it is open already, counts one more use of it. On Windows: registers and starts the driver's
// service, unless another process did or the service starts automatically; opens the device; tests for a hypervisor.
// Status  1; 5 if a step failed, with all earlier steps undone; or the status of the hypervisor test, in which case the
//         device stays open and counted: the next FERROXInitialize uses it and counts it again, so that the service
//         outlasts FERROXTerminate
QUORLIN_API status_t FERROXInitialize();
// Ends one use of the library. The last one closes it.
// Status  1; 5 if the library isn't open, if the named lock can't be taken (the library stays open), or if the service
//         can't be stopped or removed (the library is closed); 2 if the device isn't open
QUORLIN_API status_t FERROXTerminate();

// Return the versions of this library, of the driver, and of the driver's three libraries.
// Status  1; 4 null; 5 the driver doesn't answer (all but the first)
QUORLIN_API status_t GetFERROXLibVersion(LibVersion_t* version);
QUORLIN_API status_t GetFERROXDriverVersion(uint32_t* version);
QUORLIN_API status_t GetPCILibVersion(uint32_t* version);
QUORLIN_API status_t GetIOLibVersion(uint32_t* version);
QUORLIN_API status_t GetCPULibVersion(uint32_t* version);

// Reads buffer->Size bytes of a PCI function's configuration space from byte `offset` on, with any alignment. Size may
// be 0.
// offset  offset + Size at most 256
// Status  1; 4 null buffer; 2 range beyond 256, or offset 65535; 0 refused by the driver
// Source  PCI Local Bus Specification 3.0, configuration space
QUORLIN_API status_t PCIRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer);
// Reads extended configuration space, through the segment's memory-mapped configuration space; on Linux through sysfs,
// for segments and buses in the MCFG table. Under a hypervisor it works as PCIRead. offset  offset + Size at most 4096,
// under a hypervisor 256 Status  1; 4 null buffer; 2 range too large, offset 65535, Size 0 (not under a hypervisor),
// unknown segment, or bus
//         outside its segment; 6 a segment other than 0 under a hypervisor; 3; the status of GetSegBusInfo; 0 refused
//         by the driver
// Source  PCI Express Base Specification, enhanced configuration access
QUORLIN_API status_t PCIExRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer);

// Read or write buffer->Size bytes of memory-mapped registers at physical address `bar` + `offset`. Stored and GPIO
// registers have driver requests of their own.
// Status  1; 4 null buffer; 2 offset 65535, bar 0 or 65535, or Size 0; 3; 0 refused by the driver
QUORLIN_API status_t PCIMMIORead(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
QUORLIN_API status_t PCIMMIOReadStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
QUORLIN_API status_t MMIOReadGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
QUORLIN_API status_t PCIMMIOWriteStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
QUORLIN_API status_t MMIOWriteGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
// Reads buffer->Size bytes of physical memory at `address` + `offset`. Status as above.
QUORLIN_API status_t GetSystemTables(uint64_t address, uint32_t offset, DataBuffer_t* buffer);

// Registers of a device that the driver looks up. The read does nothing, because the driver has no such request.
// Status  1; 4 null record or buffer; 2 PCIRegisterOffset 65535, or Size 0; 3; 0 refused by the driver
QUORLIN_API status_t PCIMMIOReadDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer);
QUORLIN_API status_t PCIMMIOWriteDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer);

// Reads or writes an I/O port in one access of buffer->Size bytes, at most 4.
// Status  1; 4 null buffer; 2 port 255, or Size above 4; 0 refused by the driver
QUORLIN_API status_t ReadWakeupTimer(uint16_t port, DataBuffer_t* buffer);
QUORLIN_API status_t ConfigureWakeUpTimer(uint16_t port, DataBuffer_t* buffer);

// Reads or writes the register record->Msr of processor record->Cpu.
// Status  1; 4 null record; 2 register 0 or 65535; 0 refused by the driver
QUORLIN_API status_t ReadMSR(MSRRecord_t* record);
QUORLIN_API status_t WriteMSR(MSRRecord_t* record);

// The CPUID instruction on the given processor, or on any for kAnyProcessor.
// Status  1; 4 null record; 2 no such processor; 0 refused by the driver
QUORLIN_API status_t ReadCPUID(uint32_t processor, CPUIDRecord_t* record);

// Measures a processor's non-turbo frequency.
// Status  1; 4 null record; 5 refused by the driver, or on Linux a register or timer that doesn't count
QUORLIN_API status_t CalcFreqNonTurbo(NonTurboRecord_t* record);

// Reads an ACPI table by its four-letter signature, such as "FACP". Needs no driver.
// table   is set to a new block, which the caller releases with os_FreeBlock. Its Size is 0 if the table vanished after
//         its size was read
// Status  1; 4 null; 2 the name isn't four letters long; 5 no such table, or it grew after its size was read; 3
// Source  ACPI specification, system description tables
QUORLIN_API status_t GetACPITable(const char* name, DataBuffer_t** table);
// Reads an ACPI table into the caller's buffer. With a null buffer, only returns its size.
// buffer  its Size is the room for the table, and isn't changed
// size    is set to the size of the table, even if the buffer is too small; 0 if there is no such table
// Status  1; 4 null name or size; 2 the name isn't four letters long, or the buffer is too small; 5 no such table
QUORLIN_API status_t GetACPITableEx(const char* name, DataBuffer_t* buffer, uint32_t* size);

// Returns the base address of the memory-mapped configuration space of the location's segment.
// Status  1; 4 null base; 2 segment 256 or above, unknown segment, or bus outside it; the status of GetSegBusInfo
QUORLIN_API status_t GetPCIExCfgBaseAddr(uint64_t* base, uint32_t location);
// Returns all PCI segments, in the order of the MCFG table.
// segments  array with room for all entries of the table, at most kMaxSegments
// Status    1; 4 null; 5 no MCFG table, or no entry in it; 3; 2 the table grew after its size was read
// Source    PCI Firmware Specification, MCFG table
QUORLIN_API status_t GetSegBusInfo(SegBusInfo_t* segments);
}
