// What the files of the store share with each other and with its tests.
#pragma once

#include <cstdint>
#include <string>

#include "Packages/Debug/Debug.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/StructureStore.h"
#include "Packages/Format/Structures.h"

extern DebugHandle_t storeTraceHandle;

// Whether the store is up, which is when the machine can't be changed.
bool StoreIsUp();

// What is known of the table as a whole; null while the store is down.
struct TableFacts_t {
    static constexpr uint32_t kNowhere = UINT32_MAX;

    uint8_t major = 0, minor = 0;
    uint32_t length = 0;
    bool hasEnd = false;           // an End-of-Table structure
    uint32_t brokenAt = kNowhere;  // of the first structure that isn't one: all after it may be made up
    bool isCut = false;            // the table ends within that structure; else its Length is below a header's

    // That a structure is broken, and how; empty where none is.
    std::string Remark() const;
};
const TableFacts_t* FactsOfTable();

// The choice of a machine, kept while another one is in use for a while. Both are for a store that is down.
struct MachineChoice_t {
    MachineServices_t services;
    ImageSource_t image;
};
MachineChoice_t ChosenMachine();
void ChooseMachine(const MachineChoice_t& choice);

// How a scan of physical memory for the table ended.
enum class ScanEnd_t {
    kFound,
    kNoRoom,      // out of memory
    kUnreadable,  // the hardware library refused to read
    kNoAnchors,   // _SM_ and _DMI_ aren't both there
    kElsewhere,   // the table isn't in what the system calls memory, and wasn't read
};
// As osGetStructuresDataNonEFI, which gives its status alone.
ScanEnd_t ScanMemory(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image);

// The text of string `number` of a string area that ends in a double NUL, or null when the area has no such string.
const char* FindStructString(const char* area, uint8_t number);
