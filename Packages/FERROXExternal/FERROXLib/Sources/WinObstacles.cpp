// Why Windows refuses: the driver's registration, file and service, queried by the rights of any user.
#include "Packages/FERROXExternal/FERROXLib/Obstacles.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/WinFERROX.h"
#include "Packages/OS/FirmwareTables.h"

namespace {

constexpr DWORD kInvalidImageHash = 577;  // a name that not all headers have

std::string ErrorText(std::string_view what, DWORD error) {
    return std::string(what).append(": error ").append(std::to_string(error));
}

Finding_t WhyNoService() {
    const ServiceState_t service = GetServiceState();
    switch (service.error) {
        case ERROR_SUCCESS: break;
        case ERROR_SERVICE_DOES_NOT_EXIST: return {Obstacle_t::kNoService, ""};
        case ERROR_ACCESS_DENIED: return {Obstacle_t::kRights, ErrorText("OpenService", service.error)};
        default: return {Obstacle_t::kOther, ErrorText("OpenService", service.error)};
    }
    if (service.state == SERVICE_RUNNING) return {Obstacle_t::kNone, "running"};
    if (service.startType == SERVICE_DISABLED) return {Obstacle_t::kDisabled, ""};
    return {Obstacle_t::kStopped, service.state == SERVICE_STOPPED ? "" : "state " + std::to_string(service.state)};
}

// Why the driver didn't start, by the system's error.
Obstacle_t WhyNotStarted(DWORD error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND: return Obstacle_t::kNoDriverFile;
        case ERROR_ACCESS_DENIED: return Obstacle_t::kRights;
        case ERROR_SERVICE_DISABLED: return Obstacle_t::kDisabled;
        case kInvalidImageHash:
        case ERROR_DRIVER_BLOCKED: return Obstacle_t::kDriverRefused;
        default: return Obstacle_t::kDriverFails;
    }
}

Finding_t WhyNoDriver() {
    const Trial_t& trial = CurrentTrial();
    if (trial.isTried && trial.status == kSuccess) return {};
    char path[kDriverPathSize] = "";
    const bool isInstalled = getFERROXinstallPath(path, KEY_READ) == kSuccess;
    const ServiceState_t service = GetServiceState();
    if (!isInstalled && service.error == ERROR_SERVICE_DOES_NOT_EXIST) return {Obstacle_t::kNoDriver, ""};
    if (isInstalled) {
        const HANDLE file =
            CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        const DWORD error = GetLastError();
        if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
        if (file == INVALID_HANDLE_VALUE && (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND))
            return {Obstacle_t::kNoDriverFile, path};
    }
    if (!trial.isTried) return {Obstacle_t::kNotTried, path};
    return {trial.status == kFailure ? WhyNotStarted(trial.error) : Obstacle_t::kDriverFails,
            trial.status == kFailure ? ErrorText("its start", trial.error) : "it fails at the CPUID instruction"};
}

Finding_t WhyNoTable(uint32_t provider, Obstacle_t none) {
    bool isRefused = false;
    const bool isThere = provider == kACPIProvider ? !os_ListACPITables().empty()
                                                   : os_GetFirmwareTable(provider, 0, nullptr, 0, &isRefused) != 0;
    return {isThere ? Obstacle_t::kNone : isRefused ? Obstacle_t::kRights : none, ""};
}

}  // namespace

Finding_t FindObstacle(Way_t way, uint32_t) {
    switch (way) {
        case Way_t::kFirmwareTable: return WhyNoTable(kSMBIOSProvider, Obstacle_t::kNoSMBIOS);
        case Way_t::kACPI: return WhyNoTable(kACPIProvider, Obstacle_t::kNoACPI);
        case Way_t::kNewFiles:
        case Way_t::kByAddress:   // Windows doesn't show it
        case Way_t::kEntryPoint:  // Windows gives the table without it
        case Way_t::kRAM: return {Obstacle_t::kNotHere, ""};
        case Way_t::kService: return WhyNoService();
        case Way_t::kExtendedPCI:
            if (CurrentTrial().status == kSuccess && HyperVEnabled != 0) return {Obstacle_t::kHypervisor, ""};
            return WhyNoDriver();
        default: return WhyNoDriver();
    }
}
