// Requests for PCI configuration space and memory-mapped registers.
#include <algorithm>
#include <bit>

#include "Packages/FERROXExternal/FERROXLib/Sources/WinFERROX.h"
#include "Packages/OS/OS.h"

#define TRACE(function, level, ...) FERROX_TRACE("PCIRW", function, level, __VA_ARGS__)

status_t OSGetPCILibVersion(uint32_t* version) {
    return AskVersion(kRequestPCILibVersion, "OSGetPCILibVersion", version);
}

// ---- Configuration space

// The driver reads one aligned 32-bit word at a time.
status_t OSPCIRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer) {
    const RequestCode_t code = HyperVEnabled != 0 ? kRequestPCIReadHyperV : kRequestPCIRead;
    uint32_t alignment = offset < 256 ? offset % 4 : 0;
    uint32_t alignedOffset = offset - alignment;
    for (uint32_t delivered = 0; delivered < buffer->Size;) {
        PCIRequest_t request = {};
        request.Location = location;
        request.RegisterOffset = alignedOffset;
        request.Size = sizeof(request.Data);
        DWORD returned = 0;
        const BOOL sent = SendRequest(code, &request, sizeof(request), &returned);
        if (!sent) {
            TRACE("OSPCIRead", kError, "ERROR in OSPCIRead ret = %dBytes Returned%ld", sent,
                  static_cast<long>(returned));
            return 0;
        }
        const uint32_t wanted = buffer->Size - delivered;
        const uint32_t count = std::min<uint32_t>(wanted, sizeof(request.Data) - alignment);
        os_memcpy(buffer->Data() + delivered, wanted, request.Data + alignment, count);
        delivered += count;
        alignment = 0;
        alignedOffset += sizeof(request.Data);
    }
    return kSuccess;
}

static status_t ReadMappedSpace(uint64_t base, uint32_t location, uint32_t offset, DataBuffer_t* buffer) {
    const uint64_t address = (base & ~uint64_t{0xF}) + uint64_t{Bus(location)} * 1048576 +
                             uint64_t{Device(location)} * 32768 + uint64_t{Function(location)} * 4096;
    if (offset == 65535 || address == 0 || address == 65535) return kBadValue;
    return OSPCIMMIORead(address, offset, buffer);
}

status_t OSPCIExRead(uint32_t location, uint32_t offset, DataBuffer_t* buffer) {
    return ReadExtendedSpace(HyperVEnabled != 0, ReadMappedSpace, location, offset, buffer);
}

// ---- Memory-mapped registers

// For this request the driver doesn't add Offset to Address.
status_t OSPCIMMIORead(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return ReadMemory(kRequestMMIORead, "OSPCIMMIORead", {bar + offset, offset}, buffer);
}

status_t OSPCIMMIOReadStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return ReadMemory(kRequestMMIOReadStored, "OSPCIMMIOReadStored", {bar, offset}, buffer);
}

status_t OSPCIMMIOWriteStored(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return WriteMemory(kRequestMMIOWriteStored, "OSPCIMMIOWriteStored", {bar, offset}, buffer);
}

// The driver has no such request.
status_t OSPCIMMIOReadDynamic(const DynamicMMIORecord_t*, DataBuffer_t*) { return kSuccess; }

status_t OSPCIMMIOWriteDynamic(const DynamicMMIORecord_t* record, DataBuffer_t* buffer) {
    return WriteMemory(kRequestMMIOWriteDynamic, "OSPCIMMIOWriteDynamic", std::bit_cast<MemoryPlace_t>(*record),
                       buffer);
}
