// What the files of the Windows half share: the life cycle of the driver, the way to its device, and the operations
// that send requests to it.
#pragma once

#include "Packages/FERROXExternal/FERROXLib/Sources/FERROXInternal.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/HardwareServices.h"
#include "Packages/OS/Windows/Windows.h"

// ---- WinFERROX.cpp: life cycle of driver and device, and the one way to it

// 1 when the open library found a hypervisor.
extern uint8_t HyperVEnabled;

// Opens section, driver and device for this process. 1; 5 with all steps undone; or getHyperVStatus's status, with the
// device left open and the machine's count raised. On an open device it just raises the count.
status_t OSFERROXInitialize();
// Closes the device; at the machine's last user also stops and removes the driver, unless it loads by itself.
// 1; 2 not open; 5 when the driver can't be stopped or removed: section and view stay then, for the next try.
status_t OSFERROXTerminate();
status_t OSGetFERROXDriverVersion(uint32_t* version);

inline constexpr uint32_t kDriverPathSize = 256;

// The steps of the two. 1, or 0 on failure; each closes what it opened, but for the service manager: RegisterDriver and
// StopDriver open it anew and leave it open on success, and RemoveDriver, which opens it where there is none, closes
// it.
status_t RegisterDriver();  // also 1 when the service exists
status_t StartDriver();     // also 1 when it runs; replaces a service whose file is missing
status_t StopDriver();
status_t RemoveDriver();
status_t checkDriverAutoLoaded();  // 1 when the service exists and loads by itself

// The handle that keeps others from replacing the running driver's file. 1 or 5.
status_t lockInstallFile();
status_t unlockInstallFile();
// The driver file's path, from the registry; `path` has kDriverPathSize bytes. 1 or 5.
status_t getFERROXinstallPath(char* path);
// Whether a hypervisor is present, by CPUID leaf 1 through the driver. The status of OSReadCPUID.
status_t getHyperVStatus(uint8_t* enabled);

// Sends one request: `size` bytes of `record` go in, and the answer takes their place. Gives the device call's result,
// nonzero for success; `returned` gets the number of bytes of the answer, 0 on failure.
BOOL SendRequest(RequestCode_t code, void* record, uint32_t size, DWORD* returned);
// Asks for one of the driver's four version words in the name of `function`: 1, or 5 with a line.
status_t AskVersion(RequestCode_t code, const char* function, uint32_t* version);

// ---- PCIRW.cpp: configuration space and the memory-mapped registers of devices

status_t OSGetPCILibVersion(uint32_t* version);
status_t OSPCIRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIExRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIORead(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIOReadStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIOWriteStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSPCIMMIOReadDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer);
status_t OSPCIMMIOWriteDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer);

// ---- IORW.cpp: ports, and memory by address

status_t OSGetIOLibVersion(uint32_t* version);
status_t OSReadPort(uint16_t port, DataBuffer_t* buffer);
status_t OSWritePort(uint16_t port, DataBuffer_t* buffer);
status_t OSMMIOReadGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSMMIOWriteGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer);
status_t OSGetSystemTables(uint64_t address, uint32_t offset, DataBuffer_t* buffer);

// Reads or writes buffer->Size bytes by a memory request of its own allocation, in the name of `function`: 1, 3, or 0
// when the driver refuses. The buffer is filled on success only.
status_t ReadMemory(RequestCode_t code, const char* function, const MemoryPlace_t& place, DataBuffer_t* buffer);
status_t WriteMemory(RequestCode_t code, const char* function, const MemoryPlace_t& place, const DataBuffer_t* buffer);

// ---- MSRRW.cpp: registers of a processor

status_t OSGetCPULibVersion(uint32_t* version);
status_t OSReadMSR(MSRRecord_t* record);
status_t OSWriteMSR(MSRRecord_t* record);
status_t OSReadCPUID(uint32_t processor, CPUIDRecord_t* record);
status_t OSCalcNonTurbo(NonTurboRecord_t* record);
