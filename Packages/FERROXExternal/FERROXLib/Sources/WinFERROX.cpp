// Life cycle of the driver Ravelink, which all processes of the machine share, and requests to its device.
//
// A 4-byte section mapped by all processes counts the opens of the driver. The process that raises the count from 0
// registers and starts the service; the one that lowers it to 0 stops and removes it. All of this runs under the
// front's named lock, so the count needs no atomic operations.
#include <algorithm>

#include "Packages/FERROXExternal/FERROXLib/Obstacles.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/WinFERROX.h"
#include "Packages/OS/FirmwareTables.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/MemoryMap.h"
#include "Packages/OS/NamedLock.h"
#include "Packages/OS/OS.h"

#define TRACE(function, level, ...) FERROX_TRACE("WinFERROX", function, level, __VA_ARGS__)

uint8_t HyperVEnabled = 0;

namespace {

constexpr char kDriverName[] = "Ravelink";
constexpr char kDevicePath[] = "\\\\.\\Ravelink";
constexpr char kSectionName[] = "Global\\OSMIRALSharedMemoryExt";
constexpr char kRegistryKey[] = "SOFTWARE\\Wow6432Node\\Lumetra\\Ravelink";
constexpr char kRegistryValue[] = "FERROXDrvPath";

constexpr DWORD kLongestStop = 30000;  // these three in milliseconds
constexpr DWORD kShortestWait = 1000;
constexpr DWORD kLongestWait = 10000;

struct SharedMemory_t {
    uint32_t ReferenceCountExt;  // opens of the driver by all processes of the machine
};
static_assert(sizeof(SharedMemory_t) == 4);

HANDLE DeviceHandle = INVALID_HANDLE_VALUE;  // valid while the library is open in this process
HANDLE InstallFileHandle = INVALID_HANDLE_VALUE;
HANDLE SharedSectionHandle = nullptr;
SharedMemory_t* SharedMemory = nullptr;
SC_HANDLE ServiceManagerHandle = nullptr;
char ServiceName[64] = "";
char DriverPath[kDriverPathSize] = "";
uint32_t DriverAutoLoaded = 0;
// What this process did to the service, so that a failed open undoes exactly that.
bool serviceCreated = false;
bool serviceStarted = false;

// A service handle that closes itself.
class ClServiceHandle {
  public:
    explicit ClServiceHandle(SC_HANDLE handle) : m_handle(handle) {}
    ~ClServiceHandle() {
        if (m_handle != nullptr) CloseServiceHandle(m_handle);
    }
    ClServiceHandle(const ClServiceHandle&) = delete;
    ClServiceHandle& operator=(const ClServiceHandle&) = delete;

    SC_HANDLE Get() const { return m_handle; }

  private:
    SC_HANDLE m_handle;
};

void SetServiceName() { os_strncpy(ServiceName, kDriverName, sizeof(ServiceName) - 1); }

void CloseServiceManager() {
    if (ServiceManagerHandle != nullptr) CloseServiceHandle(ServiceManagerHandle);
    ServiceManagerHandle = nullptr;
}

// Reopens the service manager.
bool OpenServiceManager() {
    CloseServiceManager();
    ServiceManagerHandle = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
    return ServiceManagerHandle != nullptr;
}

SC_HANDLE OpenDriverService() { return OpenServiceA(ServiceManagerHandle, ServiceName, SERVICE_ALL_ACCESS); }

}  // namespace

// ---- The shared count

// Builds attributes that let all processes of all users open the section. Returns false on failure.
static bool OpenForAll(SECURITY_DESCRIPTOR* descriptor, SECURITY_ATTRIBUTES* attributes) {
    if (!InitializeSecurityDescriptor(descriptor, SECURITY_DESCRIPTOR_REVISION)) return false;
    if (!SetSecurityDescriptorDacl(descriptor, TRUE, nullptr, FALSE)) return false;
    *attributes = {sizeof(*attributes), descriptor, TRUE};
    return true;
}

static void CloseSharedCount() {
    if (SharedMemory != nullptr) UnmapViewOfFile(SharedMemory);
    SharedMemory = nullptr;
    if (SharedSectionHandle != nullptr) CloseHandle(SharedSectionHandle);
    SharedSectionHandle = nullptr;
}

