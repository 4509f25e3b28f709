// The machine that package and store work on: five operations, and nothing else of it is visible above.
//
// A machine is chosen before the first LibSMBIOSInit. This machine is the default. Tests put operations of their own
// into the table, to make any of them fail.
#pragma once

#include <cstdint>

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/FERROXExternal/StructureStore/StructureStore.h"
#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

// One access method for the table. Status 1: bytes 6 and 7 of `entry` (16 bytes) hold SMBIOS major and minor, byte 14
// of `dmiEntry` (15 bytes) the revision, and `image` a block of os_NewBlock, which is the caller's. Any other status:
// this method has no table.
using TableRoad_t = status_t (*)(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image);

struct MachineServices_t {
    status_t (*FERROXInitialize)();
    status_t (*FERROXTerminate)();
    TableRoad_t osGetStructuresDataEFI;
    TableRoad_t osGetStructuresDataNonEFI;
    status_t (*ReadCPUID)(uint32_t processor, CPUIDRecord_t* record);
};

extern "C" {
// The two methods of this machine: the operating system's firmware-table service, and the scan of physical memory. The
// scan reads the table that it finds only where the system says that there is memory (os_IsMemory).
status_t osGetStructuresDataEFI(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image);
status_t osGetStructuresDataNonEFI(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image);

// The machine in use.
QUORLIN_API const MachineServices_t* CurrentMachine();
// Takes a copy of `services`. 4 for null, 5 while the store is up.
QUORLIN_API status_t SetMachine(const MachineServices_t* services);

// This machine with its driver.
QUORLIN_API const MachineServices_t* ThisMachine();
// The same with the scan of physical memory as its only road.
QUORLIN_API const MachineServices_t* ThisMachineByScan();
// This machine without driver: the firmware-table service and the CPUID instruction alone.
QUORLIN_API const MachineServices_t* ThisMachineWithoutDriver();
}

// What an image machine shows. The bytes must outlive its use and are never written.
struct ImageSource_t {
    const uint8_t* table;  // bare structures, from the first one on
    uint32_t length;
    uint8_t major, minor;  // of the SMBIOS version
    uint32_t signature;    // what CPUID leaf 1 gives in EAX
};

extern "C" {
// The machine of an image: needs no driver, no rights and no particular platform. There is one image at a time.
// 4 for a null source, or for a null table of a length above 0; 5 while the store is up.
QUORLIN_API status_t SetImageMachine(const ImageSource_t* source);
}
