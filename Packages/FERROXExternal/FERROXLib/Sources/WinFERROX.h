// What the files of the Windows half share: the driver's life cycle, and requests to its device.
#pragma once

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/FERROXInternal.h"
#include "Packages/OS/Windows/Windows.h"

// ---- WinFERROX.cpp: life cycle of driver and device

// 1 when the open library found a hypervisor.
extern uint8_t HyperVEnabled;

inline constexpr uint32_t kDriverPathSize = 256;

// Steps of OSFERROXInitialize and OSFERROXTerminate. They return 1, or 0 on failure. RegisterDriver and StopDriver
// reopen the service manager and leave it open on success. RemoveDriver opens it if needed, and closes it.
status_t RegisterDriver();  // 1 even if the service exists already
status_t StartDriver();     // 1 even if the service runs already; replaces a service whose file is missing
status_t StopDriver();
status_t RemoveDriver();
status_t checkDriverAutoLoaded();  // 1 if the service exists and starts automatically

// Open and close a handle that keeps others from replacing the running driver's file. Return 1 or 5.
status_t lockInstallFile();
status_t unlockInstallFile();
// Reads the path of the driver's file from the registry. `path` has kDriverPathSize bytes. Returns 1 or 5.
status_t getFERROXinstallPath(char* path, REGSAM access = KEY_ALL_ACCESS);
// Tests for a hypervisor by CPUID leaf 1, read through the driver. Returns the status of OSReadCPUID.
status_t getHyperVStatus(uint8_t* enabled);

// Sends a request: `size` bytes of `record`, which the answer overwrites. Returns the result of the device call,
// nonzero for success. `returned` is set to the size of the answer, 0 on failure.
BOOL SendRequest(RequestCode_t code, void* record, uint32_t size, DWORD* returned);
// Requests one of the driver's four versions. `function` is for trace lines. Returns 1 or 5.
status_t AskVersion(RequestCode_t code, const char* function, uint32_t* version);

// The state of the driver's service, by the rights of any user.
struct ServiceState_t {
    DWORD error = ERROR_SUCCESS;  // of the query
    DWORD state = 0;              // SERVICE_RUNNING and others
    DWORD startType = 0;
};
ServiceState_t GetServiceState();
// A trial that BeginTrial began.
struct Trial_t {
    bool isTried = false;         // the driver was to be started
    status_t status = kFailure;   // of the hardware library's start
    DWORD error = ERROR_SUCCESS;  // of the step that failed
};
const Trial_t& CurrentTrial();

// ---- IORW.cpp

// Read or write buffer->Size bytes by a memory request. `function` is for trace lines. Return 1; 3; or 0 if the driver
// refused. The buffer is written to on success only.
status_t ReadMemory(RequestCode_t code, const char* function, const MemoryPlace_t& place, DataBuffer_t* buffer);
status_t WriteMemory(RequestCode_t code, const char* function, const MemoryPlace_t& place, const DataBuffer_t* buffer);
