// The part of the Windows interface that this project uses, as declared for the provider in this folder. Meaning,
// arguments and error codes are those of the Windows functions of the same names.
#pragma once

#include <cstddef>
#include <cstdint>

#define WINAPI

using BOOL = int;
using BYTE = uint8_t;
using CHAR = char;
using WORD = uint16_t;
using DWORD = uint32_t;
using UINT = uint32_t;
using ULONG = uint32_t;
using LONG = int32_t;
using LSTATUS = LONG;
using ULONG64 = uint64_t;
using ULONGLONG = uint64_t;
using ULONG_PTR = uintptr_t;
using SIZE_T = size_t;
using KAFFINITY = ULONG_PTR;
using WCHAR = char16_t;  // the unit of Windows' wide text: 16 bits on every platform
using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using LPBYTE = BYTE*;
using LPBOOL = BOOL*;
using LPDWORD = DWORD*;
using PULONGLONG = ULONGLONG*;
using HANDLE = void*;
using LPSTR = char*;
using LPCSTR = const char*;
using LPCCH = const char*;
using LPWSTR = WCHAR*;
using LPCWCH = const WCHAR*;
using HKEY = struct HKEY__*;
using SC_HANDLE = struct SC_HANDLE__*;
using PHKEY = HKEY*;
using REGSAM = DWORD;

union LARGE_INTEGER {
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;
    int64_t QuadPart;
};

#define TRUE 1
#define FALSE 0
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<intptr_t>(-1)))
#define MAX_PATH 260

// Error codes.
#define ERROR_SUCCESS 0u
#define ERROR_INVALID_FUNCTION 1u
#define ERROR_FILE_NOT_FOUND 2u
#define ERROR_PATH_NOT_FOUND 3u
#define ERROR_TOO_MANY_OPEN_FILES 4u
#define ERROR_ACCESS_DENIED 5u
#define ERROR_INVALID_HANDLE 6u
#define ERROR_NOT_ENOUGH_MEMORY 8u
#define ERROR_NO_MORE_FILES 18u
#define ERROR_GEN_FAILURE 31u
#define ERROR_SHARING_VIOLATION 32u
#define ERROR_NOT_SUPPORTED 50u
#define ERROR_FILE_EXISTS 80u
#define ERROR_INVALID_PARAMETER 87u
#define ERROR_DISK_FULL 112u
#define ERROR_INSUFFICIENT_BUFFER 122u
#define ERROR_INVALID_NAME 123u
#define ERROR_ALREADY_EXISTS 183u
#define ERROR_BAD_EXE_FORMAT 193u
#define ERROR_FILENAME_EXCED_RANGE 206u
#define ERROR_MORE_DATA 234u
#define ERROR_NOT_OWNER 288u
#define ERROR_INVALID_ADDRESS 487u
#define ERROR_NOACCESS 998u
#define ERROR_INVALID_FLAGS 1004u
#define ERROR_INVALID_SERVICE_CONTROL 1052u
#define ERROR_SERVICE_ALREADY_RUNNING 1056u
#define ERROR_SERVICE_DISABLED 1058u
#define ERROR_SERVICE_DOES_NOT_EXIST 1060u
#define ERROR_SERVICE_NOT_ACTIVE 1062u
#define ERROR_SERVICE_MARKED_FOR_DELETE 1072u
#define ERROR_SERVICE_EXISTS 1073u
#define ERROR_NO_UNICODE_TRANSLATION 1113u
#define ERROR_NO_SYSTEM_RESOURCES 1450u

// Waiting.
#define INFINITE 0xFFFFFFFFu
#define WAIT_OBJECT_0 0u
#define WAIT_ABANDONED 0x80u
#define WAIT_TIMEOUT 258u
#define WAIT_FAILED 0xFFFFFFFFu

// Security descriptors.
#define SECURITY_DESCRIPTOR_REVISION 1u

using PSECURITY_DESCRIPTOR = PVOID;
using PACL = struct ACL*;
using PSID = PVOID;

struct SECURITY_DESCRIPTOR {
    BYTE Revision;
    BYTE Sbz1;
    WORD Control;
    PSID Owner;
    PSID Group;
    PACL Sacl;
    PACL Dacl;
};

