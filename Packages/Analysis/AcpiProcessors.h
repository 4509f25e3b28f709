// What the firmware's ACPI tables say of the processors. Works on bytes that may be broken, in time linear in their
// size but for a logarithm.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "Packages/Analysis/Verify.h"

inline constexpr size_t kAcpiHead = 36;  // of every ACPI table

// The threads that the table MADT calls enabled.
struct EnabledProcessors_t {
    bool areListed = false;  // whether the table has any, enabled or not
    bool isArm64 = false;
    std::set<uint32_t> ids;  // of local APICs; on ARM64 ACPI's own numbers of the processors
};
EnabledProcessors_t ReadMadt(std::span<const uint8_t> madt);

// What the table PPTT says of some processors.
struct ProcessorTree_t {
    std::optional<uint64_t> packages, cores;
    std::vector<HardwareFacts_t::Cache_t> caches;
};
// `enabled` has ACPI's numbers of the processors. What the table doesn't tell clearly, and of all of them, is absent.
ProcessorTree_t ReadPptt(std::span<const uint8_t> pptt, const std::set<uint32_t>& enabled);
