// The decoders of types 7 to 9: caches, port connectors and slots.
#include <gtest/gtest.h>

#include "Tests/Support/Expectations.h"

namespace {

ClStructureBuilder Cache() {
    ClStructureBuilder cache(7, 0x13);
    cache.Byte(0x04, 1).Word(0x05, 0x0180).Word(0x07, 2048).Word(0x09, 1024).Word(0x0B, 0x0003).Word(0x0D, 0x0080);
    return cache.Bytes(0x0F, {15, 5, 5, 7}).Strings({"L1"});
}
const ClStructureBuilder kCache = Cache();

TEST(Type7, ShowsEveryField) {
    ExpectItems(kCache, "Cache Information {Type 7}",
                "Socket Designation=L1\nCache Configuration=L1; Not Socketed; Internal; Write Back\n"
                "Maximum Cache Size=2 M\nInstalled Size=1024 K\n"
                "Supported SRAM Type=Other, Unknown\nCurrent SRAM Type=None\n"
                "Cache Speed=15 Ns \nError Correction Type=Single-bit ECC\nSystem Cache Type=Unified\n"
                "Associativity=8-way Set-Associative\n");
}

TEST(Type7, RendersItsWords) {
    const Reading_t kReadings[] = {
        {0x05, 0x0000, "Cache Configuration", "L1; Not Socketed; Internal; Write Through"         },
        {0x05, 0x022F, "Cache Configuration", "L8; Socketed; External; Varies with Memory address"},
        {0x05, 0xFFC2, "Cache Configuration", "L3; Not Socketed; Reserved; Unknown"               },
        {0x05, 0x0069, "Cache Configuration", "L2; Socketed; Unknown; Write Through"              },
        {0x07, 0,      "Maximum Cache Size",  "0 K"                                               },
        {0x07, 1025,   "Maximum Cache Size",  "1 M"                                               },
        {0x07, 1500,   "Maximum Cache Size",  "1 M"                                               },
        {0x07, 0x8001, "Maximum Cache Size",  "64 K"                                              },
        {0x07, 0x8010, "Maximum Cache Size",  "1024 K"                                            },
        {0x09, 0x8200, "Installed Size",      "32 M"                                              },
        {0x09, 0xFFFF, "Installed Size",      "2047 M"                                            },
        {0x0B, 0x0000, "Supported SRAM Type", "None"                                              },
        {0x0D, 0xFFFF, "Current SRAM Type",
         "Other, Unknown, Non-Burst, Burst, Pipeline Burst, Synchronous, Asynchronous"            },
        {0x0F, 0x0500, "Cache Speed",         "0 Ns (unknown)"                                    },
    };
    ExpectWords(kCache, kReadings);
}

TEST(Type7, Enumerations) {
    const std::string invalid = "Error: Invalid Type";
    ExpectEnumeration(kCache, 0x10, "Error Correction Type", invalid, {1, "Other", 6, "Multi-bit ECC"});
    ExpectEnumeration(kCache, 0x11, "System Cache Type", invalid, {1, "Other", 5, "Unified"});
    ExpectEnumeration(kCache, 0x12, "Associativity", invalid, {1, "Other", 14, "20-way Set-Associative"});
}

TEST(Type7, ReadsZeroBehindItsLength) {
    const ClItems items = Decode(ClStructureBuilder(7, 0x0F).Strings({"\x01\x01\x01\x01"}));
    EXPECT_EQ(items.Count(), 14u);
    EXPECT_EQ(items.Text("Cache Speed"), "0 Ns (unknown)");
    EXPECT_EQ(items.Text("Associativity"), "Error: Invalid Type");
}

TEST(Type8, ShowsEveryField) {
    const auto port = ClStructureBuilder(8, 9).Bytes(4, {1, 255, 0, 11, 31}).Strings({"J1"});
    ExpectItems(port, "Port Connector Information {Type 8}",
                "Internal Reference Designator=J1\nInternal Connector Type=Other - Ref Des indicates type\n"
                "External Reference Designator=None\nExternal Connector Type=RJ-45\nPort Type=Network Port\n");
    const std::string invalid = "Error: Invalid Type";
    const Stretch_t connectors = {0, "None", 35, "USB Type-C Receptacle"};
    const Stretch_t pc98Connectors = {160, "PC-98", 164, "PC-98Full"};
    const Stretch_t other = {255, "Other - Ref Des indicates type"};
    ExpectEnumeration(port, 0x05, "Internal Connector Type", invalid, connectors, pc98Connectors, other);
    ExpectEnumeration(port, 0x07, "External Connector Type", invalid, connectors, pc98Connectors, other);
    ExpectEnumeration(port, 0x08, "Port Type", invalid, {0, "None", 35, "Sparkline"},
                      {160, "8251 Compatible", 161, "8251 FIFO Compatible"}, {255, "Other"});
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
}

TEST(Type9, Enumerations) {
    ExpectEnumeration(kSlot, 0x05, "Slot Type", "Error: Invalid Type", {1, "Other", 35, "PCI Express Mini 76-pin"},
                      {160, "PC-98/C20", 182, "PCI Express Gen 3 x16"});
    ExpectEnumeration(kSlot, 0x06, "Slot Data Bus Width", "Error: Invalid Width", {1, "Other", 14, "32x or x32"});
    ExpectEnumeration(kSlot, 0x07, "Current Usage", "Error: Invalid Usage", {1, "Other", 5, "Unavailable"});
    ExpectEnumeration(kSlot, 0x08, "Slot Length", "Error: Invalid Length", {1, "Other", 6, "3.5\" drive form factor"});
}

TEST(Type9, RendersIdAndCharacteristics) {
    const Reading_t kWords[] = {
        {0x09, 0x0000, "Slot ID", "None"},
        {0x09, 0x0100, "Slot ID", "100h"},
    };
    ExpectWords(kSlot, kWords);
    const char* const firstKey = "Slot Characteristics";
    const char* const secondKey = "Slot Characteristics 2";
    const Reading_t kBytes[] = {
        {0x0B, 0x00, firstKey,  "None"                                           },
        {0x0B, 0x81, firstKey,  "Characteristics unknown, Modem Ring Resume"     },
        {0x0B, 0x30, firstKey,  "PC Card-16, CardBus"                            },
        {0x0C, 0x00, secondKey, "None"                                           },
        {0x0C, 0x0A, secondKey, "Supports hot-plug devices, Supports Bifurcation"},
        {0x0C, 0xC0, secondKey, "Reserved, set to 0, Reserved, set to 0"         },
    };
    ExpectBytes(kSlot, kBytes);
    const ClItems old = Decode(ClStructureBuilder(9, 0x0D).Byte(0x05, 6).Strings({"\x01\x01\x01\x01"}));
    EXPECT_EQ(old.Text("Device/Function Number"), "0");
}

}  // namespace
