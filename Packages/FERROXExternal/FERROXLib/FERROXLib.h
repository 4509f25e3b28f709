// The hardware library: PCI configuration space, memory-mapped I/O, ports, model-specific registers, CPUID, physical
// memory and ACPI tables. On Windows through the kernel driver Ravelink, on Linux through the kernel's own interfaces
// (Docs/Linux.md), where "the driver refused" means that the kernel did.
//
// Life       FERROXInitialize opens the library and FERROXTerminate closes it. Calls nest: the last FERROXTerminate of
//            the process closes the device, and on Windows that of the machine stops and removes the driver's service.
//            All other operations expect an open library. On a closed one, each that needs the driver fails with 0
//            or 5.
// Status     1 success; 4 a null pointer; 2 an argument out of range; 3 out of memory; 5 failure; 6 not available on
//            this system or by this access method; 0 the driver refused the request. Null pointers are tested first.
//            Test for 1.
// Ownership  Records and buffers are the caller's. A read fills the caller's block in place, on status 1 only, except
//            PCIRead, and PCIExRead under a hypervisor, which may have filled the first bytes before they fail.
//            What an operation allocates for its caller says so and is released with os_FreeBlock.
// Threads    FERROXInitialize and FERROXTerminate order themselves by the named lock "FERROXLIB", on Windows also
//            between the processes of a session. All others take no lock: any number of threads at once, but none
//            beside the last FERROXTerminate.
// Numbers    Little-endian. `location` is a PCI location: bits 0-7 bus, 8-12 device, 13-15 function, from 16 segment.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Packages/FERROXExternal/FERROXLib/Sources/Protocol.h"
#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

// The head of a caller's block of 4 + Size bytes. On a read the caller sets Size and provides the room; on a write the
// block holds the bytes to be written.
struct DataBuffer_t {
    uint32_t Size;

    uint8_t* Data() { return reinterpret_cast<uint8_t*>(this + 1); }
    const uint8_t* Data() const { return reinterpret_cast<const uint8_t*>(this + 1); }
};
static_assert(sizeof(DataBuffer_t) == 4);

// The processor number that stands for no particular processor.
inline constexpr uint32_t kAnyProcessor = 256;

// One PCI segment and the memory-mapped configuration space of its buses.
#pragma pack(push, 1)
struct SegBusInfo_t {
    uint32_t Segment;
    uint32_t StartBus;  // both ends included
    uint32_t EndBus;
    uint64_t BaseAddress;   // physical address of bus 0
    uint32_t SegmentCount;  // number of entries, the same in each
};
#pragma pack(pop)
static_assert(sizeof(SegBusInfo_t) == 24 && offsetof(SegBusInfo_t, BaseAddress) == 12 &&
              offsetof(SegBusInfo_t, SegmentCount) == 20);

// The largest number of PCI segments that is told; entries of the MCFG table behind it are left out.
inline constexpr uint32_t kMaxSegments = 256;

