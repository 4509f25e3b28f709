// The decoder of type 4.
#include <gtest/gtest.h>

#include "Sources/Decoders.h"
#include "Tests/Support/Expectations.h"

namespace {

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

// The values around each gap; 02h is "Unknown" by its own row.
TEST(Type4, NamesFamilies) {
    const struct {
        uint16_t family;
        const char* text;
    } kFamilies[] = {
        {0,      "Unknown"        },
        {1,      "Other"          },
        {0xFF,   "Reserved"       },
        {0x100,  "ARMv7"          },
        {0x102,  "Unknown"        },
        {0x103,  "Unknown"        },
        {0x105,  "SH-4"           },
        {302,    "MII"            },
        {500,    "Video Processor"},
        {501,    "Unknown"        },
        {0xFFFF, "Unknown"        },
    };
    const ClSMBIOSType4 decoder(0);
    for (const auto& [family, text] : kFamilies) EXPECT_EQ(decoder.GetProcessorFamilyString(family), text) << family;
    size_t named = 0;
    for (uint32_t family = 0; family < 0x10000; family++)
        if (decoder.GetProcessorFamilyString(static_cast<uint16_t>(family)) != "Unknown") named++;
    EXPECT_EQ(named, 266u);
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

}  // namespace
