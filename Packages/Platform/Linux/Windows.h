// The part of the Windows interface that this project uses, as declared for the provider in this folder. Meaning,
// arguments and error codes are those of the Windows functions of the same names.
#pragma once

#include <cstddef>
#include <cstdint>

using BOOL = int;
using BYTE = uint8_t;
using WORD = uint16_t;
using DWORD = uint32_t;
using UINT = uint32_t;
using LONG = int32_t;
using ULONGLONG = uint64_t;
using PVOID = void*;
using HANDLE = void*;
using LPCSTR = const char*;

union LARGE_INTEGER {
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;
    int64_t QuadPart;
};

struct SECURITY_ATTRIBUTES {
    DWORD nLength;
    PVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
};

#define TRUE 1
#define FALSE 0
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<intptr_t>(-1)))

// Error codes.
#define ERROR_SUCCESS 0u
#define ERROR_INVALID_FUNCTION 1u
#define ERROR_FILE_NOT_FOUND 2u
#define ERROR_PATH_NOT_FOUND 3u
#define ERROR_TOO_MANY_OPEN_FILES 4u
#define ERROR_ACCESS_DENIED 5u
#define ERROR_INVALID_HANDLE 6u
#define ERROR_NOT_ENOUGH_MEMORY 8u
#define ERROR_GEN_FAILURE 31u
#define ERROR_SHARING_VIOLATION 32u
#define ERROR_NOT_SUPPORTED 50u
#define ERROR_INVALID_PARAMETER 87u
#define ERROR_INSUFFICIENT_BUFFER 122u
#define ERROR_ALREADY_EXISTS 183u
#define ERROR_NOT_OWNER 288u

// Waiting.
#define INFINITE 0xFFFFFFFFu
#define WAIT_OBJECT_0 0u
#define WAIT_ABANDONED 0x80u
#define WAIT_TIMEOUT 258u
#define WAIT_FAILED 0xFFFFFFFFu

extern "C" {
// Errors and handles (Handles.cpp)
DWORD GetLastError();
void SetLastError(DWORD error);
BOOL CloseHandle(HANDLE handle);

// Synchronisation (Mutex.cpp)
HANDLE CreateMutexA(SECURITY_ATTRIBUTES* attributes, BOOL initialOwner, LPCSTR name);
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
BOOL ReleaseMutex(HANDLE mutex);

// Clock (Clock.cpp)
BOOL QueryPerformanceCounter(LARGE_INTEGER* ticks);
BOOL QueryPerformanceFrequency(LARGE_INTEGER* perSecond);

// Firmware tables (FirmwareTables.cpp)
UINT GetSystemFirmwareTable(DWORD provider, DWORD table, PVOID buffer, DWORD size);
}