static status_t OpenSharedCount() {
    // Still open if the driver couldn't be stopped or removed.
    if (SharedMemory != nullptr) return kSuccess;
    SECURITY_DESCRIPTOR descriptor;
    SECURITY_ATTRIBUTES attributes;
    const bool forAll = OpenForAll(&descriptor, &attributes);
    SharedSectionHandle = CreateFileMappingA(INVALID_HANDLE_VALUE, forAll ? &attributes : nullptr, PAGE_READWRITE, 0,
                                             sizeof(SharedMemory_t), kSectionName);
    if (SharedSectionHandle == nullptr) {
        TRACE("OSFERROXInitialize", kError, "OSFERROXInitialize: CreateFileMapping failed %u\n",
              static_cast<unsigned>(GetLastError()));
        return kFailure;
    }
    SharedMemory = static_cast<SharedMemory_t*>(
        MapViewOfFile(SharedSectionHandle, FILE_MAP_ALL_ACCESS, 0, 0, sizeof(SharedMemory_t)));
    if (SharedMemory == nullptr) {
        TRACE("OSFERROXInitialize", kError, "OSFERROXInitialize: MapViewOfFile failed %u\n",
              static_cast<unsigned>(GetLastError()));
        CloseSharedCount();
        return kFailure;
    }
    return kSuccess;
}

// ---- Open and close

static DWORD startError = ERROR_SUCCESS;  // of the last failed open

// Notes why the driver isn't available, and returns 5. `error` is the system's error of the failed step.
static status_t NoDriver(DWORD error) {
    startError = error;
    HKEY key = nullptr;
    const bool hasKey = RegOpenKeyExA(HKEY_LOCAL_MACHINE, kRegistryKey, 0, KEY_READ, &key) == ERROR_SUCCESS;
    if (hasKey) RegCloseKey(key);
    NoteRefusal(!hasKey && DriverAutoLoaded == 0 ? Refusal_t::kNoDriver
                : error == ERROR_ACCESS_DENIED   ? Refusal_t::kRights
                                                 : Refusal_t::kOther);
    return kFailure;
}

// Registers and starts the driver. On failure returns false and sets `error` to the system's error.
static bool BringDriverUp(DWORD* error) {
    serviceCreated = false;
    serviceStarted = false;
    const bool isRegistered = RegisterDriver() == kSuccess;
    if (isRegistered && StartDriver() == kSuccess) return true;
    *error = GetLastError();
    TRACE("OSFERROXInitialize", kError, "OSFERROXInitialize: %s failed",
          isRegistered ? "StartDriver" : "RegisterDriver");
    return false;
}

// Closes the service manager. The driver's file stays locked until StopDriver, because others may use the driver.
static void ReleaseDriver() {
    CloseServiceManager();
    serviceCreated = false;
    serviceStarted = false;
}

static void UndoBringDriverUp() {
    if (serviceStarted) StopDriver();
    if (serviceStarted) unlockInstallFile();  // even if the driver couldn't be stopped
    if (serviceCreated) RemoveDriver();
    ReleaseDriver();
}