extern "C" {
// Opens the library, or counts one more use of it: registers and starts the driver's service unless another process
// has done so or the service loads by itself, opens the device, and tests for a hypervisor.
// Status  1; 5 when a step fails, all steps before it then being undone; or the status of the hypervisor test, where
//         the device stays open and the machine's count raised: the next FERROXInitialize takes the device over and
//         raises the count once more, so that the service outlasts FERROXTerminate
QUORLIN_API status_t FERROXInitialize();
// Gives one use back; the last one closes the library.
// Status  1; 5 on a closed library, when the service can't be stopped or removed (the library is closed even then), or
//         when the named lock can't be had (the library stays open); 2 when the device isn't open
QUORLIN_API status_t FERROXTerminate();

// Versions: that of this library, of the driver, and of the driver's three libraries.
// Status  1; 4 null; 5 when the driver doesn't tell (all but the first)
QUORLIN_API status_t GetFERROXLibVersion(LibVersion_t* version);
QUORLIN_API status_t GetFERROXDriverVersion(uint32_t* version);
QUORLIN_API status_t GetPCILibVersion(uint32_t* version);
QUORLIN_API status_t GetIOLibVersion(uint32_t* version);
QUORLIN_API status_t GetCPULibVersion(uint32_t* version);

// Reads buffer->Size bytes of a function's configuration space, from byte `offset` on; any alignment will do. A Size
// of 0 reads nothing and gives 1.
// offset  offset + Size at most 256
// Status  1; 4 null buffer; 2 range beyond 256, or offset 65535; 0 refused by the driver
// Source  PCI Local Bus Specification 3.0, configuration space
QUORLIN_API status_t PCIRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer);
// The same with extended configuration space, by the segment's memory-mapped configuration space; on Linux by sysfs,
// for the segments and buses that the MCFG table names. offset  offset + Size at most 4096; under a hypervisor the read
// goes by PCIRead's way, and 256 is the bound Status  1; 4; 2 also for a Size of 0 (memory-mapped way), for a location
// in no known segment, and for a bus outside
//         its segment; 6 under a hypervisor for a segment other than 0; 3; that of GetSegBusInfo; 0
// Source  PCI Express Base Specification, enhanced configuration access
QUORLIN_API status_t PCIExRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer);

// Memory-mapped registers: moves buffer->Size bytes at physical address `bar` + `offset`. Stored and GPIO registers
// have requests of their own, in which the driver adds address and offset.
// Status  1; 4 null buffer; 2 offset 65535, bar 0 or 65535, or Size 0; 3; 0 refused by the driver
QUORLIN_API status_t PCIMMIORead(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
QUORLIN_API status_t PCIMMIOReadStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
QUORLIN_API status_t MMIOReadGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
QUORLIN_API status_t PCIMMIOWriteStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
QUORLIN_API status_t MMIOWriteGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
// Copies buffer->Size bytes of physical memory from `address` + `offset`. Status as above.
QUORLIN_API status_t GetSystemTables(uint64_t address, uint32_t offset, DataBuffer_t* buffer);

// Registers of a device that the driver looks up. The read asks the driver nothing and leaves the buffer as it is.
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
// Status  1; 4 null record; 5 refused by the driver; on Linux also a register or a timer that doesn't count
QUORLIN_API status_t CalcFreqNonTurbo(NonTurboRecord_t* record);

// An ACPI table by its four-letter signature, such as "FACP". Needs no driver.
// table   gets a new block, Size and then the table: the caller's, to be released with os_FreeBlock. Size is 0 for a
// table
//         that went away between the look at its size and the reading
// Status  1; 4 null; 2 a name that isn't four letters long; 5 no such table, or one that grew meanwhile; 3
// Source  ACPI specification, system description tables
QUORLIN_API status_t GetACPITable(const char* name, DataBuffer_t** table);
// The same into the caller's buffer, or with a null buffer just the size.
// buffer  Size tells the room behind it and stays as it is
// size    gets the table's size, also when the buffer is too small, and 0 when there is no such table (any more)
// Status  1; 4 null name or size; 2 as above, or a buffer that is too small; 5 no such table
QUORLIN_API status_t GetACPITableEx(const char* name, DataBuffer_t* buffer, uint32_t* size);

// The base of the memory-mapped configuration space of the location's segment.
// Status  1; 4 null base; 2 segment 256 or above, unknown segment, or a bus outside it; that of GetSegBusInfo
QUORLIN_API status_t GetPCIExCfgBaseAddr(uint64_t* base, uint32_t location);
// All PCI segments, in the order of the MCFG table.
// segments  room for as many entries as the table has, kMaxSegments at most
// Status    1; 4 null; 5 no MCFG table, or no entry in it; 3; 2 the table grew while it was read
// Source    PCI Firmware Specification, MCFG table
QUORLIN_API status_t GetSegBusInfo(SegBusInfo_t* segments);
}
