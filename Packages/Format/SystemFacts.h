// What the system knows of the hardware from other sources than the SMBIOS table.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct MemoryArea_t {
    uint64_t begin, end;  // the last address
    bool operator==(const MemoryArea_t&) const = default;
};

// A row of UEFI's system resource table, ESRT.
struct FirmwareResource_t {
    std::string id;  // a UUID in lower case
    uint32_t type, version;
    bool operator==(const FirmwareResource_t&) const = default;
};
inline constexpr uint32_t kSystemFirmware = 1;  // a type of FirmwareResource_t

// What isn't known is absent.
struct SystemFacts_t {
    std::optional<uint64_t> packages, cores, threads;  // that are there; cores and packages if all threads are online
    std::optional<uint64_t> baseSpeed, maxSpeed;       // of processor 0, in MHz
    std::optional<uint64_t> tpm;                       // major version; 0 if there is none
    std::optional<uint64_t> usableMemory;              // in bytes
    std::vector<uint32_t> midrs;                       // MIDR of the processors of ARM64, each value once
    std::vector<MemoryArea_t> memoryMap;               // of memory, in rising order
    std::vector<FirmwareResource_t> resources;
    std::vector<std::string> networkAddresses;  // that were built in, 12 digits in lower case each
    bool operator==(const SystemFacts_t&) const = default;
    bool IsArm64() const { return !midrs.empty(); }
};
