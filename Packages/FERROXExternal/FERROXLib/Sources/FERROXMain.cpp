// The front of the hardware library: counts its users, checks arguments and calls the machine in use.
#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/FERROXInternal.h"
#include "Packages/OS/NamedLock.h"

#define TRACE(function, level, ...) FERROX_TRACE("FERROXMain", function, level, __VA_ARGS__)

DebugHandle_t ferroxTraceHandle = nullptr;

namespace {

constexpr char kLockName[] = "FERROXLIB";
constexpr LibVersion_t kVersion = {"03", "00", "0", "1000"};
constexpr uint32_t kNoOffset = 65535;

uint32_t instanceCount = 0;
// Held while the library is open, so that the lock exists while any process has it open.
NamedLock_t* lockReference = nullptr;
const HardwareServices_t* hardware = &kThisHardware;
thread_local Refusal_t lastRefusal = Refusal_t::kOther;

// Holds the library's lock during its lifetime. Each call opens the lock itself, so that no other thread can close the
// lock that it waits for.
class ClLibraryLock {
  public:
    ClLibraryLock() : m_lock(os_OpenNamedLock(kLockName)), m_held(m_lock != nullptr && os_TakeNamedLock(m_lock)) {}
    ~ClLibraryLock() {
        if (m_held) os_ReleaseNamedLock(m_lock);
        if (m_lock != nullptr) os_CloseNamedLock(m_lock);
    }
    ClLibraryLock(const ClLibraryLock&) = delete;
    ClLibraryLock& operator=(const ClLibraryLock&) = delete;

    bool Held() const { return m_held; }

  private:
    NamedLock_t* m_lock;
    bool m_held;
};

// Calls the operation in `slot` of the machine in use.
template <class... Arguments_t, class... Values_t>
status_t Ask(status_t (*HardwareServices_t::*slot)(Arguments_t...), Values_t... values) {
    const auto operation = hardware->*slot;
    return operation == nullptr ? kNotSupported : operation(values...);
}

// Traces the entry and exit of an operation.
class ClOperation {
  public:
    explicit ClOperation(const char* name) : m_name(name) { TRACE(m_name, kEntry, "%s", m_name); }
    ~ClOperation() { TRACE(m_name, kExit, "%s", m_name); }
    ClOperation(const ClOperation&) = delete;
    ClOperation& operator=(const ClOperation&) = delete;

  private:
    const char* m_name;
};

void CloseTraceHandle() {
    if (ferroxTraceHandle != nullptr) DebugLibExit(ferroxTraceHandle);
    ferroxTraceHandle = nullptr;
}

status_t OpenLibrary() {
    if (DebugLibInit("FERROX", &ferroxTraceHandle) != kSuccess) ferroxTraceHandle = nullptr;
    lockReference = os_OpenNamedLock(kLockName);
    return lockReference == nullptr ? kFailure : Ask(&HardwareServices_t::OSFERROXInitialize);
}

// Undoes OpenLibrary, except for the machine.
void CloseLibrary() {
    if (lockReference != nullptr) os_CloseNamedLock(lockReference);
    lockReference = nullptr;
    CloseTraceHandle();
}

}  // namespace

const HardwareServices_t& CurrentHardware() { return *hardware; }

bool HasBIOSArea() { return hardware->HasBIOSArea == nullptr || hardware->HasBIOSArea(); }

void UseHardware(const HardwareServices_t& other) { hardware = &other; }

bool HardwareIsOpen() { return instanceCount != 0; }

Refusal_t LastRefusal() { return lastRefusal; }

void NoteRefusal(Refusal_t refusal) { lastRefusal = refusal; }

status_t FERROXInitialize() {
    NoteRefusal(Refusal_t::kOther);
    const ClLibraryLock lock;
    if (!lock.Held()) return kFailure;
    const status_t status = instanceCount == 0 ? OpenLibrary() : kSuccess;
    if (status == kSuccess) ++instanceCount;
    TRACE("FERROXInitialize", kExit, "FERROXInitialize %s", status == kSuccess ? "Success" : "Failure");
    if (instanceCount == 0) CloseLibrary();
    return status;
}

status_t FERROXTerminate() {
    const ClLibraryLock lock;
    if (!lock.Held() || instanceCount == 0) return kFailure;
    --instanceCount;
    if (instanceCount != 0) return kSuccess;
    const status_t status = Ask(&HardwareServices_t::OSFERROXTerminate);
    CloseLibrary();
    return status;
}

void EndFailedStart() {
    const ClLibraryLock lock;
    if (lock.Held() && instanceCount == 0) Ask(&HardwareServices_t::OSFERROXTerminate);
}

// ---- Versions

status_t GetFERROXLibVersion(LibVersion_t* version) {
    const ClOperation operation("GetFERROXLibVersion");
    if (version == nullptr) return kNullPointer;
    *version = kVersion;
    TRACE("GetFERROXLibVersion", kParams, "GetFERROXLibVersion:Major = %s Minor = %s Revision = %s Build = %s",
          version->Major, version->Minor, version->Revision, version->Build);
    return kSuccess;
}

