// The decoders of types 0 to 9.
#include <gtest/gtest.h>

#include "Sources/Decoders.h"
#include "Tests/Support/Structures.h"

namespace {

const ClStructureBuilder kBios =
    ClStructureBuilder(0, 0x18).Bytes(4, {1, 2, 0, 0xF0, 3}).Strings({"Maker", "1.2", "01/02/2026"});

TEST(Type0, ShowsVersionCharacteristicsAndReleases) {
    const ClItems items = Decode(ClStructureBuilder(kBios)
                                     .Byte(9, 255)
                                     .Dword(0x0A, 0x80000008)
                                     .Byte(0x12, 0x81)
                                     .Byte(0x13, 0xFC)
                                     .Bytes(0x14, {255, 7, 255, 26}));
    EXPECT_EQ(items.Count(), 56u);
    const ClItems::Item_t kTexts[] = {
        {"BIOS Release Date",                          "01/02/2026"         },
        {"BIOS ROM Size",                              "16384 KB"           },
        {"BIOS Characteristics#GROUPNAME",             ""                   },
        {"BIOS Characteristics Not Supported",         "Yes"                },
        {"NEC PC-98",                                  "Yes"                },
        {"ACPI Supported",                             "Yes"                },
        {"Enable Targeted Content Distribution",       "Yes"                },
        {"System BIOS Minor Release",                  "7"                  },
        {"Embedded Controller Firmware Major Release", "255 (Not Supported)"},
        {"Embedded Controller Firmware Minor Release", "1ah (26)"           },
    };
    for (const auto& [key, text] : kTexts) EXPECT_EQ(items.Text(key), text) << key;
    EXPECT_EQ(items[52].key, "System BIOS Minor Release");  // in front of the major one
    EXPECT_EQ(items[54].key, "Embedded Controller Firmware Major Release");
}

TEST(Type0, EndsAtAMissingVersion) {
    ExpectItems(ClStructureBuilder(kBios).Bytes(4, {0, 0}), "BIOS Information {Type 0}",
                "BIOS Vendor=None\nBIOS Version=None\n");
    // A number that names no string is no missing version.
    const ClItems unnamed = Decode(ClStructureBuilder(kBios).Bytes(4, {9, 9}));
    EXPECT_EQ(unnamed.Count(), 56u);
    EXPECT_EQ(unnamed.Text("BIOS Version"), "None");
}

TEST(Type1, ShowsStringsUuidAndWakeUp) {
    const ClStructureBuilder system = ClStructureBuilder(1, 0x1B)
                                          .Bytes(4, {1, 0, 9, 2, 0x4C, 0x00, 0x10, 0xAB})
                                          .Bytes(0x18, {6, 3, 0})
                                          .Strings({"M", "S", "K"});
    ExpectItems(system, "System Information {Type 1}",
                "Manufacturer=M\nProduct Name=None\nVersion=None\nSerial Number=S\n"
                "UUID=4c 0 10 ab 0 0 0 0 0 0 0 0 0 0 0 0\nWake-up Type=Power Switch\nSKU Number=K\nFamily=None\n");
}

ClStructureBuilder Processor() {
    ClStructureBuilder processor(4, 0x30);
    processor.Bytes(0x04, {1, 3, 0xFE, 2}).Dword(0x08, 0x2A).Dword(0x0C, 0x0F).Bytes(0x10, {0, 0x8C});
    processor.Word(0x12, 100).Word(0x14, 4000).Bytes(0x18, {0x41, 1}).Word(0x1A, 5).Word(0x1C, 0x2A).Word(0x1E, 0xFFFF);
    processor.Bytes(0x20, {0, 9, 1, 0xFF, 8, 16}).Word(0x26, 0xFFFF).Word(0x28, 0x101);
    return processor.Word(0x2A, 300).Word(0x2C, 299).Word(0x2E, 600).Strings({"CPU 1", "Maker"});
}
const ClStructureBuilder kProcessor = Processor();

TEST(Type4, ShowsEveryField) {
    ExpectItems(kProcessor, "Processor Information {Type 4}",
                "Socket Designation=CPU 1\nProcessor Type=Central Processor\n"
                "Processor Family=Indicator to obtain the processor family from the Processor Family 2 field\n"
                "Processor Manufacturer=Maker\nProcessor ID=0000000Fh 2Ah\nProcessor Version=None\nVoltage=1.2V\n"
                "External Clock=100 MHz\nMax Speed=4000 MHz\nCurrent Speed=0 MHz\n"
                "Status=CPU Socket Populated, CPU Enabled\nProcessor Upgrade=Other\n"
                "L1 Cache Handle=05 \nL2 Cache Handle=42 \n"
                "L3 Cache Handle=65535 (No L3 handle or No cache information structure)\n"
                "Serial Number=None\nAssert Tag=(no such string)\nPart Number=CPU 1\n"
                "Core Count=255\nCore Enabled=8\nThread Count=16\n"
                "Processor Characteristics=64 -bit capable |Multi-Core |Hardware Thread |Execute Protection |"
                "Enhanced Virtualization |Power/Performance Control |\nProcessor Family 2=ARMv8\n"
                "Core Count 2=300\nCore Enabled 2=299\nThread Count 2=600\n");
}

TEST(Type4, RenamesTwoFamiliesOnOneProcessor) {
    const auto ExpectFamily = [](uint32_t signature, uint8_t family, const char* text) {
        const ClStructureBuilder processor = ClStructureBuilder(kProcessor).Byte(0x06, family).Word(0x28, family);
        const ClItems items = Decode(processor, {.signature = signature});
        EXPECT_EQ(items.Text("Processor Family"), text);
        EXPECT_EQ(items.Text("Processor Family 2"), text);
    };
    ExpectFamily(0x000406E0, 0x0B, "Lumetra(R) Ostrel(R) CPU");
    ExpectFamily(0x000406E0, 0x0F, "Lumetra(R) Vantor(R) CPU");
    ExpectFamily(0x000406E0, 0x0C, "Pentium(R) Pro processor");
    ExpectFamily(0x000506E0, 0x0B, "Ostrel Family");
    ExpectFamily(0x000406E2, 0x0F, "Lumetra(R) Vantor(R) CPU");
}

ClStructureBuilder Cache() {
    ClStructureBuilder cache(7, 0x13);
    cache.Byte(0x04, 1).Word(0x05, 0x022F).Word(0x07, 2048).Word(0x09, 1024).Word(0x0B, 0xFFFF).Word(0x0D, 0x0080);
    return cache.Bytes(0x0F, {15, 5, 5, 7}).Strings({"L1"});
}
const ClStructureBuilder kCache = Cache();

TEST(Type7, ShowsEveryField) {
    ExpectItems(kCache, "Cache Information {Type 7}",
                "Socket Designation=L1\nCache Configuration=L8; Socketed; External; Varies with Memory address\n"
                "Maximum Cache Size=2 M\nInstalled Size=1024 K\n"
                "Supported SRAM Type=Other, Unknown, Non-Burst, Burst, Pipeline Burst, Synchronous, "
                "Asynchronous\nCurrent SRAM Type=None\n"
                "Cache Speed=15 Ns \nError Correction Type=Single-bit ECC\nSystem Cache Type=Unified\n"
                "Associativity=8-way Set-Associative\n");
}

const ClStructureBuilder kSlot = ClStructureBuilder(9, 0x11)
                                     .Bytes(0x04, {1, 0xA8, 10, 4, 3})
                                     .Word(0x09, 1)
                                     .Bytes(0x0B, {0x0C, 0x01})
                                     .Word(0x0D, 256)
                                     .Bytes(0x0F, {3, 0xFD})
                                     .Strings({"SLOT1"});

TEST(Type9, ShowsEveryField) {
    ExpectItems(kSlot, "System Slots {Type 9}",
                "Slot Designation=SLOT1\nSlot Type=PCI Express x4\nSlot Data Bus Width=4x or x4\n"
                "Current Usage=In use\nSlot Length=Short Length\nSlot ID=01h\n"
                "Slot Characteristics=Provides 3.3 volts, Shared Slot Opening\n"
                "Slot Characteristics 2=Supports Power Management Event (PME#) signal\n"
                "Segment Group Number=256\nBus Number=3\nDevice Number=31\nFunction Number=5\n"
                "Device/Function Number=253\n");
}

TEST(Type9, ShowsAnAddressForSomeSlotTypesOnly) {
    for (uint32_t type = 0; type < 256; type++) {
        const ClItems items = Decode(ClStructureBuilder(kSlot).Byte(0x05, static_cast<uint8_t>(type)));
        const bool hasAddress = type == 6 || type == 15 || type == 18 || (type > 164 && type < 171);
        EXPECT_EQ(items.Count(), hasAddress ? 17u : 15u) << type;
        EXPECT_EQ(items.Text("Segment Group Number"), hasAddress ? "256" : "0FFh") << type;
        EXPECT_EQ(items.Text("Bus Number"), hasAddress ? "3" : "0FFh") << type;
        EXPECT_EQ(items.Text("Device/Function Number"), hasAddress ? "253" : "0FFh") << type;
    }
    const ClItems old = Decode(ClStructureBuilder(9, 0x0D).Byte(0x05, 6).Strings({"\x01\x01\x01\x01"}));
    EXPECT_EQ(old.Text("Device/Function Number"), "0");
}

}  // namespace
