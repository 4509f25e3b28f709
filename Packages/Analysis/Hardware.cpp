#include "Packages/Analysis/Hardware.h"

#include <algorithm>
#include <bit>
#include <set>
#include <tuple>

#include "Packages/Analysis/AcpiProcessors.h"
#include "Packages/Format/LittleEndian.h"

namespace {

const CpuidLeaf_t* Find(const CpuidLeaves_t& leaves, uint32_t leaf, uint32_t subleaf = 0) {
    const auto found = std::ranges::find_if(
        leaves, [&](const CpuidLeaf_t& each) { return each.leaf == leaf && each.subleaf == subleaf; });
    return found == leaves.end() ? nullptr : &*found;
}

const AcpiTable_t* Find(std::span<const AcpiTable_t> tables, std::string_view name) {
    const auto found = std::ranges::find(tables, name, &AcpiTable_t::name);
    return found == tables.end() ? nullptr : &*found;
}

// The number by which the system knows a processor's place.
uint32_t ApicIdOf(const CpuidLeaves_t& leaves) {
    if (const CpuidLeaf_t* topology = Find(leaves, 0xB); topology != nullptr && topology->ebx != 0)
        return topology->edx;
    const CpuidLeaf_t* first = Find(leaves, 1);
    return first == nullptr ? 0 : first->ebx >> 24;
}

// Counts cores and packages by the levels of the topology: the first one is of threads, the last one of cores.
void CountProcessors(std::span<const CpuidLeaves_t> processors, HardwareFacts_t* facts) {
    constexpr uint32_t kTopology = 0xB;
    const CpuidLeaf_t *threads = Find(processors[0], kTopology, 0), *cores = Find(processors[0], kTopology, 1);
    if (threads == nullptr || cores == nullptr || threads->ebx == 0 || cores->ebx == 0) return;
    std::set<uint32_t> ofCores, ofPackages;
    for (const CpuidLeaves_t& leaves : processors) {
        const uint32_t id = ApicIdOf(leaves);
        ofCores.insert(id >> (threads->eax & 31));
        ofPackages.insert(id >> (cores->eax & 31));
    }
    facts->cores = ofCores.size();
    facts->packages = ofPackages.size();
}

// A cache that processors share counts once. Processors of one machine may have different caches.
void AddCaches(std::span<const CpuidLeaves_t> processors, HardwareFacts_t* facts) {
    constexpr uint32_t kIntelCaches = 4, kAmdCaches = 0x8000001D, kMost = 8, kKind = 31, kInstruction = 2;
    std::set<std::tuple<uint32_t, uint32_t, uint32_t>> seen;  // level, kind, and the place of the processors
    for (const CpuidLeaves_t& leaves : processors) {
        for (uint32_t subleaf = 0; subleaf < kMost; subleaf++) {
            const CpuidLeaf_t* row = Find(leaves, kIntelCaches, subleaf);
            if (row == nullptr || (row->eax & kKind) == 0) row = Find(leaves, kAmdCaches, subleaf);
            if (row == nullptr || (row->eax & kKind) == 0) break;
            const uint32_t kind = row->eax & kKind, level = row->eax >> 5 & 7;
            const auto shift = std::bit_width(row->eax >> 14 & 0xFFFu);
            if (!seen.insert({level, kind, ApicIdOf(leaves) >> shift}).second) continue;
            const uint64_t ways = (row->ebx >> 22) + 1, partitions = (row->ebx >> 12 & 0x3FF) + 1,
                           line = (row->ebx & 0xFFF) + 1, size = ways * partitions * line * (uint64_t{row->ecx} + 1);
            const bool isInstruction = kind == kInstruction;
            const auto known = std::ranges::find_if(facts->caches, [&](const HardwareFacts_t::Cache_t& each) {
                return each.level == level && each.isInstruction == isInstruction && each.size == size;
            });
            if (known != facts->caches.end())
                known->count++;
            else
                facts->caches.push_back({level, isInstruction, size, 1});
        }
    }
}

void AddProcessors(std::span<const CpuidLeaves_t> processors, HardwareFacts_t* facts) {
    for (const CpuidLeaves_t& leaves : processors) {
        const CpuidLeaf_t* const row = Find(leaves, 1);
        if (row == nullptr) continue;
        facts->isVirtual |= row->ecx >> 31 != 0;
        if (const HardwareFacts_t::Identity_t identity = {row->eax, row->edx};
            std::ranges::find(facts->identities, identity) == facts->identities.end())
            facts->identities.push_back(identity);
    }
    if (processors.empty()) return;
    if (const CpuidLeaf_t* row = Find(processors[0], 0))
        for (const uint32_t part : {row->ebx, row->edx, row->ecx})
            facts->vendor.append(reinterpret_cast<const char*>(&part), sizeof part);
    if (const CpuidLeaf_t* row = Find(processors[0], 0x16); row != nullptr && (row->eax & 0xFFFF) != 0) {
        facts->baseSpeed = row->eax & 0xFFFF;
        facts->maxSpeed = row->ebx & 0xFFFF;
    }
}

// Tables that were left out say nothing by their absence.
void AddTables(std::span<const AcpiTable_t> tables, const std::vector<std::string>& leftOut, HardwareFacts_t* facts) {
    if (tables.empty()) return;
    constexpr size_t kRevision = 24, kSpmiSize = 52 + 8;
    const auto isLeftOut = [&leftOut](const char* name) { return std::ranges::find(leftOut, name) != leftOut.end(); };
    if (Find(tables, "TPM2") != nullptr)
        facts->tpm = 2;
    else if (Find(tables, "TCPA") != nullptr)
        facts->tpm = 1;
    else if (!isLeftOut("TPM2") && !isLeftOut("TCPA"))
        facts->tpm = 0;
    if (const AcpiTable_t* spmi = Find(tables, "SPMI"); spmi != nullptr && spmi->bytes.size() >= kSpmiSize) {
        const uint8_t interface = spmi->bytes[36];
        if (const auto address = NumberAt<uint64_t>(spmi->bytes, 52); interface != 0 && address != 0)
            facts->ipmi = {interface, address};
    }
    for (const char* name : {"FACP", "DSDT"})
        if (const AcpiTable_t* table = Find(tables, name); table != nullptr && table->bytes.size() >= kAcpiHead)
            if (const auto revision = NumberAt<uint32_t>(table->bytes, kRevision); revision != 0)
                facts->revisions.push_back(revision);
}

// The lanes in use, from the capability of PCI Express; 0 if the function has none.
uint8_t LinkWidthOf(std::span<const uint8_t> bytes) {
    constexpr size_t kFirstPointer = 0x34, kLinkStatus = 0x12, kMost = 48;
    constexpr uint8_t kPciExpress = 0x10;
    size_t place = NumberAt<uint8_t>(bytes, kFirstPointer) & 0xFC;
    for (size_t count = 0; count < kMost && place >= 0x40 && place + kLinkStatus + 2 <= bytes.size(); count++) {
        if (bytes[place] == kPciExpress) return NumberAt<uint16_t>(bytes, place + kLinkStatus) >> 4 & 0x3F;
        place = bytes[place + 1] & 0xFC;
    }
    return 0;
}

// Why something wasn't read, by the first word of what it was.
std::string WhyUnread(const MachineFacts_t& machine, std::string_view what) {
    for (const Unread_t& each : machine.unread)
        if (each.what.starts_with(what)) return each.why;
    return {};
}

// MIDR identifies the processors of ARM64, and the ACPI table PPTT has their places and caches. The system takes its
// counts of packages and cores from there too, and guesses them without the table, so its own aren't used.
void AddArm64(const MachineFacts_t& machine, std::span<const AcpiTable_t> tables, const std::set<uint32_t>& enabled,
              HardwareFacts_t* facts) {
    constexpr size_t kHypervisor = 268;  // its vendor, in FADT
    facts->isArm64 = true;
    for (const uint32_t midr : machine.known.midrs) facts->identities.push_back({midr, 0});
    facts->whyNoProcessors = "this architecture has no CPUID";
    const AcpiTable_t* const pptt = Find(tables, "PPTT");
    ProcessorTree_t tree = pptt == nullptr ? ProcessorTree_t() : ReadPptt(pptt->bytes, enabled);
    facts->packages = tree.packages;
    facts->cores = tree.cores;
    facts->caches = std::move(tree.caches);
    facts->whyNoCounts = pptt != nullptr  ? "PPTT doesn't tell it clearly"
                         : tables.empty() ? facts->whyNoTables
                                          : WhyUnread(machine, "ACPI table PPTT");
    if (facts->whyNoCounts.empty()) facts->whyNoCounts = "the machine has no PPTT";
    facts->whyNoCaches = facts->whyNoCounts;
    if (const AcpiTable_t* fadt = Find(tables, "FACP"))
        facts->isVirtual = NumberAt<uint64_t>(fadt->bytes, kHypervisor) != 0;
}

}  // namespace