struct SECURITY_ATTRIBUTES {
    DWORD nLength;
    PVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
};

using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;

// Files and devices.
#define GENERIC_READ 0x80000000u
#define GENERIC_WRITE 0x40000000u
#define FILE_SHARE_READ 1u
#define FILE_SHARE_WRITE 2u
#define OPEN_EXISTING 3u
#define FILE_ATTRIBUTE_DIRECTORY 0x10u
#define FILE_ATTRIBUTE_NORMAL 0x80u

using LPOVERLAPPED = struct OVERLAPPED*;

struct WIN32_FIND_DATAA {
    DWORD dwFileAttributes;
    CHAR cFileName[MAX_PATH];
};

using LPWIN32_FIND_DATAA = WIN32_FIND_DATAA*;

// Shared sections.
#define PAGE_READONLY 0x02u
#define PAGE_READWRITE 0x04u
#define FILE_MAP_WRITE 0x02u
#define FILE_MAP_READ 0x04u
#define FILE_MAP_ALL_ACCESS 0x000F001Fu

// Service control.
#define DELETE 0x00010000u
#define SC_MANAGER_CREATE_SERVICE 0x0002u
#define SC_MANAGER_ALL_ACCESS 0x000F003Fu
#define SERVICE_QUERY_CONFIG 0x0001u
#define SERVICE_QUERY_STATUS 0x0004u
#define SERVICE_START 0x0010u
#define SERVICE_STOP 0x0020u
#define SERVICE_ALL_ACCESS 0x000F01FFu
#define SERVICE_KERNEL_DRIVER 0x00000001u
#define SERVICE_BOOT_START 0u
#define SERVICE_SYSTEM_START 1u
#define SERVICE_AUTO_START 2u
#define SERVICE_DEMAND_START 3u
#define SERVICE_DISABLED 4u
#define SERVICE_ERROR_NORMAL 1u
#define SERVICE_CONTROL_STOP 1u
#define SERVICE_CONTROL_INTERROGATE 4u
#define SERVICE_STOPPED 1u
#define SERVICE_STOP_PENDING 3u
#define SERVICE_RUNNING 4u
#define SERVICE_ACCEPT_STOP 1u

enum SC_STATUS_TYPE { SC_STATUS_PROCESS_INFO = 0 };

struct SERVICE_STATUS {
    DWORD dwServiceType;
    DWORD dwCurrentState;
    DWORD dwControlsAccepted;
    DWORD dwWin32ExitCode;
    DWORD dwServiceSpecificExitCode;
    DWORD dwCheckPoint;
    DWORD dwWaitHint;
};

struct SERVICE_STATUS_PROCESS {
    DWORD dwServiceType;
    DWORD dwCurrentState;
    DWORD dwControlsAccepted;
    DWORD dwWin32ExitCode;
    DWORD dwServiceSpecificExitCode;
    DWORD dwCheckPoint;
    DWORD dwWaitHint;
    DWORD dwProcessId;
    DWORD dwServiceFlags;
};

struct QUERY_SERVICE_CONFIGA {
    DWORD dwServiceType;
    DWORD dwStartType;
    DWORD dwErrorControl;
    LPSTR lpBinaryPathName;
    LPSTR lpLoadOrderGroup;
    DWORD dwTagId;
    LPSTR lpDependencies;
    LPSTR lpServiceStartName;
    LPSTR lpDisplayName;
};

using LPSERVICE_STATUS = SERVICE_STATUS*;
using LPQUERY_SERVICE_CONFIGA = QUERY_SERVICE_CONFIGA*;

// Registry. The functions give their error as the result.
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<intptr_t>(static_cast<int32_t>(0x80000002u))))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<intptr_t>(static_cast<int32_t>(0x80000001u))))
#define KEY_READ 0x00020019u
#define KEY_ALL_ACCESS 0x000F003Fu
#define REG_SZ 1u

// Processors.
#define ALL_PROCESSOR_GROUPS 0xFFFFu

struct GROUP_AFFINITY {
    KAFFINITY Mask;
    WORD Group;
    WORD Reserved[3];
};

// Processes.
#define NORMAL_PRIORITY_CLASS 0x20u
#define STILL_ACTIVE 259u

