// Life cycle, versions, and the operations of this machine.
#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/LinuxFERROX.h"

#include <cerrno>
#include <cstring>

#include "Packages/OS/FirmwareTables.h"
#include "Packages/OS/MemoryMap.h"
#include "Packages/OS/Processors.h"

#define TRACE(function, level, ...) FERROX_TRACE("Linux\\LinuxFERROX", function, level, __VA_ARGS__)

static constexpr uint32_t kVersion = 0x00030000;  // result of all version requests; major in the high half

static bool isOpen = false;
static bool hasHypervisor = false;

status_t NeedsOpen() { return isOpen ? kSuccess : Refused("FERROXLib", "not initialized"); }

bool HasHypervisor() { return hasHypervisor; }

static status_t Refused(const char* function, const char* reason, Refusal_t refusal) {
    NoteRefusal(refusal);
    TRACE(function, kError, "ERROR in %s: %s", function, reason);
    return 0;
}

status_t Refused(const char* function, const char* reason) { return Refused(function, reason, Refusal_t::kOther); }

status_t Refused(const char* function) {
    const bool lacksRights = errno == EACCES || errno == EPERM;
    return Refused(function, std::strerror(errno), lacksRights ? Refusal_t::kRights : Refusal_t::kOther);
}

// The hypervisor test uses any processor, because a cpuset may not include processor 0.
static status_t Open() {
    uint32_t registers[4] = {1, 0, 0, 0};
    os_ReadCPUID(registers);
    hasHypervisor = registers[2] >> 31 != 0;
    isOpen = true;
    return kSuccess;
}

static status_t Close() {
    if (!isOpen) return kBadValue;
    isOpen = false;
    return kSuccess;
}

static status_t GetVersion(uint32_t* version) {
    if (NeedsOpen() != kSuccess) return kFailure;
    *version = kVersion;
    return kSuccess;
}

static bool CanScan() { return ArchitectureHas(Way_t::kScan); }

const HardwareServices_t kThisHardware = {
    Open,
    Close,
    GetVersion,
    GetVersion,
    GetVersion,
    GetVersion,
    OSPCIRead,
    OSPCIExRead,
    OSPCIMMIORead,
    OSPCIMMIOReadStored,
    OSPCIMMIOReadStored,  // GPIO
    OSPCIMMIOWriteStored,
    OSPCIMMIOWriteStored,  // GPIO
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
    CanScan,
    os_GetEntryAddresses,
};
