#include "Packages/Platform/Linux/Device.h"

#include <cpuid.h>
#include <fcntl.h>
#include <strings.h>
#include <sys/io.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>
#include <vector>

#include "Packages/Platform/Linux/Descriptor.h"
#include "Packages/Platform/Linux/Processors.h"
#include "Packages/Platform/Linux/Services.h"

namespace {

constexpr uint32_t kVersion = 0x00030000;     // what all version requests answer: major in the high half, minor below
constexpr uint32_t kAnyProcessor = 256;       // the processor number that means no particular one
constexpr uint64_t kMostMemory = 1ull << 52;  // physical addresses end here on every x86-64 processor
constexpr uint64_t kPage = 4096;

// The requests' records. A memory request is followed by Size bytes of data.
struct VersionRequest_t {
    uint32_t Version;
};
struct PortRequest_t {
    uint32_t Reserved, Cpu, Port, Size, Data;
};
struct PCIRequest_t {
    uint32_t Reserved, Location, RegisterOffset, Size, Data;
};
struct MSRRequest_t {
    uint32_t Reserved, Cpu, Msr, HiContent, LoContent;
};
struct CPUIDRequest_t {
    uint32_t Reserved, Cpu, Reserved8, Reserved12;
    uint32_t RecordReserved, Eax, Ebx, Ecx, Edx;
    uint32_t Reserved36[5];
};
struct NonTurboRequest_t {
    uint32_t Core, Msr, PMTimerAddress;
    uint32_t PerSecondLow, PerSecondHigh;
};
struct MemoryRequest_t {
    uint32_t Reserved, Cpu;
    uint64_t Address;
    uint32_t Offset, Size;
};
struct DynamicRequest_t {
    uint32_t Reserved, Cpu;
    uint32_t Location, PCIRegisterOffset, MMIOOffset, Size;
};
static_assert(sizeof(PortRequest_t) == 20 && sizeof(PCIRequest_t) == 20 && sizeof(MSRRequest_t) == 20);
static_assert(sizeof(CPUIDRequest_t) == 56 && sizeof(NonTurboRequest_t) == 20);
static_assert(sizeof(MemoryRequest_t) == 24 && sizeof(DynamicRequest_t) == 24);

enum class Direction_t { kRead, kWrite };

// ---- processors

// Keeps the calling thread on one processor, and gives it back those that it had.
class ClPin {
  public:
    BOOL To(uint32_t logical) {
        if (logical == kAnyProcessor) return TRUE;
        ClProcessorSet one;
        if (!one.Add(SystemProcessor(logical))) return Fail(ERROR_INVALID_PARAMETER);
        if (!m_before.ReadFromThread() || !one.ApplyToThread()) return FailWithErrno();
        m_isPinned = true;
        return TRUE;
    }
    ~ClPin() {
        if (m_isPinned) m_before.ApplyToThread();
    }

