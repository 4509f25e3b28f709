// The operations that differ by machine, as one table. Each system's half of this library fills one; a recorded machine
// or a test brings its own.
//
// Arguments have been checked by the front, and statuses are those of FERROXLib.h. An empty slot is an operation that
// the machine doesn't have: it gives 6.
#pragma once

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"

struct HardwareServices_t {
    // Life cycle. OSFERROXInitialize is called again after a failure; OSFERROXTerminate gives 2 if it isn't open. A
    // failure other than 5 may leave the machine open.
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

    // As os_GetFirmwareTable (Packages/OS/FirmwareTables.h), which fills it. ACPI tables and PCI segments come from it.
    uint32_t (*GetFirmwareTable)(uint32_t provider, uint32_t table, void* buffer, uint32_t room, bool* refused);
    // As os_IsMemory (Packages/OS/MemoryMap.h), which fills it. An empty slot is a machine whose map isn't known.
    bool (*IsMemory)(uint64_t address, uint64_t size);
};

// This machine; each system's half defines it.
extern const HardwareServices_t kThisHardware;

// The operations of the halves, by which their files call each other. A half defines those that its table names.
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

// The machine in use, at first this one. It may be exchanged while the library is closed; `hardware` must outlive its
// use.
const HardwareServices_t& CurrentHardware();
void UseHardware(const HardwareServices_t& hardware);

// Closes what a failed FERROXInitialize has left open, with the machine's count and the driver's service, for a caller
// that doesn't try again. Does nothing while the library is open.
void EndFailedStart();

// Why an operation failed with status 0 or 5.
enum class Refusal_t {
    kOther,
    kRights,    // the system refuses it to this user
    kNoDriver,  // the driver isn't installed
};
// That of this thread's last failure. Any operation may change it.
Refusal_t LastRefusal();
// For the halves, to tell it.
void NoteRefusal(Refusal_t refusal);