struct STARTUPINFOA {
    DWORD cb;
    LPSTR lpReserved;
    LPSTR lpDesktop;
    LPSTR lpTitle;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwFlags;
    WORD wShowWindow;
    WORD cbReserved2;
    LPBYTE lpReserved2;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
};

struct PROCESS_INFORMATION {
    HANDLE hProcess;
    HANDLE hThread;
    DWORD dwProcessId;
    DWORD dwThreadId;
};

using LPSTARTUPINFOA = STARTUPINFOA*;
using LPPROCESS_INFORMATION = PROCESS_INFORMATION*;

// Local time.
struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};

using LPSYSTEMTIME = SYSTEMTIME*;

// Text conversion.
#define CP_UTF8 65001u
#define MB_ERR_INVALID_CHARS 0x08u
#define WC_ERR_INVALID_CHARS 0x80u

// Exceptions.
#define EXCEPTION_MAXIMUM_PARAMETERS 15
#define EXCEPTION_CONTINUE_SEARCH 0
#define EXCEPTION_CONTINUE_EXECUTION (-1)
#define EXCEPTION_DATATYPE_MISALIGNMENT 0x80000002u
#define EXCEPTION_BREAKPOINT 0x80000003u
#define EXCEPTION_SINGLE_STEP 0x80000004u
#define EXCEPTION_ACCESS_VIOLATION 0xC0000005u
#define EXCEPTION_IN_PAGE_ERROR 0xC0000006u
#define EXCEPTION_ILLEGAL_INSTRUCTION 0xC000001Du
#define EXCEPTION_NONCONTINUABLE_EXCEPTION 0xC0000025u
#define EXCEPTION_INVALID_DISPOSITION 0xC0000026u
#define EXCEPTION_ARRAY_BOUNDS_EXCEEDED 0xC000008Cu
#define EXCEPTION_FLT_DENORMAL_OPERAND 0xC000008Du
#define EXCEPTION_FLT_DIVIDE_BY_ZERO 0xC000008Eu
#define EXCEPTION_FLT_INEXACT_RESULT 0xC000008Fu
#define EXCEPTION_FLT_INVALID_OPERATION 0xC0000090u
#define EXCEPTION_FLT_OVERFLOW 0xC0000091u
#define EXCEPTION_FLT_STACK_CHECK 0xC0000092u
#define EXCEPTION_FLT_UNDERFLOW 0xC0000093u
#define EXCEPTION_INT_DIVIDE_BY_ZERO 0xC0000094u
#define EXCEPTION_INT_OVERFLOW 0xC0000095u
#define EXCEPTION_PRIV_INSTRUCTION 0xC0000096u
#define EXCEPTION_STACK_OVERFLOW 0xC00000FDu
#define DBG_CONTROL_C 0x40010005u

struct EXCEPTION_RECORD {
    DWORD ExceptionCode;
    DWORD ExceptionFlags;
    EXCEPTION_RECORD* ExceptionRecord;
    PVOID ExceptionAddress;
    DWORD NumberParameters;
    ULONG_PTR ExceptionInformation[EXCEPTION_MAXIMUM_PARAMETERS];
};

// ContextRecord points to the system's own record of the registers (ucontext_t).
struct EXCEPTION_POINTERS {
    EXCEPTION_RECORD* ExceptionRecord;
    struct CONTEXT* ContextRecord;
};

using LPTOP_LEVEL_EXCEPTION_FILTER = LONG(WINAPI*)(EXCEPTION_POINTERS*);

extern "C" {
// Errors and handles (Handles.cpp)
DWORD GetLastError();
void SetLastError(DWORD error);
BOOL CloseHandle(HANDLE handle);
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);

// Synchronisation (Mutex.cpp)
HANDLE CreateMutexA(SECURITY_ATTRIBUTES* attributes, BOOL initialOwner, LPCSTR name);
BOOL ReleaseMutex(HANDLE mutex);

// Clock (Clock.cpp)
BOOL QueryPerformanceCounter(LARGE_INTEGER* ticks);
BOOL QueryPerformanceFrequency(LARGE_INTEGER* perSecond);
DWORD GetTickCount();
void Sleep(DWORD milliseconds);
void GetLocalTime(LPSYSTEMTIME now);

