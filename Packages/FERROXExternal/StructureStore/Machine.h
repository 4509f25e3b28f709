// The machine that package and store work on. They know it by five operations only.
//
// The machine is chosen before the first LibSMBIOSInit; the default is this machine. Tests fill the table with
// operations of their own, to make any of them fail.
#pragma once

#include <cstdint>

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/FERROXExternal/StructureStore/StructureStore.h"
#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

// An access method: reads the table.
// entry     16 bytes; bytes 6 and 7 are set to SMBIOS major and minor
// dmiEntry  15 bytes; byte 14 is set to the BCD revision
// image     is set to a new block, which the caller releases with os_FreeBlock
// Status    1; any other if this method has no table
using TableRoad_t = status_t (*)(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image);

struct MachineServices_t {
    status_t (*FERROXInitialize)();
    status_t (*FERROXTerminate)();
    TableRoad_t osGetStructuresDataEFI;
    TableRoad_t osGetStructuresDataNonEFI;
    status_t (*ReadCPUID)(uint32_t processor, CPUIDRecord_t* record);
};

extern "C" {
// The methods of this machine: the operating system's firmware-table service, the scan of physical memory, and the
// address that UEFI firmware gave to the system. The last two read a table, and the last one its entry point too, only
// if the system says that it is in memory (os_IsMemory).
status_t osGetStructuresDataEFI(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image);
status_t osGetStructuresDataNonEFI(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image);
status_t osGetStructuresDataByAddress(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image);

// Returns the machine in use.
QUORLIN_API const MachineServices_t* CurrentMachine();
// Sets the machine in use to a copy of `services`.
// Status  1; 4 null; 5 the store is up
QUORLIN_API status_t SetMachine(const MachineServices_t* services);

// This machine, through its driver.
QUORLIN_API const MachineServices_t* ThisMachine();
// The same with the scan of physical memory as the only access method.
QUORLIN_API const MachineServices_t* ThisMachineByScan();
// The same with the firmware's address as the only access method. On a system that doesn't show it, FERROXInitialize
// returns 6 and starts no driver.
QUORLIN_API const MachineServices_t* ThisMachineByEfi();
// This machine without the driver: only the firmware-table service and the CPUID instruction.
QUORLIN_API const MachineServices_t* ThisMachineWithoutDriver();
}

// The data of an image machine. The bytes must outlive its use; they aren't written to.
struct ImageSource_t {
    const uint8_t* table;  // begins with the first structure
    uint32_t length;
    uint8_t major, minor;  // of the SMBIOS version
    uint32_t signature;    // EAX of CPUID leaf 1
};

extern "C" {
// Sets the machine in use to one that has this image. It needs no driver, no rights and no particular system. There is
// one image at a time. Status  1; 4 null source, or null table with a length above 0; 5 the store is up
QUORLIN_API status_t SetImageMachine(const ImageSource_t* source);

// Sets the machine in use, and that of the hardware library, to the recorded one in a folder that `quorlin record`
// wrote (Docs/Record.md). It needs no driver, no rights and no particular system. The path is UTF-8. With null, both
// are this machine again. What wasn't recorded is refused: status 6, or 5 for ACPI tables.
// Status  1; 3 out of memory; 5 no record, a damaged one, or the store or the hardware library is up
QUORLIN_API status_t SetReplayMachine(const char* path);
}