  private:
    ClProcessorSet m_before;
    bool m_isPinned = false;
};

// For a processor that this process may not run on.
BOOL ReadCPUIDFile(CPUIDRequest_t& request) {
    const int processor = SystemProcessor(request.Cpu);
    if (processor < 0) return Fail(ERROR_INVALID_PARAMETER);
    char path[40];
    std::snprintf(path, sizeof path, "/dev/cpu/%d/cpuid", processor);
    const ClDescriptor file(open(path, O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen()) return FailWithErrno();
    uint32_t registers[4];
    const auto place = static_cast<off_t>(uint64_t{request.Ecx} << 32 | request.Eax);
    const ssize_t got = pread(file.Get(), registers, sizeof registers, place);
    if (got != sizeof registers) return got < 0 ? FailWithErrno() : Fail(ERROR_GEN_FAILURE);
    std::memcpy(&request.Eax, registers, sizeof registers);
    return TRUE;
}

BOOL ReadCPUIDOn(CPUIDRequest_t& request) {
    ClPin pin;
    if (!pin.To(request.Cpu)) return GetLastError() == ERROR_INVALID_PARAMETER ? ReadCPUIDFile(request) : FALSE;
    const uint32_t leaf = request.Eax, subLeaf = request.Ecx;
    __cpuid_count(leaf, subLeaf, request.Eax, request.Ebx, request.Ecx, request.Edx);
    return TRUE;
}

BOOL MoveMSR(Direction_t direction, uint32_t cpu, uint32_t msr, uint64_t* value) {
    const int processor = cpu == kAnyProcessor ? sched_getcpu() : SystemProcessor(cpu);
    if (processor < 0) return Fail(ERROR_INVALID_PARAMETER);
    char path[40];
    std::snprintf(path, sizeof path, "/dev/cpu/%d/msr", processor);
    const ClDescriptor file(open(path, (direction == Direction_t::kRead ? O_RDONLY : O_WRONLY) | O_CLOEXEC));
    if (!file.IsOpen()) return FailWithErrno();
    const ssize_t moved = direction == Direction_t::kRead ? pread(file.Get(), value, sizeof *value, msr)
                                                          : pwrite(file.Get(), value, sizeof *value, msr);
    return moved == sizeof *value ? TRUE : moved < 0 ? FailWithErrno() : Fail(ERROR_GEN_FAILURE);
}

BOOL ReadMSROn(MSRRequest_t& request) {
    uint64_t value = 0;
    if (!MoveMSR(Direction_t::kRead, request.Cpu, request.Msr, &value)) return FALSE;
    request.HiContent = static_cast<uint32_t>(value >> 32);
    request.LoContent = static_cast<uint32_t>(value);
    return TRUE;
}

BOOL WriteMSROn(MSRRequest_t& request) {
    uint64_t value = static_cast<uint64_t>(request.HiContent) << 32 | request.LoContent;
    return MoveMSR(Direction_t::kWrite, request.Cpu, request.Msr, &value);
}

// ---- ports

// Opens a range of ports to the calling thread, and shuts it again.
class ClPorts {
  public:
    BOOL Open(uint32_t port, uint32_t size) {
        if (port + uint64_t{size} > 0x10000) return Fail(ERROR_INVALID_PARAMETER);
        if (ioperm(port, size, 1) != 0) return FailWithErrno();
        m_port = port;
        m_size = size;
        return TRUE;
    }
    ~ClPorts() {
        if (m_size != 0) ioperm(m_port, m_size, 0);
    }

  private:
    uint32_t m_port = 0, m_size = 0;
};

BOOL MovePort(Direction_t direction, PortRequest_t& request) {
    if (request.Size != 1 && request.Size != 2 && request.Size != 4) return Fail(ERROR_INVALID_PARAMETER);
    ClPorts ports;
    if (!ports.Open(request.Port, request.Size)) return FALSE;
    const auto port = static_cast<uint16_t>(request.Port);
    if (direction == Direction_t::kRead) {
        request.Data = request.Size == 1 ? inb(port) : request.Size == 2 ? inw(port) : inl(port);
    } else {
        if (request.Size == 1) outb(static_cast<uint8_t>(request.Data), port);
        if (request.Size == 2) outw(static_cast<uint16_t>(request.Data), port);
        if (request.Size == 4) outl(request.Data, port);
    }
    return TRUE;
}

BOOL ReadPort(PortRequest_t& request) { return MovePort(Direction_t::kRead, request); }
BOOL WritePort(PortRequest_t& request) { return MovePort(Direction_t::kWrite, request); }

// How often the counter in an MSR counts in a second, measured for 10 ms against the ACPI power-management timer, whose
// 24 bits count 3,579,545 times a second. For IA32_MPERF this is the frequency without turbo.
BOOL MeasureNonTurbo(NonTurboRequest_t& request) {
    constexpr uint64_t kTimerPerSecond = 3'579'545, kEnough = kTimerPerSecond / 100;
    if (request.PMTimerAddress == 0) return Fail(ERROR_INVALID_PARAMETER);
    ClPorts ports;
    if (!ports.Open(request.PMTimerAddress, 4)) return FALSE;
    const auto port = static_cast<uint16_t>(request.PMTimerAddress);
    uint64_t countBefore = 0, countAfter = 0;
    if (!MoveMSR(Direction_t::kRead, request.Core, request.Msr, &countBefore)) return FALSE;
    const uint32_t timeBefore = inl(port);
    uint32_t ticks = 0;
    for (int tries = 0; ticks < kEnough; ++tries) {
        if (tries == 100) return Fail(ERROR_GEN_FAILURE);  // no such timer there
        usleep(1000);
        ticks = (inl(port) - timeBefore) & 0xFFFFFF;
    }
    if (!MoveMSR(Direction_t::kRead, request.Core, request.Msr, &countAfter)) return FALSE;
    const auto perSecond =
        static_cast<uint64_t>(static_cast<double>(countAfter - countBefore) * kTimerPerSecond / ticks);
    request.PerSecondLow = static_cast<uint32_t>(perSecond);
    request.PerSecondHigh = static_cast<uint32_t>(perSecond >> 32);
    return TRUE;
}

// ---- PCI configuration space

// Moves registers of the function at `location` (bits 0-7 bus, 8-12 device, 13-15 function, from 16 segment). As on
// the bus, what isn't there reads as ones and takes no writes.
BOOL MoveConfiguration(Direction_t direction, uint32_t location, uint32_t offset, uint8_t* data, uint32_t size) {
    char path[64];
    std::snprintf(path, sizeof path, "/sys/bus/pci/devices/%04x:%02x:%02x.%x/config", location >> 16, location & 0xFF,
                  location >> 8 & 0x1F, location >> 13 & 7);
    const ClDescriptor file(open(path, (direction == Direction_t::kRead ? O_RDONLY : O_WRONLY) | O_CLOEXEC));
    struct stat facts = {};
    if (file.IsOpen() ? fstat(file.Get(), &facts) != 0 : errno != ENOENT || access("/sys/bus/pci/devices", F_OK) != 0)
        return FailWithErrno();
    while (size != 0) {
        ssize_t moved = size;
        if (static_cast<off_t>(offset) < facts.st_size) {
            moved = direction == Direction_t::kRead ? pread(file.Get(), data, size, offset)
                                                    : pwrite(file.Get(), data, size, offset);
            if (moved < 0) return FailWithErrno();
            if (moved == 0) return Fail(ERROR_ACCESS_DENIED);  // the rest is for the privileged
        } else if (direction == Direction_t::kRead) {
            std::memset(data, 0xFF, size);
        }
        data += moved;
        offset += static_cast<uint32_t>(moved);
        size -= static_cast<uint32_t>(moved);
    }
    return TRUE;
}

BOOL ReadPCI(PCIRequest_t& request) {
    if (request.Size != 4 || request.RegisterOffset % 4 != 0 || request.RegisterOffset >= 256)
        return Fail(ERROR_INVALID_PARAMETER);
    uint8_t data[4];
    if (!MoveConfiguration(Direction_t::kRead, request.Location, request.RegisterOffset, data, sizeof data))
        return FALSE;
    std::memcpy(&request.Data, data, sizeof data);
    return TRUE;
}

// The registers behind memory-mapped addresses: the same moved through sysfs where [address, address + size) lies in
// a segment's configuration space; nothing where it doesn't.
std::optional<BOOL> MoveMappedConfiguration(Direction_t direction, uint64_t address, uint8_t* data, uint32_t size) {
    constexpr DWORD kACPI = 0x41435049, kMCFG = 0x4746434D;  // names by their letters
    constexpr size_t kHeader = 44, kEntry = 16;
    std::vector<uint8_t> table(GetSystemFirmwareTable(kACPI, kMCFG, nullptr, 0));
    const auto got = GetSystemFirmwareTable(kACPI, kMCFG, table.data(), static_cast<DWORD>(table.size()));
    if (got != table.size()) return std::nullopt;
    for (size_t at = kHeader; at + kEntry <= table.size(); at += kEntry) {
        uint64_t base;
        uint16_t segment;
        std::memcpy(&base, &table[at], sizeof base);
        std::memcpy(&segment, &table[at + 8], sizeof segment);
        const uint64_t first = base + (uint64_t{table[at + 10]} << 20), end = base + ((table[at + 11] + 1ull) << 20);
        if (address < first || address >= end || size > end - address) continue;
        while (size != 0) {
            const uint64_t within = address - base;
            const auto bus = static_cast<uint32_t>(within >> 20), device = static_cast<uint32_t>(within >> 15 & 0x1F),
                       function = static_cast<uint32_t>(within >> 12 & 7),
                       offset = static_cast<uint32_t>(within % kPage);
            const uint32_t piece = size < kPage - offset ? size : static_cast<uint32_t>(kPage - offset);
            const uint32_t location = static_cast<uint32_t>(segment) << 16 | function << 13 | device << 8 | bus;
            if (!MoveConfiguration(direction, location, offset, data, piece)) return FALSE;
            address += piece;
            data += piece;
            size -= piece;
        }
        return TRUE;
    }
    return std::nullopt;
}

// ---- memory

// Copies in the widest steps up to 4 bytes that the device's side is aligned for: device registers are sensitive to
// the width of an access, and must not be touched beyond the range or twice.
template <typename Step>
void InSteps(uintptr_t device, uint8_t* data, uint32_t size, Step step) {
    while (size != 0) {
        const uint32_t width = device % 4 == 0 && size >= 4 ? 4 : device % 2 == 0 && size >= 2 ? 2 : 1;
        step(device, data, width);
        device += width;
        data += width;
        size -= width;
    }
}

template <typename Unit>
void ReadUnit(uintptr_t device, uint8_t* data) {
    const Unit unit = *reinterpret_cast<const volatile Unit*>(device);
    std::memcpy(data, &unit, sizeof unit);
}

template <typename Unit>
void WriteUnit(uintptr_t device, const uint8_t* data) {
    Unit unit;
    std::memcpy(&unit, data, sizeof unit);
    *reinterpret_cast<volatile Unit*>(device) = unit;
}

void MoveSteps(Direction_t direction, uintptr_t device, uint8_t* data, uint32_t size) {
    if (direction == Direction_t::kRead)
        InSteps(device, data, size, [](uintptr_t from, uint8_t* to, uint32_t width) {
            (width == 4 ? ReadUnit<uint32_t> : width == 2 ? ReadUnit<uint16_t> : ReadUnit<uint8_t>)(from, to);
        });
    else
        InSteps(device, data, size, [](uintptr_t to, uint8_t* from, uint32_t width) {
            (width == 4 ? WriteUnit<uint32_t> : width == 2 ? WriteUnit<uint16_t> : WriteUnit<uint8_t>)(to, from);
        });
}

// Tables lie in ordinary memory, which the kernel itself has mapped with its caches; a second mapping without them is
// refused. Registers are wanted without caches, unless the kernel has it otherwise.
enum class Memory_t { kTables, kRegisters };

// By mapping: read() of /dev/mem doesn't reach all that mapping does.
BOOL MoveMapped(Direction_t direction, Memory_t kind, uint64_t address, uint8_t* data, uint32_t size) {
    const bool isRead = direction == Direction_t::kRead;
    const int sync = kind == Memory_t::kRegisters ? O_SYNC : 0;
    const ClDescriptor file(open("/dev/mem", (isRead ? O_RDONLY : O_RDWR) | sync | O_CLOEXEC));
    if (!file.IsOpen()) return FailWithErrno();
    const uint64_t inPage = address % kPage;
    const size_t length = inPage + size;
    void* view = mmap(nullptr, length, isRead ? PROT_READ : PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(),
                      static_cast<off_t>(address - inPage));
    if (view == MAP_FAILED)
        return errno == EINVAL && sync != 0 ? MoveMapped(direction, Memory_t::kTables, address, data, size)
                                            : FailWithErrno();
    MoveSteps(direction, reinterpret_cast<uintptr_t>(view) + inPage, data, size);
    munmap(view, length);
    return TRUE;
}

BOOL MoveMemory(Direction_t direction, Memory_t kind, uint64_t address, uint32_t offset, uint8_t* data, uint32_t size) {
    if (address >= kMostMemory || address + offset + size > kMostMemory) return Fail(ERROR_INVALID_PARAMETER);
    if (size == 0 || MoveMapped(direction, kind, address + offset, data, size)) return TRUE;
    const DWORD refusal = GetLastError();
    const std::optional<BOOL> moved = MoveMappedConfiguration(direction, address + offset, data, size);
    return moved.has_value() ? *moved : Fail(refusal);
}

// Of these two the address alone counts: it has the offset in it.
BOOL ReadTables(MemoryRequest_t& request, uint8_t* data) {
    return MoveMemory(Direction_t::kRead, Memory_t::kTables, request.Address, 0, data, request.Size);
}
BOOL ReadRegisters(MemoryRequest_t& request, uint8_t* data) {
    return MoveMemory(Direction_t::kRead, Memory_t::kRegisters, request.Address, 0, data, request.Size);
}
BOOL ReadStored(MemoryRequest_t& request, uint8_t* data) {
    return MoveMemory(Direction_t::kRead, Memory_t::kRegisters, request.Address, request.Offset, data, request.Size);
}
BOOL WriteStored(MemoryRequest_t& request, uint8_t* data) {
    return MoveMemory(Direction_t::kWrite, Memory_t::kRegisters, request.Address, request.Offset, data, request.Size);
}

// The base comes from a base address register of the PCI function at Location: a memory one, of 32 or 64 bits.
BOOL WriteDynamic(DynamicRequest_t& request, uint8_t* data) {
    uint64_t base = 0;
    PCIRequest_t low = {0, request.Location, request.PCIRegisterOffset, 4, 0}, high = low;
    if (!ReadPCI(low)) return FALSE;
    const bool isPort = (low.Data & 1) != 0, isWide = (low.Data & 6) == 4;
    high.RegisterOffset += 4;
    if (isWide && !ReadPCI(high)) return FALSE;
    base = (isWide ? static_cast<uint64_t>(high.Data) << 32 : 0) | (low.Data & ~0xFu);
    if (isPort || base == 0) return Fail(ERROR_INVALID_PARAMETER);
    return MoveMemory(Direction_t::kWrite, Memory_t::kRegisters, base, request.MMIOOffset, data, request.Size);
}

BOOL AnswerVersion(VersionRequest_t& request) {
    request.Version = kVersion;
    return TRUE;
}

// ---- the table of requests

// Serves the request in `buffer` in place. The buffer has the size that the request's row names, and for a memory
// request also room for its data.
using Serve_t = BOOL (*)(uint8_t* buffer);

template <typename Record, BOOL (*kServe)(Record&)>
BOOL Fixed(uint8_t* buffer) {
    Record record;
    std::memcpy(&record, buffer, sizeof record);
    if (!kServe(record)) return FALSE;
    std::memcpy(buffer, &record, sizeof record);
    return TRUE;
}

template <typename Record, BOOL (*kServe)(Record&, uint8_t*)>
BOOL WithData(uint8_t* buffer) {
    Record record;
    std::memcpy(&record, buffer, sizeof record);
    return kServe(record, buffer + sizeof record);
}

struct Request_t {
    DWORD code;
    uint32_t inSize;
    uint32_t outSize;
    bool hasData;  // then the record's Size, at offset 20, tells how many bytes follow it in both directions
    Serve_t serve;
};

constexpr Request_t kRequests[] = {
    {0x80240000, 56, 56, false, Fixed<CPUIDRequest_t,      ReadCPUIDOn>    },
    {0x80240004, 0,  4,  false, Fixed<VersionRequest_t,    AnswerVersion>  }, // driver
    {0x80240034, 20, 20, false, Fixed<PortRequest_t,       ReadPort>       },
    {0x80240040, 20, 20, false, Fixed<MSRRequest_t,        ReadMSROn>      },
    {0x80240048, 20, 20, false, Fixed<PCIRequest_t,        ReadPCI>        },
    {0x80240090, 0,  4,  false, Fixed<VersionRequest_t,    AnswerVersion>  }, // CPU library
    {0x80240094, 0,  4,  false, Fixed<VersionRequest_t,    AnswerVersion>  }, // I/O library
    {0x80240098, 0,  4,  false, Fixed<VersionRequest_t,    AnswerVersion>  }, // PCI library
    {0x8024009C, 20, 20, false, Fixed<NonTurboRequest_t,   MeasureNonTurbo>},
    {0x802400F4, 20, 20, false, Fixed<PCIRequest_t,        ReadPCI>        }, // under a hypervisor
    {0x802400FC, 24, 24, true,  WithData<MemoryRequest_t,  ReadStored>     },
    {0x80240104, 24, 24, true,  WithData<MemoryRequest_t,  ReadStored>     }, // GPIO
    {0x80240108, 24, 24, true,  WithData<MemoryRequest_t,  WriteStored>    },
    {0x8024010C, 24, 24, true,  WithData<DynamicRequest_t, WriteDynamic>   },
    {0x80240110, 24, 24, true,  WithData<MemoryRequest_t,  WriteStored>    }, // GPIO
    {0x80240114, 24, 24, true,  WithData<MemoryRequest_t,  ReadRegisters>  },
    {0x80240118, 24, 24, true,  WithData<MemoryRequest_t,  ReadTables>     }, // system tables
    {0x80244074, 20, 20, false, Fixed<PortRequest_t,       WritePort>      },
    {0x80244080, 20, 20, false, Fixed<MSRRequest_t,        WriteMSROn>     },
};

const Request_t* FindRequest(DWORD code) {
    for (const Request_t& request : kRequests)
        if (request.code == code) return &request;
    return nullptr;
}

// A code tells in its bits 14 and 15 what the device must have been opened for.
bool IsAllowed(DWORD code, DWORD access) {
    return ((code & 0x4000) == 0 || (access & GENERIC_READ) != 0) &&
           ((code & 0x8000) == 0 || (access & GENERIC_WRITE) != 0);
}

class ClDevice : public ClObject {
  public:
    explicit ClDevice(DWORD wanted) : access(wanted) {}
    const DWORD access;
};

}  // namespace

bool IsDevicePath(const char* path) { return strcasecmp(path, "\\\\.\\Ravelink") == 0; }

HANDLE OpenDevice(DWORD access) {
    if (!IsServiceRunning("Ravelink")) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    auto* device = new (std::nothrow) ClDevice(access);
    if (device == nullptr) SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return device == nullptr ? INVALID_HANDLE_VALUE : device;
}

// Works on a copy of the input, which becomes the output when the request is done: a failed request leaves the
// caller's memory alone, and input and output may be the same.
BOOL DeviceIoControl(HANDLE handle, DWORD code, LPVOID in, DWORD inSize, LPVOID out, DWORD outSize, LPDWORD returned,
                     LPOVERLAPPED overlapped) try {
    const ClDevice* device = ObjectOf<ClDevice>(handle);
    if (device == nullptr) return FALSE;
    if (returned == nullptr || overlapped != nullptr) return Fail(ERROR_INVALID_PARAMETER);
    const Request_t* request = FindRequest(code);
    if (request == nullptr) return Fail(ERROR_INVALID_FUNCTION);
    if (!IsAllowed(code, device->access)) return Fail(ERROR_ACCESS_DENIED);
    if (inSize < request->inSize || outSize < request->outSize) return Fail(ERROR_INSUFFICIENT_BUFFER);
    if ((in == nullptr && (request->inSize != 0 || request->hasData)) || out == nullptr) return Fail(ERROR_NOACCESS);
    uint32_t dataSize = 0;
    if (request->hasData) {
        std::memcpy(&dataSize, static_cast<const uint8_t*>(in) + offsetof(MemoryRequest_t, Size), sizeof dataSize);
        if (dataSize > inSize - request->inSize || dataSize > outSize - request->outSize)
            return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    std::vector<uint8_t> buffer(request->outSize + size_t{dataSize});
    if (request->inSize != 0) std::memcpy(buffer.data(), in, buffer.size());
    // The size that was checked, whatever another thread has put there since.
    if (request->hasData) std::memcpy(&buffer[offsetof(MemoryRequest_t, Size)], &dataSize, sizeof dataSize);
    if (!request->serve(buffer.data())) return FALSE;
    std::memcpy(out, buffer.data(), buffer.size());
    *returned = static_cast<DWORD>(buffer.size());
    return TRUE;
} catch (const std::bad_alloc&) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
}
