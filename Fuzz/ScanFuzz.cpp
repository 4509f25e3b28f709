// Reads a table from memory that holds any bytes, by the scan or at the address that firmware gave.
// Input: the byte that the BIOS area begins with (2 bytes), flags (1 byte), memory, which repeats the rest of the
// input. Flags: 1 reads of the upper half of the BIOS area fail; 2 all other memory belongs to devices; 4 the firmware
// gave the address of the BIOS area for both entry points.
#include <cstring>

#include "Fuzz/Decode.h"
#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/OS/OS.h"

namespace {

std::vector<uint8_t> memory;
uint32_t begin;
uint8_t flags;

status_t Succeed() { return kSuccess; }

constexpr uint64_t kBIOSArea = 0xF0000, kBIOSAreaEnd = 0x100000;

bool IsBIOSArea(uint64_t address, uint64_t size) { return address >= kBIOSArea && address + size <= kBIOSAreaEnd; }

bool IsMemory(uint64_t address, uint64_t size) { return (flags & 2) == 0 || IsBIOSArea(address, size); }

status_t Read(uint64_t address, uint32_t offset, DataBuffer_t* buffer) {
    const uint64_t place = address + offset;
    // Device registers must never be read.
    Require(IsBIOSArea(place, buffer->Size) || IsMemory(place, buffer->Size));
    if ((flags & 1) != 0 && place >= kBIOSArea + 0x8000) return kFailure;
    for (uint32_t at = 0; at < buffer->Size; at++)
        buffer->Data()[at] = memory[static_cast<size_t>((place + at - kBIOSArea + begin) % memory.size())];
    return kSuccess;
}

status_t GetAddresses(EntryAddresses_t* addresses, bool*) {
    *addresses = {kBIOSArea, kBIOSArea};
    return kSuccess;
}

status_t ReadNoCPUID(uint32_t, CPUIDRecord_t* record) {
    record->Eax = 0x506C0;
    record->Ecx = 0;
    return kSuccess;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const HardwareServices_t machine = [] {
        HardwareServices_t services = {};
        services.OSFERROXInitialize = services.OSFERROXTerminate = Succeed;
        services.OSGetSystemTables = Read;
        services.OSReadCPUID = ReadNoCPUID;
        services.IsMemory = IsMemory;
        services.GetEntryAddresses = GetAddresses;
        return services;
    }();
    ClInput input(data, size);
    begin = input.Take<uint16_t>();
    flags = input.Take<uint8_t>();
    memory = input.Rest();
    if (memory.empty()) return 0;
    UseHardware(machine);
    Require(SetMachine((flags & 4) != 0 ? ThisMachineByEfi() : ThisMachineByScan()) == kSuccess);
    auto* package = static_cast<Quorlin*>(CreateSmbiosPackage());
    if (package->BringUp() == kSuccess) ReadItems(*package, package->GetItemCount());
    package->UnInitialize();
    if (StoreIsUp()) Require(LibSMBIOSExit() == kSuccess);
    DestroySmbiosPackage(package);
    return 0;
}