HardwareFacts_t HardwareFactsOf(const MachineFacts_t& machine, std::span<const CpuidLeaves_t> processors,
                                std::span<const AcpiTable_t> tables, std::span<const PciFunction_t> functions) {
    HardwareFacts_t facts;
    const SystemFacts_t& known = machine.known;
    AddProcessors(processors, &facts);
    facts.threads = known.threads;
    // Those that are offline can't be asked.
    const size_t count = processors.size();
    if (count != 0 && count == machine.processors && count == known.threads.value_or(count)) {
        CountProcessors(processors, &facts);
        AddCaches(processors, &facts);
    }
    if (known.packages && known.cores) {
        facts.packages = known.packages;
        facts.cores = known.cores;
    }
    if (!facts.baseSpeed) {
        facts.baseSpeed = known.baseSpeed;
        facts.maxSpeed = known.maxSpeed;
    }
    AddTables(tables, machine.leftOut, &facts);
    facts.whyNoProcessors = facts.whyNoCaches = WhyUnread(machine, "CPUID");
    if (tables.empty()) {
        facts.whyNoTables = WhyUnread(machine, "ACPI");
        if (facts.whyNoTables.empty()) facts.whyNoTables = "the system gives no ACPI tables";
    }
    const AcpiTable_t* const madt = Find(tables, "APIC");
    const EnabledProcessors_t enabled = madt == nullptr ? EnabledProcessors_t() : ReadMadt(madt->bytes);
    if (enabled.areListed) facts.enabled = enabled.ids.size();
    if (processors.empty() && (enabled.isArm64 || known.IsArm64())) AddArm64(machine, tables, enabled.ids, &facts);
    if (known.tpm) facts.tpm = known.tpm;
    facts.memory = known.usableMemory;
    facts.memoryMap = known.memoryMap;
    uint64_t all = 0;
    for (const MemoryArea_t& area : known.memoryMap) all += area.end - area.begin + 1;
    if (all != 0) facts.memory = all;
    if (!machine.firmware.empty()) facts.isUefi = machine.firmware == "UEFI";
    facts.resources = known.resources;
    facts.networkAddresses = known.networkAddresses;
    facts.segments = machine.segments;
    for (const PciFunction_t& each : functions)
        facts.functions.push_back({each.location >> 16, static_cast<uint8_t>(each.location),
                                   static_cast<uint8_t>(each.location >> 8 & 31),
                                   static_cast<uint8_t>(each.location >> 13 & 7),
                                   NumberAt<uint32_t>(each.bytes, 8) >> 8, LinkWidthOf(each.bytes)});
    facts.whyNoMap = WhyUnread(machine, "memory map");
    facts.whyNoFunctions = WhyUnread(machine, "PCI");
    if (facts.whyNoFunctions.empty()) facts.whyNoFunctions = WhyUnread(machine, "hardware");
    return facts;
}
