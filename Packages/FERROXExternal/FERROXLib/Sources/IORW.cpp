// Requests for ports and physical memory.
#include "Packages/FERROXExternal/FERROXLib/Sources/WinFERROX.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"

#define TRACE(function, level, ...) FERROX_TRACE("IORW", function, level, __VA_ARGS__)

status_t OSGetIOLibVersion(uint32_t* version) { return AskVersion(kRequestIOLibVersion, "OSGetIOLibVersion", version); }

// ---- Ports

// Fills the request, except for its data. Returns false if the buffer is larger than a port access.
static bool FillPortRequest(uint16_t port, const DataBuffer_t* buffer, PortRequest_t* request) {
    if (buffer->Size > sizeof(request->Data)) return false;
    *request = {};
    request->Cpu = kAnyProcessor;
    request->Port = port;
    request->Size = buffer->Size;
    return true;
}

static status_t SendPortRequest(RequestCode_t code, const char* function, PortRequest_t* request) {
    DWORD returned = 0;
    const BOOL sent = SendRequest(code, request, sizeof(*request), &returned);
    if (!sent) {
        TRACE(function, kError, "ERROR in %s ret = %dBytes Returned%ld", function, sent, static_cast<long>(returned));
    }
    return sent ? kSuccess : 0;
}

status_t OSReadPort(uint16_t port, DataBuffer_t* buffer) {
    PortRequest_t request;
    if (!FillPortRequest(port, buffer, &request)) return kBadValue;
    const status_t status = SendPortRequest(kRequestReadPort, "OSReadPort", &request);
    if (status == kSuccess) os_memcpy(buffer->Data(), buffer->Size, request.Data, buffer->Size);
    return status;
}

status_t OSWritePort(uint16_t port, DataBuffer_t* buffer) {
    PortRequest_t request;
    if (!FillPortRequest(port, buffer, &request)) return kBadValue;
    os_memcpy(request.Data, sizeof(request.Data), buffer->Data(), buffer->Size);
    return SendPortRequest(kRequestWritePort, "OSWritePort", &request);
}

// ---- Memory

static uint8_t* DataOf(MemoryRequest_t* request) { return reinterpret_cast<uint8_t*>(request + 1); }

// Returns a new request with zeroed data, and its size; null if out of memory or too large.
static MemoryRequest_t* NewMemoryRequest(const char* function, const MemoryPlace_t& place, uint32_t dataSize,
                                         uint32_t* size) {
    const size_t wanted = sizeof(MemoryRequest_t) + size_t{dataSize};
    auto* request = wanted > UINT32_MAX ? nullptr : static_cast<MemoryRequest_t*>(os_malloc(wanted));
    if (request == nullptr) {
        TRACE(function, kError, "ERROR in %s in os_malloc ", function);
        return nullptr;
    }
    os_memset(request, wanted, 0, wanted);
    request->Cpu = kAnyProcessor;
    request->Place = place;
    request->Size = dataSize;
    *size = static_cast<uint32_t>(wanted);
    return request;
}

static status_t SendMemoryRequest(RequestCode_t code, const char* function, MemoryRequest_t* request, uint32_t size) {
    DWORD returned = 0;
    const BOOL sent = SendRequest(code, request, size, &returned);
    if (!sent) {
        TRACE(function, kError, "ERROR in %s ret =  %dBytes Returned%ld", function, sent, static_cast<long>(returned));
    }
    return sent ? kSuccess : 0;
}

status_t ReadMemory(RequestCode_t code, const char* function, const MemoryPlace_t& place, DataBuffer_t* buffer) {
    uint32_t size = 0;
    MemoryRequest_t* request = NewMemoryRequest(function, place, buffer->Size, &size);
    if (request == nullptr) return kNoMemory;
    const status_t status = SendMemoryRequest(code, function, request, size);
    if (status == kSuccess) os_memcpy(buffer->Data(), buffer->Size, DataOf(request), buffer->Size);
    os_free(request);
    return status;
}

status_t WriteMemory(RequestCode_t code, const char* function, const MemoryPlace_t& place, const DataBuffer_t* buffer) {
    uint32_t size = 0;
    MemoryRequest_t* request = NewMemoryRequest(function, place, buffer->Size, &size);
    if (request == nullptr) return kNoMemory;
    os_memcpy(DataOf(request), buffer->Size, buffer->Data(), buffer->Size);
    const status_t status = SendMemoryRequest(code, function, request, size);
    os_free(request);
    return status;
}

status_t OSMMIOReadGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return ReadMemory(kRequestMMIOReadGPIO, "OSMMIOReadGPIO", {bar, offset}, buffer);
}

status_t OSMMIOWriteGPIO(uint64_t bar, uint32_t offset, DataBuffer_t* buffer) {
    return WriteMemory(kRequestMMIOWriteGPIO, "OSMMIOWriteGPIO", {bar, offset}, buffer);
}

// For this request the driver doesn't add Offset to Address.
status_t OSGetSystemTables(uint64_t address, uint32_t offset, DataBuffer_t* buffer) {
    return ReadMemory(kRequestSystemTables, "OSGetSystemTables", {address + offset, offset}, buffer);
}