// Opens section, driver and device for this process. If the device is open already, only raises the count. Returns 1; 5
// with all steps undone; or the status of getHyperVStatus, with the device open and counted.
status_t OSFERROXInitialize() {
    if (DeviceHandle != INVALID_HANDLE_VALUE) {
        ++SharedMemory->ReferenceCountExt;
        TRACE("OSFERROXInitialize", kInfo, "\n SharedMemory->ReferenceCountExt = %d",
              static_cast<int>(SharedMemory->ReferenceCountExt));
        return kSuccess;
    }
    if (OpenSharedCount() != kSuccess) return NoDriver(GetLastError());

    DWORD error = ERROR_SUCCESS;
    DriverAutoLoaded = checkDriverAutoLoaded();
    // If the count is above 0, another process has started the driver.
    if (DriverAutoLoaded == 0 && SharedMemory->ReferenceCountExt == 0 && !BringDriverUp(&error)) {
        UndoBringDriverUp();
        CloseSharedCount();
        return NoDriver(error);
    }
    DeviceHandle = CreateFileA(kDevicePath, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
    if (DeviceHandle == INVALID_HANDLE_VALUE) {
        error = GetLastError();
        TRACE("OSFERROXInitialize", kError, "OSFERROXInitialize: Error opening FERROX");
        UndoBringDriverUp();
        CloseSharedCount();
        return NoDriver(error);
    }
    ++SharedMemory->ReferenceCountExt;
    return getHyperVStatus(&HyperVEnabled);
}

// Closes the device. For the machine's last user also stops and removes the driver, unless it starts automatically.
// Returns 1; 2 not open; 5 the driver couldn't be stopped or removed, in which case section and view stay for the next
// open.
status_t OSFERROXTerminate() {
    if (DeviceHandle == INVALID_HANDLE_VALUE) {
        TRACE("OSFERROXTerminate", kError, "OSFERROXTerminate: FERROX not initialized");
        return kBadValue;
    }
    CloseHandle(DeviceHandle);
    DeviceHandle = INVALID_HANDLE_VALUE;
    // Another process may have written 0 there.
    if (SharedMemory->ReferenceCountExt != 0) --SharedMemory->ReferenceCountExt;
    TRACE("OSFERROXTerminate", kInfo, "\n SharedMemory->ReferenceCountExt = %d",
          static_cast<int>(SharedMemory->ReferenceCountExt));
    bool removed = true;
    if (SharedMemory->ReferenceCountExt == 0 && DriverAutoLoaded == 0) {
        TRACE("OSFERROXTerminate", kInfo, "Removing the driver if driver is not auto loaded");
        if (StopDriver() != kSuccess) {
            TRACE("OSFERROXTerminate", kError, "OSFERROXTerminate: StopDriver failed");
            removed = false;
        } else if (RemoveDriver() != kSuccess) {
            TRACE("OSFERROXTerminate", kError, "OSFERROXTerminate: RemoveDriver failed");
            removed = false;
        }
    }
    ReleaseDriver();
    if (!removed) return kFailure;
    CloseSharedCount();
    return kSuccess;
}

status_t getHyperVStatus(uint8_t* enabled) {
    CPUIDRecord_t record = {};
    record.Eax = 1;
    const status_t status = OSReadCPUID(0, &record);
    if (status != kSuccess) {
        TRACE("getHyperVStatus", kError, "\n read CPUID failed ");
        return status;
    }
    *enabled = static_cast<uint8_t>(record.Ecx >> 31);
    return kSuccess;
}

// ---- The service

status_t checkDriverAutoLoaded() {
    const ClServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    if (manager.Get() == nullptr) return 0;
    const ClServiceHandle service(OpenServiceA(manager.Get(), kDriverName, SERVICE_ALL_ACCESS));
    if (service.Get() == nullptr) return 0;

    DWORD size = 0;
    if (QueryServiceConfigA(service.Get(), nullptr, 0, &size) || GetLastError() != ERROR_INSUFFICIENT_BUFFER) return 0;
    auto* config =
        static_cast<QUERY_SERVICE_CONFIGA*>(os_malloc(std::max(size_t{size}, sizeof(QUERY_SERVICE_CONFIGA))));
    if (config == nullptr) return 0;
    // The numbers of boot, system and automatic start are below that of demand start.
    const bool autoLoaded =
        QueryServiceConfigA(service.Get(), config, size, &size) && config->dwStartType <= SERVICE_AUTO_START;
    os_free(config);
    if (!autoLoaded) return 0;
    TRACE("checkDriverAutoLoaded", kInfo, "The driver is autoloaded");
    return kSuccess;
}

status_t RegisterDriver() {
    SetServiceName();
    if (!OpenServiceManager()) return 0;
    if (getFERROXinstallPath(DriverPath) != kSuccess) {
        CloseServiceManager();
        return 0;
    }
    const ClServiceHandle service(CreateServiceA(ServiceManagerHandle, ServiceName, ServiceName, SERVICE_ALL_ACCESS,
                                                 SERVICE_KERNEL_DRIVER, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                                                 DriverPath, "Extended Base", nullptr, nullptr, nullptr, nullptr));
    if (service.Get() != nullptr) {
        serviceCreated = true;
        return kSuccess;
    }
    if (GetLastError() == ERROR_SERVICE_EXISTS) {
        TRACE("RegisterDriver", kInfo, "RegisterDriver: Service already registered");
        return kSuccess;
    }
    CloseServiceManager();
    return 0;
}

// Starts `service` and locks its file. Returns 1 or 0. Sets `error` if the service wasn't started.
static status_t StartAndLock(SC_HANDLE service, DWORD* error) {
    if (!StartServiceA(service, 0, nullptr)) {
        *error = GetLastError();
        return 0;
    }
    serviceStarted = true;
    return lockInstallFile() == kSuccess ? kSuccess : 0;
}

status_t StartDriver() {
    DWORD error = ERROR_SUCCESS;
    {
        const ClServiceHandle service(OpenDriverService());
        if (service.Get() == nullptr) return 0;
        const status_t status = StartAndLock(service.Get(), &error);
        if (error == ERROR_SUCCESS) return status;
        if (error == ERROR_SERVICE_ALREADY_RUNNING || error == ERROR_ALREADY_EXISTS) {
            TRACE("StartDriver", kInfo, "StartDriver: Service already exsits/running.\n");
            return kSuccess;
        }
        if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) return 0;
        TRACE("StartDriver", kWarning, "StartDriver: StartService failed  trying stop + remove + register%u\n",
              static_cast<unsigned>(error));
    }
    // The service is left over from another installation, and its file is gone. Register it again.
    StopDriver();
    RemoveDriver();
    RegisterDriver();
    const ClServiceHandle service(OpenDriverService());
    return service.Get() == nullptr ? 0 : StartAndLock(service.Get(), &error);
}

