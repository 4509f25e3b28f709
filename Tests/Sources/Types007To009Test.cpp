// The decoders of types 7 to 9: caches, port connectors and slots.
#include <gtest/gtest.h>

#include "Tests/Support/Expectations.h"

namespace {

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

TEST(Type8, ShowsEveryField) {
    const auto port = ClStructureBuilder(8, 9).Bytes(4, {1, 255, 0, 11, 31}).Strings({"J1"});
    ExpectItems(port, "Port Connector Information {Type 8}",
                "Internal Reference Designator=J1\nInternal Connector Type=Other - Ref Des indicates type\n"
                "External Reference Designator=None\nExternal Connector Type=RJ-45\nPort Type=Network Port\n");
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
