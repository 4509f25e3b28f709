// The machine under the hardware library, as one table of operations. Each system's half of the library fills a table
// for this machine (kThisHardware); a recorded machine or a test brings its own. For the libraries and programs of this
// tree only: not installed.
#pragma once

#include <vector>

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/OS/FirmwareTables.h"

// Operations get arguments that the front has checked and return the statuses of FERROXLib.h. An empty slot is an
// operation that the machine doesn't have: the front returns 6 for it.
struct HardwareServices_t {
    // Life cycle. OSFERROXInitialize may be called again after it failed. OSFERROXTerminate returns 2 if the machine
    // isn't open. A failed OSFERROXInitialize leaves the machine closed if its status is 5; otherwise it may be open.
    status_t (*OSFERROXInitialize)();
    status_t (*OSFERROXTerminate)();
    status_t (*OSGetFERROXDriverVersion)(uint32_t* version);
    status_t (*OSGetPCILibVersion)(uint32_t* version);
    status_t (*OSGetIOLibVersion)(uint32_t* version);
    status_t (*OSGetCPULibVersion)(uint32_t* version);

    status_t (*OSPCIRead)(uint32_t location, uint32_t offset, DataBuffer_t* buffer);
    status_t (*OSPCIExRead)(uint32_t location, uint32_t offset, DataBuffer_t* buffer);

    status_t (*OSPCIMMIORead)(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
    status_t (*OSPCIMMIOReadStored)(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
    status_t (*OSMMIOReadGPIO)(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
    status_t (*OSPCIMMIOWriteStored)(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
    status_t (*OSMMIOWriteGPIO)(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
    status_t (*OSGetSystemTables)(uint64_t address, uint32_t offset, DataBuffer_t* buffer);
    status_t (*OSPCIMMIOReadDynamic)(const DynamicMMIORecord_t* record, DataBuffer_t* buffer);
    status_t (*OSPCIMMIOWriteDynamic)(const DynamicMMIORecord_t* record, DataBuffer_t* buffer);

    status_t (*OSReadPort)(uint16_t port, DataBuffer_t* buffer);
    status_t (*OSWritePort)(uint16_t port, DataBuffer_t* buffer);
    status_t (*OSReadMSR)(MSRRecord_t* record);
    status_t (*OSWriteMSR)(MSRRecord_t* record);
    status_t (*OSReadCPUID)(uint32_t processor, CPUIDRecord_t* record);
    status_t (*OSCalcNonTurbo)(NonTurboRecord_t* record);

    // As os_GetFirmwareTable, which fills it in kThisHardware. ACPI tables and PCI segments are read through it.
    uint32_t (*GetFirmwareTable)(uint32_t provider, uint32_t table, void* buffer, uint32_t room, bool* refused);
    // As os_IsMemory, which fills it in kThisHardware. An empty slot means that no address is known to be memory.
    bool (*IsMemory)(uint64_t address, uint64_t size);
    // As os_ListACPITables and os_ReadACPITable, which fill them in kThisHardware.
    std::vector<uint32_t> (*ListACPITables)();
    bool (*ReadACPITable)(uint32_t table, uint32_t place, std::vector<uint8_t>* bytes, bool* refused);
    // Whether the architecture has a BIOS area below 1 MiB. An empty slot means that it has. Without one, other things
    // may be there, and nothing is read.
    bool (*HasBIOSArea)();
    // As os_GetEntryAddresses, which fills it in kThisHardware. An empty slot is a machine that doesn't show them.
    status_t (*GetEntryAddresses)(EntryAddresses_t* addresses, bool* refused);
};

// This machine; each system's half defines it.
extern const HardwareServices_t kThisHardware;

// The machine in use: kThisHardware, unless UseHardware has set another.
const HardwareServices_t& CurrentHardware();
// Sets the machine in use. The library must be closed, and `hardware` must outlive its use.
void UseHardware(const HardwareServices_t& hardware);
// What its slot says.
bool HasBIOSArea();
// Whether the library is open.
bool HardwareIsOpen();

// Closes what a failed FERROXInitialize has left open, and releases its use of the driver, for a caller that won't
// try again. Does nothing while the library is open.
void EndFailedStart();

// Why an operation failed with status 0, 5 or 6.
enum class Refusal_t {
    kOther,
    kRights,        // the user lacks the rights
    kNoDriver,      // the driver isn't installed
    kNotRecorded,   // the machine is a record, which doesn't have it
    kArchitecture,  // the machine's architecture doesn't have it
};
// The reason of the last failure on this thread. Valid until the next operation.
Refusal_t LastRefusal();
// Sets what LastRefusal returns. For those that fill a HardwareServices_t.
void NoteRefusal(Refusal_t refusal);