static bool QueryState(SC_HANDLE service, SERVICE_STATUS_PROCESS* state) {
    DWORD needed = 0;
    return QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, reinterpret_cast<LPBYTE>(state), sizeof(*state),
                                &needed) != FALSE;
}

// Stops the service. Returns 1 or 0. `began` is the tick count at which kLongestStop starts.
static status_t StopOpenService(SC_HANDLE service, DWORD began) {
    SERVICE_STATUS_PROCESS state = {};
    if (!QueryState(service, &state)) return 0;
    if (state.dwCurrentState == SERVICE_STOPPED) {
        TRACE("StopDriver", kInfo, "StopDriver: Service is already stopped.\n");
        unlockInstallFile();
        return kSuccess;
    }
    while (state.dwCurrentState == SERVICE_STOP_PENDING) {
        TRACE("StopDriver", kInfo, "StopDriver: Service stop pending...\n");
        Sleep(std::clamp(state.dwWaitHint / 10, kShortestWait, kLongestWait));
        if (!QueryState(service, &state)) return 0;
        if (state.dwCurrentState == SERVICE_STOPPED) {
            TRACE("StopDriver", kInfo, "StopDriver: Service stopped.\n");
            unlockInstallFile();
            return kSuccess;
        }
        if (GetTickCount() - began > kLongestStop) return 0;
    }
    SERVICE_STATUS ignored = {};
    if (!ControlService(service, SERVICE_CONTROL_STOP, &ignored)) {
        TRACE("StopDriver", kError, "StopDriver: ControlService SERVICE_CONTROL_STOP failed %u\n",
              static_cast<unsigned>(GetLastError()));
        return 0;
    }
    // Drivers have stopped when ControlService returns.
    if (!QueryState(service, &state)) return 0;
    if (state.dwCurrentState != SERVICE_STOPPED) {
        TRACE("StopDriver", kError, "StopDriver: Service has not stopped \n");
        return 0;
    }
    if (unlockInstallFile() != kSuccess) {
        TRACE("StopDriver", kError, "StopDriver: Could not unlock file : Ravelink.sys \n");
        return 0;
    }
    return kSuccess;
}

status_t StopDriver() {
    const DWORD began = GetTickCount();
    if (!OpenServiceManager()) return 0;
    SetServiceName();
    status_t status = 0;
    {
        const ClServiceHandle service(OpenDriverService());
        if (service.Get() != nullptr) status = StopOpenService(service.Get(), began);
    }
    if (status != kSuccess) CloseServiceManager();
    return status;
}

status_t RemoveDriver() {
    if (ServiceManagerHandle == nullptr && !OpenServiceManager()) return 0;
    status_t status = 0;
    {
        const ClServiceHandle service(OpenDriverService());
        if (service.Get() != nullptr) status = DeleteService(service.Get()) ? kSuccess : 0;
    }
    CloseServiceManager();
    return status;
}

