// What the parts of a recorded machine say.
#include "Packages/Analysis/Hardware.h"

#include <gtest/gtest.h>

#include <cstring>

#include "Tests/Support/AcpiTables.h"

namespace {

// Processors of two packages, each with two cores and two threads a core. Each core has its own caches of the first
// level; each package shares one of the second.
std::vector<CpuidLeaves_t> TwoPackages() {
    std::vector<CpuidLeaves_t> all;
    for (uint32_t id = 0; id < 8; id++)
        all.push_back({
            {0x00000000, 0, 0x16,       0x756E6547, 0x6C65746E, 0x49656E69},
            {0x00000001, 0, 0x000406E3, 0,          0,          0x178BFBFF},
            {0x00000004, 0, 0x00004021, 0x01C0003F, 0x0000003F, 0         },
            {0x00000004, 1, 0x00004022, 0x01C0003F, 0x0000003F, 0         },
            {0x00000004, 2, 0x0000C043, 0x00C0003F, 0x000003FF, 0         },
            {0x0000000B, 0, 1,          2,          0x100,      id        },
            {0x0000000B, 1, 2,          4,          0x201,      id        },
            {0x00000016, 0, 2500,       3100,       100,        0         }
        });
    return all;
}

// A table of zeros.
AcpiTable_t Table(const char* name, size_t size) { return {name, std::vector<uint8_t>(size)}; }

void Put(AcpiTable_t& table, size_t offset, std::initializer_list<uint8_t> bytes) {
    std::ranges::copy(bytes, table.bytes.begin() + static_cast<long>(offset));
}

TEST(Hardware, ProcessorsAndCachesAreCounted) {
    const std::vector<CpuidLeaves_t> processors = TwoPackages();
    MachineFacts_t machine;
    machine.processors = 8;
    HardwareFacts_t facts = HardwareFactsOf(machine, processors, {}, {});
    EXPECT_EQ(facts.vendor, "GenuineIntel");
    ASSERT_EQ(facts.identities.size(), 1u);
    EXPECT_EQ(facts.identities[0].signature, 0x000406E3u);
    EXPECT_FALSE(facts.isVirtual);
    EXPECT_EQ(facts.packages, 2u);
    EXPECT_EQ(facts.cores, 4u);
    EXPECT_EQ(facts.baseSpeed, 2500u);
    EXPECT_EQ(facts.maxSpeed, 3100u);
    ASSERT_EQ(facts.caches.size(), 3u);
    EXPECT_TRUE(facts.caches[1].isInstruction);
    EXPECT_EQ(facts.caches[0].size, 32u << 10);
    EXPECT_EQ(facts.caches[0].count, 4u);
    EXPECT_EQ(facts.caches[2].size, 256u << 10);
    EXPECT_EQ(facts.caches[2].count, 2u);
    // Of processors that weren't all read, nothing is counted.
    machine.processors = 9;
    machine.unread = {
        {"CPUID from processor 8 on", "why"}
    };
    facts = HardwareFactsOf(machine, processors, {}, {});
    EXPECT_FALSE(facts.cores);
    EXPECT_TRUE(facts.caches.empty());
    EXPECT_EQ(facts.whyNoProcessors, "why");
    // Nor of a machine that has more of them offline.
    machine = {};
    machine.processors = 8;
    machine.known.threads = 9;
    facts = HardwareFactsOf(machine, processors, {}, {});
    EXPECT_FALSE(facts.cores);
    EXPECT_TRUE(facts.caches.empty());
    machine.processors = 0;
    EXPECT_FALSE(HardwareFactsOf(machine, {}, {}, {}).cores);
    // What the system counts comes first.
    machine.known.packages = machine.known.cores = 3;
    EXPECT_EQ(HardwareFactsOf(machine, processors, {}, {}).cores, 3u);
}

TEST(Hardware, TablesSayWhatTheFirmwareGives) {
    std::vector<AcpiTable_t> tables = {Table("APIC", 76), Table("SPMI", 65), Table("TPM2", 52), Table("FACP", 244)};
    // An APIC that is enabled, one that isn't, and the first one again.
    Put(tables[0], 44, {0, 8, 0, 0, 1});
    Put(tables[0], 52, {0, 8, 1, 1, 0});
    Put(tables[0], 60, {9, 16, 0, 0, 0, 0, 0, 0, 1});
    Put(tables[1], 36, {1});
    Put(tables[1], 52, {0xA2, 0x0C});
    Put(tables[3], 24, {0x20, 0x16});
    HardwareFacts_t facts = HardwareFactsOf({}, {}, tables, {});
    EXPECT_EQ(facts.enabled, 1u);
    EXPECT_EQ(facts.tpm, 2u);
    ASSERT_TRUE(facts.ipmi);
    EXPECT_EQ(facts.ipmi->interface, 1u);
    EXPECT_EQ(facts.ipmi->address, 0xCA2u);
    EXPECT_EQ(facts.revisions, std::vector<uint32_t>{0x1620});
    // Tables that are cut, or have entries without a size, say what they can.
    for (size_t size = 0; size < 76; size++) {
        std::vector<AcpiTable_t> cut = tables;
        for (AcpiTable_t& table : cut) table.bytes.resize(std::min(size, table.bytes.size()));
        facts = HardwareFactsOf({}, {}, cut, {});
        EXPECT_LE(facts.enabled.value_or(0), 1u) << size;
    }
    // Zeros are no management controller, and an entry without a size ends the list.
    Put(tables[1], 36, {0});
    EXPECT_FALSE(HardwareFactsOf({}, {}, tables, {}).ipmi);
    Put(tables[0], 44, {0, 0});
    EXPECT_EQ(HardwareFactsOf({}, {}, tables, {}).enabled, std::nullopt);
    // No list is no proof that there is no TPM.
    EXPECT_EQ(HardwareFactsOf({}, {}, {}, {}).tpm, std::nullopt);
    EXPECT_EQ(HardwareFactsOf({}, {}, std::vector{Table("FACP", 244)}, {}).tpm, 0u);
}

// What the system counts is a guess without PPTT.
TEST(Hardware, Arm64IsKnownByMidrAndAcpi) {
    MachineFacts_t machine;
    machine.known.midrs = {0x410FD0C1, 0x410FD050};
    machine.known.packages = machine.known.cores = 9;
    machine.known.threads = 2;
    HardwareFacts_t facts = HardwareFactsOf(machine, {}, {}, {});
    EXPECT_TRUE(facts.isArm64);
    ASSERT_EQ(facts.identities.size(), 2u);
    EXPECT_EQ(facts.identities[1].signature, 0x410FD050u);
    EXPECT_FALSE(facts.packages || facts.cores || facts.isVirtual);
    EXPECT_EQ(facts.threads, 2u);
    EXPECT_EQ(facts.whyNoProcessors, "this architecture has no CPUID");
    EXPECT_EQ(facts.whyNoCounts, "the system gives no ACPI tables");
    EXPECT_EQ(facts.whyNoCaches, facts.whyNoCounts);

    ClTree tree;
    const uint32_t cache = tree.Cache(65536, ClTree::kData), package = tree.Node(ClTree::kPackage, 0, 0);
    for (uint32_t id = 0; id < 3; id++) tree.Core(package, id, {cache});
    std::vector<AcpiTable_t> tables = {
        {"APIC", MadtOf({{0, 1}, {1, 1}, {2, 0}})},
        Table("FACP", 276)
    };
    facts = HardwareFactsOf(machine, {}, tables, {});
    EXPECT_EQ(facts.enabled, 2u);
    EXPECT_EQ(facts.whyNoCounts, "the machine has no PPTT");
    machine.unread = {
        {"ACPI table PPTT", "why"}
    };
    EXPECT_EQ(HardwareFactsOf(machine, {}, tables, {}).whyNoCounts, "why");
    tables.push_back({"PPTT", tree.Bytes()});
    Put(tables[1], 268, {'Q'});
    facts = HardwareFactsOf(machine, {}, tables, {});
    EXPECT_EQ(facts.packages, 1u);
    EXPECT_EQ(facts.cores, 2u);
    ASSERT_EQ(facts.caches.size(), 1u);
    EXPECT_EQ(facts.caches[0].count, 2u);
    EXPECT_TRUE(facts.isVirtual);
    // Where the system doesn't show MIDR, the firmware's interfaces tell the architecture.
    EXPECT_TRUE(HardwareFactsOf({}, {}, tables, {}).isArm64);
    EXPECT_FALSE(HardwareFactsOf({}, TwoPackages(), tables, {}).isArm64) << "with CPUID";
}

TEST(Hardware, FunctionsHaveTheirLinks) {
    PciFunction_t function = {0x00010000 | 3 << 13 | 2 << 8 | 5, std::vector<uint8_t>(256)};
    const uint8_t classes[] = {0x01, 0x00, 0x00, 0x02};
    std::memcpy(&function.bytes[8], classes, sizeof classes);
    function.bytes[0x34] = 0x40;
    function.bytes[0x40] = 0x05;  // another capability
    function.bytes[0x41] = 0x60;
    function.bytes[0x60] = 0x10;
    function.bytes[0x72] = 0x42;  // four lanes of the second speed
    const auto of = [](const PciFunction_t& each) {
        return HardwareFactsOf({}, {}, {}, std::vector{each}).functions.at(0);
    };
    const HardwareFacts_t::Function_t read = of(function);
    EXPECT_EQ(read.segment, 1u);
    EXPECT_EQ(read.bus, 5u);
    EXPECT_EQ(read.device, 2u);
    EXPECT_EQ(read.function, 3u);
    EXPECT_EQ(read.classCode, 0x020000u);
    EXPECT_EQ(read.linkWidth, 4u);
    function.bytes[0x41] = 0x40;
    EXPECT_EQ(of(function).linkWidth, 0u) << "capabilities in a ring";
    function.bytes.resize(64);
    EXPECT_EQ(of(function).linkWidth, 0u) << "without rights";
}

TEST(Hardware, MemoryIsThatOfTheMap) {
    MachineFacts_t machine;
    machine.known.usableMemory = 5;
    EXPECT_EQ(HardwareFactsOf(machine, {}, {}, {}).memory, 5u);
    machine.known.memoryMap = {
        {0x1000,   0x1FFF  },
        {0x100000, 0x2FFFFF}
    };
    EXPECT_EQ(HardwareFactsOf(machine, {}, {}, {}).memory, 0x201000u);
}

}  // namespace
