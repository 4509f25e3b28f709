// Physical memory, by mapping /dev/mem.
#include <fcntl.h>
#include <sys/mman.h>

#include <cerrno>
#include <cstring>

#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/LinuxFERROX.h"
#include "Packages/OS/Linux/Descriptor.h"
#include "Packages/OS/Memory.h"

namespace {

constexpr uint64_t kMostMemory = 1ull << 52;  // limit of physical addresses of all processors
constexpr uint64_t kPage = 4096;

// Copies in the widest steps, up to 4 bytes, for which the device's address is aligned. The width of an access matters
// to device registers, and none may be accessed twice or outside the range.
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

// Tables are in ordinary memory, which the kernel has mapped with caches; it refuses a second mapping without caches.
// Registers are mapped without caches, unless the kernel refuses that.
enum class Memory_t { kTables, kRegisters };

// Maps the memory, because read() of /dev/mem doesn't reach all of it. Returns false, with errno set, on failure.
bool MoveMapped(Direction_t direction, Memory_t kind, uint64_t address, uint8_t* data, uint32_t size) {
    const bool isRead = direction == Direction_t::kRead;
    const int sync = kind == Memory_t::kRegisters ? O_SYNC : 0;
    const ClDescriptor file("/dev/mem", (isRead ? O_RDONLY : O_RDWR) | sync);
    if (!file.IsOpen()) return false;
    const uint64_t inPage = address % kPage;
    const size_t length = inPage + size;
    void* view = mmap(nullptr, length, isRead ? PROT_READ : PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(),
                      static_cast<off_t>(address - inPage));
    if (view == MAP_FAILED)
        return errno == EINVAL && sync != 0 && MoveMapped(direction, Memory_t::kTables, address, data, size);
    MoveSteps(direction, reinterpret_cast<uintptr_t>(view) + inPage, data, size);
    munmap(view, length);
    return true;
}

// For memory-mapped configuration space that the kernel refuses to map: accesses the same registers through sysfs.
// Returns false, without changing errno, if [address, address + size) isn't in the space of one segment.
bool MoveMappedConfiguration(Direction_t direction, uint64_t address, uint8_t* data, uint32_t size) {
    const int refusal = errno;
    DataBuffer_t* mcfg = nullptr;
    SegBusInfo_t segments[kMaxSegments];
    const bool hasTable = OSGetACPITable("MCFG", &mcfg) == kSuccess;
    const uint32_t count = hasTable ? FillSegments(mcfg->Data(), mcfg->Size, segments) : 0;
    if (hasTable) os_free(mcfg);
    errno = refusal;
    for (uint32_t index = 0; index < count; ++index) {
        const SegBusInfo_t& segment = segments[index];
        const uint64_t first = segment.BaseAddress + (uint64_t{segment.StartBus} << 20),
                       end = segment.BaseAddress + ((segment.EndBus + 1ull) << 20);
        if (address < first || address >= end || size > end - address) continue;
        while (size != 0) {
            const uint64_t within = address - segment.BaseAddress;
            const auto bus = static_cast<uint32_t>(within >> 20), device = static_cast<uint32_t>(within >> 15 & 0x1F),
                       function = static_cast<uint32_t>(within >> 12 & 7),
                       offset = static_cast<uint32_t>(within % kPage);
            const uint32_t piece = size < kPage - offset ? size : static_cast<uint32_t>(kPage - offset);
            const uint32_t location = segment.Segment << 16 | function << 13 | device << 8 | bus;
            if (!MoveConfiguration(direction, location, offset, data, piece)) return false;
            address += piece;
            data += piece;
            size -= piece;
        }
        return true;
    }
    return false;
}

status_t Move(const char* function, Direction_t direction, Memory_t kind, uint64_t address, uint32_t offset,
              DataBuffer_t* buffer) {
    if (NeedsOpen() != kSuccess) return 0;
    const uint32_t size = buffer->Size;
    if (address >= kMostMemory || address + offset + size > kMostMemory)
        return Refused(function, "address out of range");
    uint8_t* data = buffer->Data();
    const bool isMoved = MoveMapped(direction, kind, address + offset, data, size) ||
                         MoveMappedConfiguration(direction, address + offset, data, size);
    return isMoved ? kSuccess : Refused(function);
}

}  // namespace

status_t OSGetSystemTables(uint64_t address, uint32_t offset, DataBuffer_t* buffer) {
    return Move("OSGetSystemTables", Direction_t::kRead, Memory_t::kTables, address, offset, buffer);
}

status_t OSPCIMMIORead(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return Move("OSPCIMMIORead", Direction_t::kRead, Memory_t::kRegisters, bar, offset, buffer);
}

status_t OSPCIMMIOReadStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return Move("OSPCIMMIOReadStored", Direction_t::kRead, Memory_t::kRegisters, bar, offset, buffer);
}

status_t OSPCIMMIOWriteStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return Move("OSPCIMMIOWriteStored", Direction_t::kWrite, Memory_t::kRegisters, bar, offset, buffer);
}

// Does nothing, as on Windows.
status_t OSPCIMMIOReadDynamic(const DynamicMMIORecord_t*, DataBuffer_t*) { return kSuccess; }

// Takes the base from a 32-bit or 64-bit memory base address register of the PCI function at Device.
status_t OSPCIMMIOWriteDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer) {
    constexpr char kName[] = "OSPCIMMIOWriteDynamic";
    if (NeedsOpen() != kSuccess) return 0;
    const uint32_t place = record->PCIRegisterOffset;
    uint32_t low = 0, high = 0;
    const auto read = [&](uint32_t offset, uint32_t* word) {
        errno = EINVAL;
        return offset % 4 == 0 && offset < 256 &&
               MoveConfiguration(Direction_t::kRead, record->Device, offset, reinterpret_cast<uint8_t*>(word), 4);
    };
    if (!read(place, &low)) return Refused(kName);
    const bool isPort = (low & 1) != 0, isWide = (low & 6) == 4;
    if (isWide && !read(place + 4, &high)) return Refused(kName);
    const uint64_t base = uint64_t{high} << 32 | (low & ~0xFu);
    if (isPort || base == 0) return Refused(kName, "no memory base address register");
    return Move(kName, Direction_t::kWrite, Memory_t::kRegisters, base, record->MMIOOffset, buffer);
}