// ---- The driver's file

status_t lockInstallFile() {
    unlockInstallFile();
    InstallFileHandle =
        CreateFileA(DriverPath, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (InstallFileHandle == INVALID_HANDLE_VALUE) {
        TRACE("lockInstallFile", kError, "lockInstallFile: Error opening Ravelink.sys\n");
        return kFailure;
    }
    return kSuccess;
}

status_t unlockInstallFile() {
    if (InstallFileHandle == INVALID_HANDLE_VALUE) return kSuccess;
    if (!CloseHandle(InstallFileHandle)) {
        TRACE("unlockInstallFile", kError, "unlockInstallFile: Error closing Ravelink.sys\n");
        return kFailure;
    }
    InstallFileHandle = INVALID_HANDLE_VALUE;
    return kSuccess;
}

// Traces a failed registry call, and returns 5.
static status_t RegistryFailed(const char* call, LSTATUS result) {
    const DWORD error = GetLastError();
    TRACE("getFERROXinstallPath", kError, "getFERROXinstallPath: %s failed, last error %u\n", call,
          static_cast<unsigned>(error));
    TRACE("getFERROXinstallPath", kError, "getFERROXinstallPath: %s returned %ld\n", call, static_cast<long>(result));
    return kFailure;
}

status_t getFERROXinstallPath(char* path, REGSAM access) {
    HKEY key = nullptr;
    LSTATUS result = RegOpenKeyExA(HKEY_LOCAL_MACHINE, kRegistryKey, 0, access, &key);
    if (result != ERROR_SUCCESS) return RegistryFailed("RegOpenKeyEx", result);
    DWORD size = kDriverPathSize;
    result = RegQueryValueExA(key, kRegistryValue, nullptr, nullptr, reinterpret_cast<LPBYTE>(path), &size);
    if (result != ERROR_SUCCESS) {
        const status_t status = RegistryFailed("RegQueryValueEx", result);
        RegCloseKey(key);
        return status;
    }
    path[std::min<DWORD>(size, kDriverPathSize - 1)] = '\0';
    result = RegCloseKey(key);
    return result == ERROR_SUCCESS ? kSuccess : RegistryFailed("RegCloseKey", result);
}

// ---- A trial, after which the service is as it was before
//
// A service that exists is kept by one more open in the shared count, so that the library neither repairs nor removes
// it. Without a service the library itself registers, starts, stops and removes it.

static Trial_t trial;
static bool hasStarted = false;       // so EndTrial has to stop it
static HANDLE keptSection = nullptr;  // keeps the count while this process holds the service

const Trial_t& CurrentTrial() { return trial; }

ServiceState_t GetServiceState() {
    ServiceState_t answer;
    const ClServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT));
    const ClServiceHandle service(manager.Get() == nullptr ? nullptr
                                                           : OpenServiceA(manager.Get(), kDriverName,
                                                                          SERVICE_QUERY_STATUS | SERVICE_QUERY_CONFIG));
    SERVICE_STATUS_PROCESS state = {};
    // The texts of the record follow it.
    alignas(QUERY_SERVICE_CONFIGA) uint8_t config[8192];
    auto* const record = reinterpret_cast<QUERY_SERVICE_CONFIGA*>(config);
    DWORD size = 0;
    if (service.Get() == nullptr || !QueryState(service.Get(), &state) ||
        !QueryServiceConfigA(service.Get(), record, sizeof config, &size)) {
        answer.error = GetLastError();
        return answer;
    }
    answer.state = state.dwCurrentState;
    answer.startType = record->dwStartType;
    return answer;
}

// Runs `work` under the lock of the front, which other processes take to open and close the driver.
template <typename Work>
static bool UnderLock(Work work) {
    NamedLock_t* const lock = os_OpenNamedLock("FERROXLIB");
    if (lock == nullptr) return false;
    const bool isHeld = os_TakeNamedLock(lock), isDone = isHeld && work();
    if (isHeld) os_ReleaseNamedLock(lock);
    os_CloseNamedLock(lock);
    return isDone;
}

