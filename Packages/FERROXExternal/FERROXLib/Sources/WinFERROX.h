// What the files of the Windows half share: the life cycle of the driver, and requests to its device.
#pragma once

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/FERROXInternal.h"
#include "Packages/OS/Windows/Windows.h"

// ---- WinFERROX.cpp: life cycle of driver and device, and the one way to it

// 1 when the open library found a hypervisor.
extern uint8_t HyperVEnabled;

inline constexpr uint32_t kDriverPathSize = 256;

// The steps of OSFERROXInitialize and OSFERROXTerminate. 1, or 0 on failure; each closes what it opened, but for the
// service manager: RegisterDriver and StopDriver open it anew and leave it open on success, and RemoveDriver, which
// opens it where there is none, closes it.
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

// ---- IORW.cpp

// Reads or writes buffer->Size bytes by a memory request of its own allocation, in the name of `function`: 1, 3, or 0
// when the driver refuses. The buffer is filled on success only.
status_t ReadMemory(RequestCode_t code, const char* function, const MemoryPlace_t& place, DataBuffer_t* buffer);
status_t WriteMemory(RequestCode_t code, const char* function, const MemoryPlace_t& place, const DataBuffer_t* buffer);
