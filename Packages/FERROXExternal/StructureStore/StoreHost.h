// What the store offers the package, the C interface and the program beside its public operations: facts about the
// table, the machine chosen, and the outcome of reading memory. For this tree only: not installed.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/StructureStore.h"

// Whether the store is up. The machine can't be changed while it is.
bool StoreIsUp();

// Facts about the table as a whole.
struct TableFacts_t {
    static constexpr uint32_t kNowhere = UINT32_MAX;

    uint8_t major = 0, minor = 0;  // SMBIOS version
    uint32_t length = 0;           // of the table in bytes
    bool hasEnd = false;           // the walk ended at an End-of-Table structure
    uint32_t brokenAt = kNowhere;  // offset of the first broken structure; what follows it may be garbage
    bool isCut = false;            // how it is broken: true if the table ends within it, false if its Length is below 4

    // One line that says where and how the table is broken; empty if it isn't.
    std::string Remark() const;
};
// The facts of the table in the store; null while the store is down.
const TableFacts_t* FactsOfTable();
// The facts of a table that needn't be in the store, but for its version.
TableFacts_t FactsOf(std::span<const uint8_t> table);

// Whether the store has structures of a type.
bool StoreHasType(uint8_t type);

// The chosen machine, for callers that use another one for a while and then restore it. The store must be down.
struct Record_t;
struct MachineChoice_t {
    MachineServices_t services;
    ImageSource_t image;
    const Record_t* record;
};
MachineChoice_t ChosenMachine();
void ChooseMachine(const MachineChoice_t& choice);

// How a method that reads the table from physical memory ended.
enum class MemoryEnd_t {
    kFound,
    kNoArea,        // the machine's architecture has no BIOS area to scan
    kNoRoom,        // out of memory
    kUnreadable,    // the system or the hardware library refused to read
    kNoAnchors,     // the scan finds no _SM_ or no _DMI_ entry point
    kNoAddresses,   // the system shows no addresses of UEFI firmware
    kNoEntryPoint,  // the firmware's addresses don't lead to an entry point with correct checksums
    kElsewhere,     // the system doesn't call the place of the table or its entry point memory, so it wasn't read
};
// As osGetStructuresDataNonEFI and osGetStructuresDataByAddress, but they tell why they failed.
MemoryEnd_t ScanMemory(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image);
MemoryEnd_t ReadByAddress(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image);