static status_t DriverVersion(const char* name, status_t (*HardwareServices_t::*slot)(uint32_t*), uint32_t* version) {
    const ClOperation operation(name);
    if (version == nullptr) return kNullPointer;
    const status_t status = Ask(slot, version);
    TRACE(name, kParams, "%s:Version = 0x%x status = %u", name, status == kSuccess ? *version : 0, status);
    return status;
}

status_t GetFERROXDriverVersion(uint32_t* version) {
    return DriverVersion("GetFERROXDriverVersion", &HardwareServices_t::OSGetFERROXDriverVersion, version);
}

status_t GetPCILibVersion(uint32_t* version) {
    return DriverVersion("GetPCILibVersion", &HardwareServices_t::OSGetPCILibVersion, version);
}

status_t GetIOLibVersion(uint32_t* version) {
    return DriverVersion("GetIOLibVersion", &HardwareServices_t::OSGetIOLibVersion, version);
}

status_t GetCPULibVersion(uint32_t* version) {
    return DriverVersion("GetCPULibVersion", &HardwareServices_t::OSGetCPULibVersion, version);
}

// ---- PCI configuration space

static status_t ReadConfiguration(const char* name,
                                  status_t (*HardwareServices_t::*slot)(uint32_t, uint32_t, DataBuffer_t*),
                                  uint32_t bound, uint32_t location, uint32_t offset, DataBuffer_t* buffer) {
    const ClOperation operation(name);
    if (buffer == nullptr) return kNullPointer;
    TRACE(name, kParams, "%s:RegisterOffset = %u size  = %u", name, offset, buffer->Size);
    if (offset == kNoOffset || uint64_t{offset} + buffer->Size > bound) return kBadValue;
    return Ask(slot, location, offset, buffer);
}

status_t PCIRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer) {
    return ReadConfiguration("PCIRead", &HardwareServices_t::OSPCIRead, 256, location, offset, buffer);
}

status_t PCIExRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer) {
    return ReadConfiguration("PCIExRead", &HardwareServices_t::OSPCIExRead, 4096, location, offset, buffer);
}

// ---- Memory by address and offset

enum BadPlaceLine_t { kSilent, kTraced };

static status_t MoveAtPlace(const char* name, BadPlaceLine_t line,
                            status_t (*HardwareServices_t::*slot)(uint64_t, uint32_t, DataBuffer_t*), uint64_t address,
                            uint32_t offset, DataBuffer_t* buffer) {
    const ClOperation operation(name);
    if (buffer == nullptr) return kNullPointer;
    TRACE(name, kParams, "%s:BAR = 0x%llx RegisterOffset = %u size  = %u", name,
          static_cast<unsigned long long>(address), offset, buffer->Size);
    if (offset == kNoOffset || address == 0 || address == 65535) {
        if (line == kTraced) TRACE(name, kError, "%s: Invalid register offset status = %u\n", name, kBadValue);
        return kBadValue;
    }
    if (buffer->Size == 0) return kBadValue;
    return Ask(slot, address, offset, buffer);
}

status_t PCIMMIORead(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return MoveAtPlace("PCIMMIORead", kTraced, &HardwareServices_t::OSPCIMMIORead, bar, offset, buffer);
}

status_t PCIMMIOReadStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return MoveAtPlace("PCIMMIOReadStored", kTraced, &HardwareServices_t::OSPCIMMIOReadStored, bar, offset, buffer);
}

status_t MMIOReadGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return MoveAtPlace("MMIOReadGPIO", kTraced, &HardwareServices_t::OSMMIOReadGPIO, bar, offset, buffer);
}

status_t PCIMMIOWriteStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return MoveAtPlace("PCIMMIOWriteStored", kSilent, &HardwareServices_t::OSPCIMMIOWriteStored, bar, offset, buffer);
}

status_t MMIOWriteGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return MoveAtPlace("MMIOWriteGPIO", kSilent, &HardwareServices_t::OSMMIOWriteGPIO, bar, offset, buffer);
}

status_t GetSystemTables(uint64_t address, uint32_t offset, DataBuffer_t* buffer) {
    return MoveAtPlace("GetSystemTables", kTraced, &HardwareServices_t::OSGetSystemTables, address, offset, buffer);
}

static status_t MoveDynamic(const char* name,
                            status_t (*HardwareServices_t::*slot)(const DynamicMMIORecord_t*, DataBuffer_t*),
                            const DynamicMMIORecord_t* record, DataBuffer_t* buffer) {
    const ClOperation operation(name);
    if (record == nullptr || buffer == nullptr) return kNullPointer;
    const DynamicMMIORecord_t own = *record;
    TRACE(name, kParams, "%s:PCIRegisterOffset = %u MMIOOffset = %u size  = %u", name, own.PCIRegisterOffset,
          own.MMIOOffset, buffer->Size);
    if (own.PCIRegisterOffset == kNoOffset) {
        TRACE(name, kError, "%s: Invalid register offset status = %u\n", name, kBadValue);
        return kBadValue;
    }
    if (buffer->Size == 0) return kBadValue;
    return Ask(slot, &own, buffer);
}

