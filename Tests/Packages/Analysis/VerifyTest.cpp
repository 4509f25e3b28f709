// A machine whose firmware tells the truth gives no contradiction, and each lie exactly its own.
#include "Packages/Analysis/Verify.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "Tests/Support/Structures.h"

namespace {

using Structures_t = std::map<uint8_t, ClStructureBuilder>;

Structures_t Claims() {
    Structures_t all;
    const auto add = [&all](ClStructureBuilder structure) { all.emplace(structure.Type(), structure); };
    add(ClStructureBuilder(0, 0x18, 0x0000).Byte(0x13, 0x08).String(5, "X1ET84W (1.62 )"));
    add(ClStructureBuilder(1, 0x1B, 0x0100)
            .Bytes(8, {1, 2, 3, 4, 5, 6, 7, 0x11, 0x80, 0, 0x02, 0x1D, 0xC3, 0x88, 0x4E, 0xF1}));
    add(ClStructureBuilder(4, 0x30, 0x0400)
            .Bytes(4, {0, 3, 0xB3, 0})
            .Dword(8, 0x000406E3)
            .Dword(12, 0x178BFBFF)
            .Word(0x14, 3000)
            .Word(0x16, 2500)
            .Byte(0x18, 0x41)
            .Bytes(0x23, {4, 4, 8}));
    add(ClStructureBuilder(7, 0x13, 0x0700).Word(5, 0x0180).Word(7, 128).Word(9, 128).Byte(0x11, 4));
    add(ClStructureBuilder(9, 0x11, 0x0900).Bytes(4, {0, 0xA5, 0x0A, 4, 3}).Bytes(0x0D, {0, 0, 1, 0x00}));
    add(ClStructureBuilder(16, 0x17, 0x1000).Bytes(4, {3, 3, 3}).Word(0x0D, 1));
    add(ClStructureBuilder(17, 0x28, 0x1100).Word(4, 0x1000).Word(12, 8192).Byte(0x0E, 9));
    add(ClStructureBuilder(19, 0x1F, 0x1300).Dword(8, 0x008FFFFF).Word(12, 0x1000).Byte(14, 1));
    add(ClStructureBuilder(38, 0x12, 0x2600).Bytes(4, {1, 0x20, 0x20, 0xFF}).Qword(8, 0xCA3));
    add(ClStructureBuilder(41, 0x0B, 0x2900).Bytes(5, {0x85, 1, 0, 0, 2, 0x00}));
    add(ClStructureBuilder(43, 0x1F, 0x2B00).Bytes(8, {2, 0}));
    add(ClStructureBuilder(45, 0x18, 0x2D00)
            .Bytes(5, {1, 2, 2, 1})
            .Strings({"0x0001000a", "0F2A3C44-0000-4000-8000-0102030405AB"}));
    return all;
}

HardwareFacts_t Machine() {
    HardwareFacts_t machine;
    machine.vendor = "GenuineIntel";
    machine.identities = {
        {0x000406E3, 0x178BFBFF}
    };
    machine.packages = 1;
    machine.cores = 4;
    machine.threads = machine.enabled = 8;
    machine.baseSpeed = 2500;
    machine.maxSpeed = 3100;
    machine.caches = {
        {1, true,  32768, 4},
        {1, false, 32768, 4}
    };
    machine.memory = 0x1F0000000;
    machine.memoryMap = {
        {0x1000,      0x9FFFF    },
        {0x100000,    0xBFFFFFFF },
        {0x100000000, 0x23FFFFFFF}
    };
    machine.segments = {0};
    machine.functions.push_back({0, 1, 0, 0, 0x030000, 4});
    machine.functions.push_back({0, 2, 0, 0, 0x020000, 1});
    machine.isUefi = true;
    machine.tpm = 2;
    machine.ipmi = {1, 0xCA2};
    machine.revisions = {0x1620};
    machine.resources = {
        {"0f2a3c44-0000-4000-8000-0102030405ab", 2, 0x0001000A}
    };
    machine.networkAddresses = {"021dc3884ef1"};
    return machine;
}

std::vector<uint8_t> BytesOf(const Structures_t& all) {
    std::vector<ClStructureBuilder> structures;
    for (const auto& [type, structure] : all) structures.push_back(structure);
    return TableOf(structures);
}

// The rules with this verdict.
std::string Rules(const std::vector<uint8_t>& table, const HardwareFacts_t& machine, Verdict_t verdict) {
    std::string ids;
    VerifyTable(table, 0x0300, machine, [&](const Verification_t& each) {
        if (each.verdict == verdict) ids.append(ids.empty() ? "" : " ").append(VerifyRowOf(each.rule).id);
    });
    return ids;
}

TEST(Verify, TruthAgrees) {
    const std::vector<uint8_t> table = BytesOf(Claims());
    EXPECT_EQ(Rules(table, Machine(), Verdict_t::kContradicts), "");
    EXPECT_EQ(Rules(table, Machine(), Verdict_t::kCantTell), "");
    EXPECT_EQ(
        Rules(table, Machine(), Verdict_t::kAgrees),
        "QV0501 QV0505 QV0504 QV0101 QV0102 QV0103 QV0108 QV0109 QV0401 QV0402 QV0302 QV0503 QV0403 QV0404 QV0502 "
        "QV0506 QV0104 QV0105 QV0106 QV0107 QV0201 QV0301");
    EXPECT_EQ(Rules(table, {}, Verdict_t::kContradicts), "");
    EXPECT_EQ(Rules(table, {}, Verdict_t::kAgrees), "");
}

struct Lie_t {
    const char* rules;
    std::function<void(Structures_t&)> lie;
};
Lie_t Lie(const char* rules, std::function<void(Structures_t&)> lie) { return {rules, std::move(lie)}; }

TEST(Verify, EachLieIsAContradiction) {
    const auto word = [](uint8_t type, size_t offset, uint16_t value) {
        return [=](Structures_t& all) { all.at(type).Word(offset, value); };
    };
    const auto byte = [](uint8_t type, size_t offset, uint8_t value) {
        return [=](Structures_t& all) { all.at(type).Byte(offset, value); };
    };
    const Lie_t kLies[] = {
        Lie("QV0101", byte(4, 8, 0xE4)),
        Lie("QV0102", byte(4, 12, 0xFE)),
        Lie("QV0103", byte(4, 6, 0x6B)),
        Lie("QV0105 QV0106 QV0107",
            [](Structures_t& all) {
                all.at(4).Bytes(0x23, {16, 16, 32});
            }),
        Lie("QV0106 QV0107", byte(4, 0x25, 4)),
        Lie("QV0107", byte(4, 0x24, 2)),
        Lie("QV0108", word(4, 0x14, 13000)),
        Lie("QV0109", word(4, 0x16, 300)),
        Lie("QV0201", word(7, 9, 96)),
        Lie("QV0301", word(17, 12, 0x7FFE)),
        Lie("QV0301", word(17, 12, 4096)),
        Lie("QV0302", [](Structures_t& all) { all.at(19).Dword(4, 0x10000000).Dword(8, 0x108FFFFF); }),
        Lie("QV0401", byte(9, 0x10, 0x18)),
        Lie("QV0402", byte(9, 6, 8)),
        Lie("QV0403", byte(41, 0x0A, 0x18)),
        Lie("QV0404", byte(41, 5, 0x83)),
        Lie("QV0501", byte(0, 0x13, 0)),
        Lie("QV0502", byte(43, 8, 1)),
        Lie("QV0503", byte(38, 4, 3)),
        Lie("QV0506", [](Structures_t& all) { all.at(45).String(5, "0x0001000b"); }),
    };
    for (const auto& [rules, lie] : kLies) {
        Structures_t all = Claims();
        lie(all);
        EXPECT_EQ(Rules(BytesOf(all), Machine(), Verdict_t::kContradicts), rules);
    }
}

// A hypervisor may choose its sockets, but not its processors.
TEST(Verify, AHypervisorMayChooseItsSockets) {
    HardwareFacts_t machine = Machine();
    machine.isVirtual = true;
    machine.packages = 8;
    machine.cores = 8;
    EXPECT_EQ(Rules(BytesOf(Claims()), machine, Verdict_t::kContradicts), "");
    EXPECT_EQ(Rules(BytesOf(Claims()), machine, Verdict_t::kCantTell), "QV0104 QV0105");
    machine.threads = machine.enabled = 2;
    EXPECT_EQ(Rules(BytesOf(Claims()), machine, Verdict_t::kContradicts), "QV0106 QV0107");
    machine.enabled = 8;
    EXPECT_EQ(Rules(BytesOf(Claims()), machine, Verdict_t::kContradicts), "") << "a system that uses a few of them";
    machine.threads = 16;
    EXPECT_EQ(Rules(BytesOf(Claims()), machine, Verdict_t::kContradicts), "") << "processors that were added";
}

// What may differ although the firmware tells the truth, with the rules that then can't tell.
TEST(Verify, HonestMachinesDiffer) {
    const auto expect = [](const char* what, const char* rules, const auto& change) {
        Structures_t all = Claims();
        HardwareFacts_t machine = Machine();
        change(all, machine);
        EXPECT_EQ(Rules(BytesOf(all), machine, Verdict_t::kContradicts), "") << what;
        EXPECT_EQ(Rules(BytesOf(all), machine, Verdict_t::kCantTell), rules) << what;
    };
    expect("one thread to a core, by settings", "QV0106",
           [](Structures_t&, HardwareFacts_t& machine) { machine.threads = machine.enabled = 4; });
    expect("cores that settings turn off", "QV0106 QV0201", [](Structures_t& all, HardwareFacts_t& machine) {
        all.at(4).Byte(0x24, 2);
        machine.cores = 2;
        machine.threads = machine.enabled = 4;
        machine.caches[0].count = machine.caches[1].count = 2;
        all.at(7).Word(7, 256).Word(9, 256);
    });
    expect("two kinds of cores, some of them off", "QV0106 QV0107", [](Structures_t& all, HardwareFacts_t& machine) {
        all.at(4).Bytes(0x23, {10, 6, 12});
        machine.cores = 6;
        machine.threads = machine.enabled = 8;
    });
    expect("a system that doesn't use all processors", "QV0104 QV0105 QV0106 QV0201",
           [](Structures_t&, HardwareFacts_t& machine) {
               machine.packages = machine.cores = machine.threads = 2;
               machine.caches[0].count = machine.caches[1].count = 1;
               machine.caches[0].size = machine.caches[1].size = 16384;
           });
    expect("no ACPI tables", "QV0105 QV0106 QV0107", [](Structures_t&, HardwareFacts_t& machine) {
        machine.cores = machine.threads = 2;
        machine.enabled.reset();
    });
    expect("threads that the firmware doesn't count", "",
           [](Structures_t& all, HardwareFacts_t&) { all.at(4).Byte(0x25, 0); });
    expect("features that a hypervisor hides", "QV0102", [](Structures_t&, HardwareFacts_t& machine) {
        machine.isVirtual = true;
        machine.identities[0].features = 0x1F8BFBFF & ~0x00200000u;
    });
    expect("a processor without identification", "",
           [](Structures_t& all, HardwareFacts_t&) { all.at(4).Qword(8, 0); });
    expect("a slow processor with a fast turbo, whose base speed isn't known", "",
           [](Structures_t& all, HardwareFacts_t& machine) {
               all.at(4).Word(0x14, 800).Word(0x16, 800);
               machine.baseSpeed = 0;
           });
    expect("a turbo that the system doesn't know", "", [](Structures_t& all, HardwareFacts_t& machine) {
        all.at(4).Word(0x14, 6000).Word(0x16, 6000);
        machine.maxSpeed.reset();
    });
    expect("a processor that started at its lowest speed", "",
           [](Structures_t& all, HardwareFacts_t&) { all.at(4).Word(0x16, 400); });
    expect("a cache at the memory", "QV0201", [](Structures_t& all, HardwareFacts_t&) { all.at(7).Word(5, 0x0183); });
    expect("memory added by the hypervisor", "QV0301", [](Structures_t&, HardwareFacts_t& machine) {
        machine.isVirtual = true;
        machine.memory = 1ull << 40;
    });
    expect("a system that uses little of its memory", "QV0302 QV0301", [](Structures_t&, HardwareFacts_t& machine) {
        machine.memoryMap.clear();
        machine.memory = 1ull << 30;
    });
    expect("a range that isn't filled in", "", [](Structures_t& all, HardwareFacts_t&) { all.at(19).Dword(8, 0); });
    expect("a device that was removed with its bus", "QV0401 QV0403",
           [](Structures_t&, HardwareFacts_t& machine) { machine.functions.clear(); });
    expect("a device after a bridge", "QV0404",
           [](Structures_t&, HardwareFacts_t& machine) { machine.functions[1].classCode = 0x060400; });
}

// Without CPUID, MIDR takes the signature's place.
TEST(Verify, Arm64HasMidr) {
    constexpr uint32_t kMidr = 0x410FD0C1;
    const auto expect = [](const char* what, const char* rules, Verdict_t verdict, const auto& change) {
        Structures_t all = Claims();
        all.at(4).Qword(8, kMidr).Byte(6, 0xFE).Word(0x28, 0x0101);
        HardwareFacts_t machine = Machine();
        machine.isArm64 = true;
        machine.vendor.clear();
        machine.identities = {
            {0x410FD050, 0},
            {kMidr,      0}
        };
        machine.whyNoProcessors = "A";
        machine.whyNoCounts = machine.whyNoCaches = "B";
        change(all, machine);
        EXPECT_EQ(Rules(BytesOf(all), machine, Verdict_t::kContradicts),
                  verdict == Verdict_t::kContradicts ? rules : "")
            << what;
        EXPECT_EQ(Rules(BytesOf(all), machine, Verdict_t::kCantTell), verdict == Verdict_t::kCantTell ? rules : "")
            << what;
        return Rules(BytesOf(all), machine, Verdict_t::kAgrees);
    };
    constexpr Verdict_t kNone = Verdict_t::kAgrees;
    EXPECT_EQ(expect("the truth", "", kNone, [](Structures_t&, HardwareFacts_t&) {}),
              "QV0501 QV0505 QV0504 QV0101 QV0108 QV0109 QV0401 QV0402 QV0302 QV0503 QV0403 QV0404 QV0502 QV0506 "
              "QV0104 QV0105 QV0106 QV0107 QV0201 QV0301");
    expect("another processor", "QV0101", Verdict_t::kContradicts,
           [](Structures_t& all, HardwareFacts_t&) { all.at(4).Dword(8, 0x413FD0C1); });
    expect("another processor of a hypervisor's", "QV0101", Verdict_t::kCantTell,
           [](Structures_t& all, HardwareFacts_t& machine) {
               all.at(4).Dword(8, 0x413FD0C1);
               machine.isVirtual = true;
           });
    expect("the SoC's number and revision", "QV0101", Verdict_t::kCantTell, [](Structures_t& all, HardwareFacts_t&) {
        all.at(4).Dword(8, 0x043B0A16).Dword(12, 2).Word(0x26, 1u << 9);
    });
    expect("the SoC's number without its bit", "QV0101", Verdict_t::kCantTell,
           [](Structures_t& all, HardwareFacts_t&) { all.at(4).Dword(8, 0x0A160001); });
    expect("an x86 table", "QV0101 QV0102 QV0103", Verdict_t::kCantTell, [](Structures_t& all, HardwareFacts_t&) {
        all.at(4).Dword(8, 0x000406E3).Dword(12, 0x178BFBFF).Byte(6, 0xB3);
    });
    expect("no MIDR", "QV0101", Verdict_t::kCantTell,
           [](Structures_t&, HardwareFacts_t& machine) { machine.identities.clear(); });
    expect("no PPTT, and no speeds", "QV0108 QV0109 QV0104 QV0105 QV0201", Verdict_t::kCantTell,
           [](Structures_t&, HardwareFacts_t& machine) {
               machine.packages = machine.cores = machine.baseSpeed = machine.maxSpeed = std::nullopt;
               machine.caches.clear();
           });
    expect("another level of caches", "QV0201", Verdict_t::kCantTell,
           [](Structures_t&, HardwareFacts_t& machine) { machine.caches[0].level = machine.caches[1].level = 2; });
    expect("no identification", "", kNone, [](Structures_t& all, HardwareFacts_t&) { all.at(4).Qword(8, 0); });
}

// Memory of other arrays isn't the system's, wherever they are in the table, and persistent memory is none.
TEST(Verify, OnlySystemMemoryCounts) {
    const std::vector<ClStructureBuilder> kStructures = {
        ClStructureBuilder(17, 0x28, 0x1101).Word(4, 0x1001).Word(12, 4096),
        ClStructureBuilder(16, 0x17, 0x1001).Bytes(4, {3, 5, 3}),
        ClStructureBuilder(19, 0x1F, 0x1301).Dword(4, 0x3FFFC000).Dword(8, 0x3FFFFFFF).Word(12, 0x1001).Byte(14, 1),
        ClStructureBuilder(20, 0x23, 0x1401)
            .Dword(4, 0x3FFFC000)
            .Dword(8, 0x3FFFFFFF)
            .Word(12, 0x1101)
            .Word(14, 0x1301),
        ClStructureBuilder(17, 0x28, 0x1100).Word(4, 0x1000).Word(12, 8192),
        ClStructureBuilder(16, 0x17, 0x1000).Bytes(4, {3, 3, 3}),
        // Half of it is the system's, and the other half persistent.
        ClStructureBuilder(17, 0x54, 0x1102)
            .Word(4, 0x1000)
            .Word(12, 16384)
            .Qword(0x34, 8ull << 30)
            .Qword(0x3C, 8ull << 30),
        ClStructureBuilder(19, 0x1F, 0x1300).Dword(8, 0x017FFFFF).Word(12, 0x1000).Byte(14, 1),
    };
    HardwareFacts_t machine;
    machine.memoryMap = {
        {0x100000, 0xBFFFFFFF}
    };
    machine.memory = 15ull << 30;
    EXPECT_EQ(Rules(TableOf(kStructures), machine, Verdict_t::kAgrees), "QV0302 QV0301");
    EXPECT_EQ(Rules(TableOf(kStructures), machine, Verdict_t::kContradicts), "");
    machine.memory = 17ull << 30;
    EXPECT_EQ(Rules(TableOf(kStructures), machine, Verdict_t::kContradicts), "QV0301");
}

}  // namespace