// Returns the system's error.
static DWORD StartExistingService() {
    const ClServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT));
    if (manager.Get() == nullptr) return GetLastError();
    const ClServiceHandle service(OpenServiceA(manager.Get(), kDriverName, SERVICE_START));
    return service.Get() != nullptr && StartServiceA(service.Get(), 0, nullptr) ? ERROR_SUCCESS : GetLastError();
}

static void CloseKeptSection() {
    if (keptSection != nullptr) CloseHandle(keptSection);
    keptSection = nullptr;
}

static bool KeepService(bool isRunning) {
    if (OpenSharedCount() != kSuccess) {
        trial.error = GetLastError();
        return false;
    }
    keptSection =
        CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(SharedMemory_t), kSectionName);
    trial.error = keptSection == nullptr ? GetLastError() : isRunning ? ERROR_SUCCESS : StartExistingService();
    if (trial.error != ERROR_SUCCESS) {
        CloseKeptSection();
        CloseSharedCount();
        return false;
    }
    hasStarted = !isRunning;
    ++SharedMemory->ReferenceCountExt;
    return true;
}

static bool GiveServiceBack() {
    if (OpenSharedCount() != kSuccess) return false;
    if (SharedMemory->ReferenceCountExt != 0) --SharedMemory->ReferenceCountExt;
    // Another process may use the driver meanwhile.
    const bool stops = hasStarted && SharedMemory->ReferenceCountExt == 0;
    CloseSharedCount();
    if (!stops) return true;
    const bool isStopped = StopDriver() == kSuccess;
    CloseServiceManager();
    return isStopped;
}

status_t BeginTrial(bool startsDriver) {
    trial = {};
    hasStarted = false;
    trial.isTried = startsDriver;
    if (!startsDriver) return kFailure;
    const ServiceState_t before = GetServiceState();
    const bool exists = before.error != ERROR_SERVICE_DOES_NOT_EXIST;
    if (exists && !UnderLock([&] { return KeepService(before.state == SERVICE_RUNNING); })) return kFailure;
    trial.status = FERROXInitialize();
    trial.error = startError;
    if (trial.status != kSuccess) EndFailedStart();
    return trial.status;
}

void EndTrial() {
    if (trial.status == kSuccess) FERROXTerminate();
    if (keptSection != nullptr) UnderLock(GiveServiceBack);
    CloseKeptSection();
    trial = {};
}

// ---- Requests

BOOL SendRequest(RequestCode_t code, void* record, uint32_t size, DWORD* returned) {
    *returned = 0;
    const BOOL sent = DeviceIoControl(DeviceHandle, code, record, size, record, size, returned, nullptr);
    if (!sent) NoteRefusal(Refusal_t::kOther);
    return sent;
}

status_t AskVersion(RequestCode_t code, const char* function, uint32_t* version) {
    DWORD returned = 0;
    const BOOL sent = DeviceIoControl(DeviceHandle, code, nullptr, 0, version, sizeof(*version), &returned, nullptr);
    if (!sent) {
        NoteRefusal(Refusal_t::kOther);
        TRACE(function, kError, "ERROR in %s ret =  %dBytes Returned = %ld", function, sent,
              static_cast<long>(returned));
        return kFailure;
    }
    return kSuccess;
}

status_t OSGetFERROXDriverVersion(uint32_t* version) {
    return AskVersion(kRequestDriverVersion, "OSGetFERROXDriverVersion", version);
}

// ---- This machine

const HardwareServices_t kThisHardware = {
    OSFERROXInitialize,
    OSFERROXTerminate,
    OSGetFERROXDriverVersion,
    OSGetPCILibVersion,
    OSGetIOLibVersion,
    OSGetCPULibVersion,
    OSPCIRead,
    OSPCIExRead,
    OSPCIMMIORead,
    OSPCIMMIOReadStored,
    OSMMIOReadGPIO,
    OSPCIMMIOWriteStored,
    OSMMIOWriteGPIO,
    OSGetSystemTables,
    OSPCIMMIOReadDynamic,
    OSPCIMMIOWriteDynamic,
    OSReadPort,
    OSWritePort,
    OSReadMSR,
    OSWriteMSR,
    OSReadCPUID,
    OSCalcNonTurbo,
    os_GetFirmwareTable,
    os_IsMemory,
    os_ListACPITables,
    os_ReadACPITable,
    nullptr,  // there is a BIOS area
    os_GetEntryAddresses,
};
