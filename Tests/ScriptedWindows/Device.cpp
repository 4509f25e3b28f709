// Stand-ins: files, the device, processors and firmware tables. The device is a driver that answers from a pattern:
// configuration space reads as register offset, memory as address, a port as 90h and up.
#include <algorithm>
#include <cstring>

#include "Packages/FERROXExternal/FERROXLib/Sources/Protocol.h"
#include "StandIn.h"  // this platform's
#include "Tests/ScriptedWindows/ScriptedWindows.h"

namespace {

constexpr size_t kMemoryHead = sizeof(MemoryRequest_t);
constexpr size_t kFixedData = offsetof(PCIRequest_t, Data);
static_assert(kFixedData == offsetof(PortRequest_t, Data));

void Put32(uint8_t* bytes, uint32_t number) { std::memcpy(bytes, &number, sizeof number); }

// Bytes that count up from `first`.
void PutRising(uint8_t* bytes, uint64_t first) {
    for (uint64_t index = 0; index < 4; ++index) bytes[index] = static_cast<uint8_t>(first + index);
}

void AnswerMemory(const DeviceRequest_t& request, bool addOffset, uint8_t* out) {
    const uint64_t address = request.Number(8, 8) + (addOffset ? request.Number(16, 4) : 0);
    const size_t size = request.Number(20, 4);
    for (size_t index = 0; index < size && kMemoryHead + index < request.outSize; ++index) {
        const auto byte = Machine().memory.find(address + index);
        out[kMemoryHead + index] =
            byte == Machine().memory.end() ? static_cast<uint8_t>(address + index) : byte->second;
    }
}

void Answer(const DeviceRequest_t& request, uint8_t* out) {
    switch (request.code) {
        case kRequestReadCPUID:  // CPUID: the leaf comes back in EBX and the sub-leaf in EDX
            Put32(out + 24, static_cast<uint32_t>(request.Number(20, 4)));
            Put32(out + 32, static_cast<uint32_t>(request.Number(28, 4)));
            Put32(out + 20, 0x000306A9);
            Put32(out + 28, Machine().hypervisorECX);
            break;
        case kRequestDriverVersion:
        case kRequestCPULibVersion:
        case kRequestIOLibVersion:
        case kRequestPCILibVersion: Put32(out, 0x01000000 | (request.code & 0xFF)); break;
        case kRequestReadPort: PutRising(out + kFixedData, 0x90); break;
        case kRequestReadMSR:
            Put32(out + 12, 0x11223344);
            Put32(out + 16, 0x55667788);
            break;
        case kRequestPCIRead:
        case kRequestPCIReadHyperV: PutRising(out + kFixedData, request.Number(8, 4)); break;
        case kRequestNonTurbo: Put32(out + 12, 2400); break;
        case kRequestMMIORead:
        case kRequestSystemTables: AnswerMemory(request, false, out); break;
        case kRequestMMIOReadStored:
        case kRequestMMIOReadGPIO: AnswerMemory(request, true, out); break;
        default: break;  // writes
    }
}

}  // namespace

STAND_IN(HANDLE, CreateFileA,
         (LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
          HANDLE templateFile)) {
    if (auto* system = SystemFunction<decltype(CreateFileA)>("CreateFileA");
        system != nullptr && path[0] != '\\' && path != std::string(kDriverFile)) {
        return system(path, access, share, security, disposition, flags, templateFile);
    }
    if (!Machine().Call("CreateFileA")) return INVALID_HANDLE_VALUE;
    if (path == std::string("\\\\.\\Ravelink")) {
        if (access == (GENERIC_READ | GENERIC_WRITE) && share == 0 && disposition == OPEN_EXISTING &&
            Machine().service.state == SERVICE_RUNNING) {
            return Machine().Add("device");
        }
    } else if (access == GENERIC_READ && share == FILE_SHARE_READ && disposition == OPEN_EXISTING &&
               path == std::string(kDriverFile)) {
        return Machine().Add("file");
    }
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
}

STAND_IN(BOOL, DeviceIoControl,
         (HANDLE device, DWORD code, LPVOID in, DWORD inSize, LPVOID out, DWORD outSize, LPDWORD returned,
          LPOVERLAPPED)) {
    if (!Machine().Call("DeviceIoControl")) return FALSE;
    if (!Machine().IsOpen(device, "device")) return Fail(ERROR_INVALID_HANDLE);
    const auto* bytes = static_cast<const uint8_t*>(in);
    DeviceRequest_t request = {code, {}, outSize};
    if (inSize != 0) request.in.assign(bytes, bytes + inSize);
    Machine().requests.push_back(request);
    Answer(request, static_cast<uint8_t*>(out));
    *returned = outSize;
    return TRUE;
}

STAND_IN(DWORD, GetActiveProcessorCount, (WORD group)) {
    return Machine().Call("GetActiveProcessorCount") && group == 65535 ? Machine().processors : 0;
}

STAND_IN(UINT, GetSystemFirmwareTable, (DWORD provider, DWORD table, PVOID buffer, DWORD size)) {
    if (!Machine().Call("GetSystemFirmwareTable", ERROR_FILE_NOT_FOUND)) return 0;
    std::string name(reinterpret_cast<const char*>(&table), 4);
    if (provider == 0x52534D42) name = "RSMB";
    const auto found = Machine().tables.find(name);
    if (found == Machine().tables.end()) return Fail(ERROR_FILE_NOT_FOUND), 0;
    auto needed = static_cast<UINT>(found->second.size());
    if (!Machine().tableAnswers.empty()) {
        needed = Machine().tableAnswers.front();
        Machine().tableAnswers.pop_front();
    }
    if (buffer != nullptr && size >= needed) {
        std::memcpy(buffer, found->second.data(), std::min<size_t>(needed, found->second.size()));
    }
    return needed;
}

STAND_IN(UINT, EnumSystemFirmwareTables, (DWORD provider, PVOID buffer, DWORD size)) {
    if (provider != 0x41435049) return 0;
    std::vector<uint8_t> names;
    for (const auto& [name, table] : Machine().tables)
        if (name != "RSMB") names.insert(names.end(), name.begin(), name.end());
    if (buffer != nullptr && size >= names.size()) std::memcpy(buffer, names.data(), names.size());
    return static_cast<UINT>(names.size());
}