status_t PCIMMIOReadDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer) {
    return MoveDynamic("PCIMMIOReadDynamic", &HardwareServices_t::OSPCIMMIOReadDynamic, record, buffer);
}

status_t PCIMMIOWriteDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer) {
    return MoveDynamic("PCIMMIOWriteDynamic", &HardwareServices_t::OSPCIMMIOWriteDynamic, record, buffer);
}

// ---- Ports

static status_t MovePort(const char* name, status_t (*HardwareServices_t::*slot)(uint16_t, DataBuffer_t*),
                         uint16_t port, DataBuffer_t* buffer) {
    const ClOperation operation(name);
    if (buffer == nullptr) return kNullPointer;
    TRACE(name, kParams, "%s:Port = %u size  = %u", name, port, buffer->Size);
    if (port == 255) return kBadValue;
    return Ask(slot, port, buffer);
}

status_t ReadWakeupTimer(uint16_t port, DataBuffer_t* buffer) {
    return MovePort("ReadWakeupTimer", &HardwareServices_t::OSReadPort, port, buffer);
}

status_t ConfigureWakeUpTimer(uint16_t port, DataBuffer_t* buffer) {
    return MovePort("ConfigureWakeUpTimer", &HardwareServices_t::OSWritePort, port, buffer);
}

// ---- Registers of a processor

static status_t MoveMSR(const char* name, status_t (*HardwareServices_t::*slot)(MSRRecord_t*), MSRRecord_t* record) {
    const ClOperation operation(name);
    if (record == nullptr) return kNullPointer;
    TRACE(name, kParams, "%s:Cpu = %u Msr = 0x%x", name, record->Cpu, record->Msr);
    if (record->Msr == 0 || record->Msr == 65535) return kBadValue;
    return Ask(slot, record);
}

status_t ReadMSR(MSRRecord_t* record) { return MoveMSR("ReadMSR", &HardwareServices_t::OSReadMSR, record); }

status_t WriteMSR(MSRRecord_t* record) { return MoveMSR("WriteMSR", &HardwareServices_t::OSWriteMSR, record); }

status_t ReadCPUID(uint32_t processor, CPUIDRecord_t* record) {
    const ClOperation operation("ReadCPUID");
    if (record == nullptr) return kNullPointer;
    TRACE("ReadCPUID", kParams, "ReadCPUID:Cpu = %u Eax = 0x%x Ecx = 0x%x", processor, record->Eax, record->Ecx);
    return Ask(&HardwareServices_t::OSReadCPUID, processor, record);
}

status_t CalcFreqNonTurbo(NonTurboRecord_t* record) {
    const ClOperation operation("CalcFreqNonTurbo");
    if (record == nullptr) return kNullPointer;
    TRACE("CalcFreqNonTurbo", kParams, "CalcFreqNonTurbo:Core = %u Msr = 0x%x PMTimerAddress = 0x%x", record->Core,
          record->Msr, record->PMTimerAddress);
    return Ask(&HardwareServices_t::OSCalcNonTurbo, record);
}

// ---- ACPI tables and PCI segments

status_t GetACPITable(const char* name, DataBuffer_t** table) {
    if (name == nullptr || table == nullptr) return kNullPointer;
    const ClOperation operation("GetACPITable");
    TRACE("GetACPITable", kParams, "GetACPITable:Name = %s", name);
    return OSGetACPITable(name, table);
}

status_t GetACPITableEx(const char* name, DataBuffer_t* buffer, uint32_t* size) {
    if (name == nullptr || size == nullptr) return kNullPointer;
    const ClOperation operation("GetACPITableEx");
    TRACE("GetACPITableEx", kParams, "GetACPITableEx:Name = %s size  = %u", name, buffer == nullptr ? 0 : buffer->Size);
    return OSGetACPITableEx(name, buffer, size);
}

status_t GetPCIExCfgBaseAddr(uint64_t* base, uint32_t location) {
    const ClOperation operation("GetPCIExCfgBaseAddr");
    if (base == nullptr) return kNullPointer;
    TRACE("GetPCIExCfgBaseAddr", kParams, "GetPCIExCfgBaseAddr:Location = 0x%x", location);
    if (location >> 16 >= kMaxSegments) return kBadValue;
    return OSGetPCIExCfgBaseAddr(base, location);
}

status_t GetSegBusInfo(SegBusInfo_t* segments) {
    const ClOperation operation("GetSegBusInfo");
    TRACE("GetSegBusInfo", kParams, "GetSegBusInfo:Segments = %p", static_cast<void*>(segments));
    return OSGetSegBusInfo(segments);
}
