// The part of the Windows interface that the Windows half of the hardware library uses, as declared for native tests.
// Meaning, arguments and error codes are those of the Windows functions of the same names.
#pragma once

#include <cstddef>
#include <cstdint>

typedef int BOOL;
typedef uint8_t BYTE, *LPBYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD, UINT, REGSAM, *LPDWORD;
typedef int32_t LSTATUS;
typedef size_t SIZE_T;
typedef void *HANDLE, *PVOID, *LPVOID, *PSECURITY_DESCRIPTOR;
typedef const void* LPCVOID;
typedef char* LPSTR;
typedef const char* LPCSTR;
typedef struct HKEY__ *HKEY, **PHKEY;
typedef struct SC_HANDLE__* SC_HANDLE;
typedef struct OVERLAPPED* LPOVERLAPPED;
typedef struct ACL* PACL;

#define TRUE 1
#define FALSE 0
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<intptr_t>(-1)))

constexpr DWORD ERROR_SUCCESS = 0, ERROR_FILE_NOT_FOUND = 2, ERROR_PATH_NOT_FOUND = 3, ERROR_ACCESS_DENIED = 5,
                ERROR_INVALID_HANDLE = 6, ERROR_INVALID_PARAMETER = 87, ERROR_INSUFFICIENT_BUFFER = 122,
                ERROR_ALREADY_EXISTS = 183, ERROR_MORE_DATA = 234, ERROR_NOT_OWNER = 288,
                ERROR_SERVICE_ALREADY_RUNNING = 1056, ERROR_SERVICE_DISABLED = 1058,
                ERROR_SERVICE_DOES_NOT_EXIST = 1060, ERROR_SERVICE_EXISTS = 1073, ERROR_DRIVER_BLOCKED = 1275;
constexpr DWORD INFINITE = 0xFFFFFFFF, WAIT_OBJECT_0 = 0, WAIT_ABANDONED = 0x80, WAIT_FAILED = 0xFFFFFFFF;
constexpr DWORD SECURITY_DESCRIPTOR_REVISION = 1, GENERIC_READ = 0x80000000, GENERIC_WRITE = 0x40000000,
                FILE_SHARE_READ = 1, OPEN_EXISTING = 3, FILE_ATTRIBUTE_NORMAL = 0x80, PAGE_READWRITE = 0x04,
                FILE_MAP_ALL_ACCESS = 0x000F001F;
constexpr DWORD SC_MANAGER_ALL_ACCESS = 0x000F003F, SC_MANAGER_CONNECT = 1, SERVICE_ALL_ACCESS = 0x000F01FF,
                SERVICE_QUERY_CONFIG = 1, SERVICE_QUERY_STATUS = 4, SERVICE_START = 16,
                SERVICE_KERNEL_DRIVER = 0x00000001, SERVICE_BOOT_START = 0, SERVICE_SYSTEM_START = 1,
                SERVICE_AUTO_START = 2, SERVICE_DEMAND_START = 3, SERVICE_DISABLED = 4, SERVICE_ERROR_NORMAL = 1,
                SERVICE_CONTROL_STOP = 1, SERVICE_STOPPED = 1, SERVICE_STOP_PENDING = 3, SERVICE_RUNNING = 4;
constexpr DWORD KEY_ALL_ACCESS = 0x000F003F, KEY_READ = 0x00020019;
constexpr WORD ALL_PROCESSOR_GROUPS = 0xFFFF;
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<intptr_t>(static_cast<int32_t>(0x80000002u))))

struct SECURITY_DESCRIPTOR {
    PVOID Words[5];
};

typedef struct SECURITY_ATTRIBUTES {
    DWORD nLength;
    PVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
} * LPSECURITY_ATTRIBUTES;

enum SC_STATUS_TYPE { SC_STATUS_PROCESS_INFO = 0 };

typedef struct SERVICE_STATUS {
    DWORD Words[7];
} * LPSERVICE_STATUS;

struct SERVICE_STATUS_PROCESS {
    DWORD dwServiceType, dwCurrentState, dwControlsAccepted, dwWin32ExitCode, dwServiceSpecificExitCode, dwCheckPoint;
    DWORD dwWaitHint, dwProcessId, dwServiceFlags;
};

typedef struct QUERY_SERVICE_CONFIGA {
    DWORD dwServiceType, dwStartType, dwErrorControl;
    LPSTR lpBinaryPathName, lpLoadOrderGroup;
    DWORD dwTagId;
    LPSTR lpDependencies, lpServiceStartName, lpDisplayName;
} * LPQUERY_SERVICE_CONFIGA;

struct GROUP_AFFINITY {
    uintptr_t Mask;
    WORD Group;
    WORD Reserved[3];
};

extern "C" {
DWORD GetLastError();
void SetLastError(DWORD error);
BOOL CloseHandle(HANDLE handle);
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
HANDLE CreateMutexA(LPSECURITY_ATTRIBUTES attributes, BOOL initialOwner, LPCSTR name);
BOOL ReleaseMutex(HANDLE mutex);
DWORD GetTickCount();
void Sleep(DWORD milliseconds);
UINT GetSystemFirmwareTable(DWORD provider, DWORD table, PVOID buffer, DWORD size);
UINT EnumSystemFirmwareTables(DWORD provider, PVOID buffer, DWORD size);
HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes, DWORD disposition,
                   DWORD flags, HANDLE templateFile);
BOOL DeviceIoControl(HANDLE device, DWORD code, LPVOID in, DWORD inSize, LPVOID out, DWORD outSize, LPDWORD returned,
                     LPOVERLAPPED overlapped);
HANDLE CreateFileMappingA(HANDLE file, LPSECURITY_ATTRIBUTES attributes, DWORD protection, DWORD sizeHigh,
                          DWORD sizeLow, LPCSTR name);
LPVOID MapViewOfFile(HANDLE section, DWORD access, DWORD offsetHigh, DWORD offsetLow, SIZE_T size);
BOOL UnmapViewOfFile(LPCVOID view);
BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision);
BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL list, BOOL defaulted);
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
LSTATUS RegOpenKeyExA(HKEY root, LPCSTR path, DWORD options, REGSAM access, PHKEY key);
LSTATUS RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size);
LSTATUS RegCloseKey(HKEY key);
DWORD GetActiveProcessorCount(WORD group);
WORD GetActiveProcessorGroupCount();
BOOL SetThreadGroupAffinity(HANDLE thread, const GROUP_AFFINITY* affinity, GROUP_AFFINITY* previous);
HANDLE GetCurrentThread();
}