// Firmware tables (FirmwareTables.cpp)
UINT GetSystemFirmwareTable(DWORD provider, DWORD table, PVOID buffer, DWORD size);

// Devices and files (Device.cpp, Files.cpp)
HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes, DWORD disposition,
                   DWORD flags, HANDLE templateFile);
BOOL DeviceIoControl(HANDLE device, DWORD code, LPVOID in, DWORD inSize, LPVOID out, DWORD outSize, LPDWORD returned,
                     LPOVERLAPPED overlapped);
HANDLE FindFirstFileA(LPCSTR pattern, LPWIN32_FIND_DATAA found);
BOOL FindNextFileA(HANDLE search, LPWIN32_FIND_DATAA found);
BOOL FindClose(HANDLE search);
DWORD GetCurrentDirectoryA(DWORD size, LPSTR buffer);

// Shared sections and their security (Sections.cpp)
HANDLE CreateFileMappingA(HANDLE file, LPSECURITY_ATTRIBUTES attributes, DWORD protection, DWORD sizeHigh,
                          DWORD sizeLow, LPCSTR name);
LPVOID MapViewOfFile(HANDLE section, DWORD access, DWORD offsetHigh, DWORD offsetLow, SIZE_T size);
BOOL UnmapViewOfFile(LPCVOID view);
BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision);
BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL list, BOOL defaulted);

// Service control (Services.cpp)
SC_HANDLE OpenSCManagerA(LPCSTR machine, LPCSTR database, DWORD access);
SC_HANDLE OpenServiceA(SC_HANDLE manager, LPCSTR name, DWORD access);
SC_HANDLE CreateServiceA(SC_HANDLE manager, LPCSTR name, LPCSTR displayName, DWORD access, DWORD type, DWORD startType,
                         DWORD errorControl, LPCSTR path, LPCSTR group, LPDWORD tag, LPCSTR dependencies,
                         LPCSTR account, LPCSTR password);
BOOL StartServiceA(SC_HANDLE service, DWORD count, LPCSTR* arguments);
BOOL ControlService(SC_HANDLE service, DWORD control, LPSERVICE_STATUS status);
BOOL QueryServiceStatusEx(SC_HANDLE service, SC_STATUS_TYPE level, LPBYTE buffer, DWORD size, LPDWORD needed);
BOOL QueryServiceConfigA(SC_HANDLE service, LPQUERY_SERVICE_CONFIGA config, DWORD size, LPDWORD needed);
BOOL DeleteService(SC_HANDLE service);
BOOL CloseServiceHandle(SC_HANDLE handle);

// Registry (Registry.cpp)
LSTATUS RegOpenKeyExA(HKEY root, LPCSTR path, DWORD options, REGSAM access, PHKEY key);
LSTATUS RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size);
LSTATUS RegCloseKey(HKEY key);

// Processors and memory (Processors.cpp)
DWORD GetActiveProcessorCount(WORD group);
WORD GetActiveProcessorGroupCount();
BOOL SetThreadGroupAffinity(HANDLE thread, const GROUP_AFFINITY* affinity, GROUP_AFFINITY* previous);
HANDLE GetCurrentThread();
BOOL GetPhysicallyInstalledSystemMemory(PULONGLONG kilobytes);

// Processes (Processes.cpp)
BOOL CreateProcessA(LPCSTR application, LPSTR commandLine, LPSECURITY_ATTRIBUTES process, LPSECURITY_ATTRIBUTES thread,
                    BOOL inheritHandles, DWORD flags, LPVOID environment, LPCSTR directory, LPSTARTUPINFOA startup,
                    LPPROCESS_INFORMATION information);
BOOL TerminateProcess(HANDLE process, UINT exitCode);
BOOL GetExitCodeProcess(HANDLE process, LPDWORD exitCode);

// Text conversion (Text.cpp)
int MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH text, int size, LPWSTR wide, int wideSize);
int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH wide, int wideSize, LPSTR text, int size,
                        LPCCH defaultCharacter, LPBOOL usedDefault);

// Crash report (Crash.cpp)
LPTOP_LEVEL_EXCEPTION_FILTER SetUnhandledExceptionFilter(LPTOP_LEVEL_EXCEPTION_FILTER filter);
}
