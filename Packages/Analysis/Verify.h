// What the firmware claims, held against what the hardware says. Only sources that don't come from the table count.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Packages/Format/Structures.h"
#include "Packages/Format/SystemFacts.h"

// What the hardware says. What couldn't be read is absent, so that nothing is held against it.
struct HardwareFacts_t {
    // CPUID leaf 1, EAX and EDX. On ARM64, MIDR and 0.
    struct Identity_t {
        uint32_t signature, features;
        bool operator==(const Identity_t&) const = default;
    };
    // All caches of one level, kind and size.
    struct Cache_t {
        uint32_t level;
        bool isInstruction;
        uint64_t size;  // of one
        uint64_t count;
    };
    struct Function_t {
        uint32_t segment;
        uint8_t bus, device, function;
        uint32_t classCode;  // class, subclass and interface: 020000h is an Ethernet controller
        uint8_t linkWidth;   // lanes that are in use; 0 if the function has no link, or none that could be read
    };
    struct Ipmi_t {
        uint8_t interface;  // as type 38 has it
        uint64_t address;
    };

    bool isVirtual = false;  // a hypervisor's liberties, such as its sockets, are no faults
    bool isArm64 = false;    // without CPUID
    std::string vendor;      // of the processor, such as "GenuineIntel"
    std::vector<Identity_t> identities;
    std::optional<uint64_t> packages, cores, threads;
    std::optional<uint64_t> enabled;  // threads, by the firmware
    std::optional<uint64_t> baseSpeed, maxSpeed;
    std::vector<Cache_t> caches;
    std::optional<uint64_t> memory;  // in bytes
    std::vector<MemoryArea_t> memoryMap;
    std::vector<uint32_t> segments;  // whose functions are known
    std::vector<Function_t> functions;
    std::optional<bool> isUefi;
    std::optional<uint64_t> tpm;  // major version; 0 for none
    std::optional<Ipmi_t> ipmi;
    std::vector<FirmwareResource_t> resources;
    std::vector<uint32_t> revisions;            // of the firmware's ACPI tables
    std::vector<std::string> networkAddresses;  // 12 digits in lower case each
    // Why there is nothing of these sources.
    std::string whyNoProcessors, whyNoCounts, whyNoCaches, whyNoTables, whyNoFunctions, whyNoMap;
};

enum class VerifyRule_t : uint8_t {
#define VERIFY(symbol, ...) symbol,
#include "Packages/Analysis/Verify.inc"
#undef VERIFY
};
inline constexpr VerifyRule_t kVerifyRules[] = {
#define VERIFY(symbol, ...) VerifyRule_t::symbol,
#include "Packages/Analysis/Verify.inc"
#undef VERIFY
};
struct VerifyRow_t {
    std::string_view id, claim, source, contradicts;
};
VerifyRow_t VerifyRowOf(VerifyRule_t rule);

enum class Verdict_t : uint8_t { kAgrees, kContradicts, kCantTell };
// "agrees", "contradicts" and "can't tell".
std::string_view VerdictWord(Verdict_t verdict);

// The texts live for the call that reports it.
struct Verification_t {
    VerifyRule_t rule;
    Verdict_t verdict;
    const TableStructure_t* structure;  // null if it is about several
    std::string_view key;               // of the fact; empty if it is about several
    uint32_t offset;                    // of its bytes in the table
    std::string_view claim;             // what the firmware says
    std::string_view hardware;          // what the hardware says; of kCantTell, why that says nothing
};

// The lanes of a code of a slot's data bus width; 0 for another bus.
uint32_t LanesOf(uint64_t width);

// Reports a verdict for each claim that the table makes.
void VerifyTable(std::span<const uint8_t> table, uint16_t version, const HardwareFacts_t& hardware,
                 const std::function<void(const Verification_t&)>& report);
