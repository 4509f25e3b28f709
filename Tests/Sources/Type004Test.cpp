// The decoder of type 4.
#include <gtest/gtest.h>

#include "Sources/Decoders.h"
#include "Tests/Support/Enumerations.h"

namespace {

constexpr const char* kFree = "Available for assignment";
constexpr const char* kM1 = "Reserved for specific M1 versions";

// The standard's listing from 01h on, sixteen values to a paragraph.
const std::vector<const char*> kFamilies = {
    // 01h
    "Other", "Unknown", "8086", "80286", "Intel386(TM) processor", "Intel486(TM) processor", "8087", "80287", "80387",
    "80487", "Ostrel Family", "Pentium(R) Pro processor", "Pentium(R) II processor",
    "Pentium(R) processor with MMX(TM) technology", "Vantor",
    // 10h
    "Pentium(R) II Xeon(TM) processor", "Pentium(R) III processor", "M1 Family", "M2 Family",
    "Intel(R) Celeron(R) M processor", "Intel(R) Pentium(R) 4 HT processor", kM1, kM1, "AMD Duro Processor Family",
    "K5 Family", "K6 Family", "K6-2", "K6-3", "AMD Athlon(TM) Processor Family", "AMD29000 Family", "K6-2+",
    // 20h
    "Power PC Family", "Power PC 601", "Power PC 603", "Power PC 603+", "Power PC 604", "Power PC 620", "Power PC x704",
    "Power PC 750", "Intel(R) Core(TM) Duo processor", "Intel(R) Core(TM) Duo mobile processor",
    "Intel(R) Core(TM) Solo mobile processor", "Intel(R) Atom(TM) processor", "Intel(R) Core(TM) M processor",
    "Intel(R) Core(TM) m3 processor", "Intel(R) Core(TM) m5 processor", "Intel(R) Core(TM) m7 processor",
    // 30h
    "Alpha Family", "Alpha 21064", "Alpha 21066", "Alpha 21164", "Alpha 21164PC", "Alpha 21164a", "Alpha 21264",
    "Alpha 21364", "AMD Turion(TM) II Ultra Dual-Core Mobile M Processor Family",
    "AMD Turion(TM) II Dual-Core Mobile M Processor Family", "AMD Athlon(TM) II Dual-Core M Processor Family",
    "AMD Opteron(TM) 6100 Series Processor", "AMD Opteron(TM) 4100 Series Processor",
    "AMD Opteron(TM) 6200 Series Processor", "AMD Opteron(TM) 4200 Series Processor", "AMD FX(TM) Series Processor",
    // 40h
    "MIPS Family", "MIPS R4000", "MIPS R4200", "MIPS R4400", "MIPS R4600", "MIPS R10000", "AMD C-Series Processor",
    "AMD E-Series Processor", "AMD A-Series Processor", "AMD G-Series Processor", "AMD Z-Series Processor",
    "AMD R-Series Processor", "AMD Opteron(TM) 4300 Series Processor", "AMD Opteron(TM) 6300 Series Processor",
    "AMD Opteron(TM) 3300 Series Processor", "AMD FirePro(TM) Series Processor",
    // 50h
    "SPARC Family", "SuperSPARC", "microSPARC II", "microSPARC IIep", "UltraSPARC", "UltraSPARC II", "UltraSPARC Iii",
    "UltraSPARC III", "UltraSPARC IIIi", kFree, kFree, kFree, kFree, kFree, kFree, kFree,
    // 60h
    "68040 Family", "68xxx", "68000", "68010", "68020", "68030", "AMD Athlon(TM) X4 Quad-Core Processor Family",
    "AMD Opteron(TM) X1000 Series Processor", "AMD Opteron(TM) X2000 Series APU", "AMD Opteron(TM) A-Series Processor",
    "AMD Opteron(TM) X3000 Series APU", "AMD Zen Processor Family", kFree, kFree, kFree, kFree,
    // 70h
    "Hobbit Family", kFree, kFree, kFree, kFree, kFree, kFree, kFree, "Crusoe(TM) TM5000 Family",
    "Crusoe(TM) TM3000 Family", "Efficeon(TM) TM8000 Family", kFree, kFree, kFree, kFree, kFree,
    // 80h
    "Weitek", kFree, "Itanium(TM) processor", "AMD Athlon(TM) 64 Processor Family", "AMD Opteron(TM) Processor Family",
    "AMD Sempron(TM) Processor Family", "AMD Turion(TM) 64 Mobile Technology",
    "Dual-Core AMD Opteron(TM) Processor Family", "AMD Athlon(TM) 64 X2 Dual-Core Processor Family",
    "AMD Turion(TM) 64 X2 Mobile Technology", "Quad-Core AMD Opteron(TM) Processor Family",
    "Third-Generation AMD Opteron(TM) Processor Family", "AMD Phenom(TM) FX Quad-Core Processor Family",
    "AMD Phenom(TM) X4 Quad-Core Processor Family", "AMD Phenom(TM) X2 Dual-Core Processor Family",
    "AMD Athlon(TM) X2 Dual-Core Processor Family",
    // 90h
    "PA-RISC Family", "PA-RISC 8500", "PA-RISC 8000", "PA-RISC 7300LC", "PA-RISC 7200", "PA-RISC 7100LC",
    "PA-RISC 7100", kFree, kFree, kFree, kFree, kFree, kFree, kFree, kFree, kFree,
    // A0h
    "V30 Family", "Quad-Core Intel(R) Xeon(R) processor 3200 Series",
    "Dual-Core Intel(R) Xeon(R) processor 3000 Series", "Quad-Core Intel(R) Xeon(R) processor 5300 Series",
    "Dual-Core Intel(R) Xeon(R) processor 5100 Series", "Dual-Core Intel(R) Xeon(R) processor 5000 Series",
    "Dual-Core Intel(R) Xeon(R) processor LV", "Dual-Core Intel(R) Xeon(R) processor ULV",
    "Dual-Core Intel(R) Xeon(R) processor 7100 Series", "Quad-Core Intel(R) Xeon(R) processor 5400 Series",
    "Quad-Core Intel(R) Xeon(R) processor", "Dual-Core Intel(R) Xeon(R) processor 5200 Series",
    "Dual-Core Intel(R) Xeon(R) processor 7200 Series", "Quad-Core Intel(R) Xeon(R) processor 7300 Series",
    "Quad-Core Intel(R) Xeon(R) processor 7400 Series", "Multi-Core Intel(R) Xeon(R) processor 7400 Series",
    // B0h
    "Pentium(R) III Xeon(TM) processor", "Pentium(R) III Processor with Intel(R) SpeedStep(TM) Technology",
    "Pentium(R) 4 Processor", "Intel(R) Xeon(R) processor", "AS400 Family", "Intel(R) Xeon(R) processor MP",
    "AMD Athlon(TM) XP Processor Family", "AMD Athlon(TM) MP Processor Family", "Intel(R) Itanium(R) 2 processor",
    "Intel(R) Pentium(R) M processor", "Intel(R) Celeron(R) D processor", "Intel(R) Pentium(R) D processor",
    "Intel(R) Pentium(R) Processor Extreme Edition", "Intel(R) Core(TM) Solo Processor", "Reserved [3]",
    "Intel(R) Core(TM) 2 Duo Processor",
    // C0h
    "Intel(R) Core(TM) 2 Solo processor", "Intel(R) Core(TM) 2 Extreme processor", "Intel(R) Core(TM) 2 Quad processor",
    "Intel(R) Core(TM) 2 Extreme mobile processor", "Intel(R) Core(TM) 2 Duo mobile processor",
    "Intel(R) Core(TM) 2 Solo mobile processor", "Intel(R) Core(TM) i7 processor",
    "Dual-Core Intel(R) Celeron(R) processor", "IBM390 Family", "G4", "G5", "ESA/390 G6", "z/Architecture base",
    "Intel(R) Core(TM) i5 processor", "Intel(R) Core(TM) i3 processor", "Intel(R) Core(TM) i9 processor",
    // D0h
    kFree, kFree, "VIA C7(TM)-M Processor Family", "VIA C7(TM)-D Processor Family", "VIA C7(TM) Processor Family",
    "VIA Eden(TM) Processor Family", "Multi-Core Intel(R) Xeon(R) processor",
    "Dual-Core Intel(R) Xeon(R) processor 3xxx Series", "Quad-Core Intel(R) Xeon(R) processor 3xxx Series",
    "VIA Nano(TM) Processor Family", "Dual-Core Intel(R) Xeon(R) processor 5xxx Series",
    "Quad-Core Intel(R) Xeon(R) processor 5xxx Series", kFree, "Dual-Core Intel(R) Xeon(R) processor 7xxx Series",
    "Quad-Core Intel(R) Xeon(R) processor 7xxx Series", "Multi-Core Intel(R) Xeon(R) processor 7xxx Series",
    // E0h
    "Multi-Core Intel(R) Xeon(R) processor 3400 Series", kFree, kFree, kFree, "AMD Opteron(TM) 3000 Series Processor",
    "AMD Sempron(TM) II Processor", "Embedded AMD Opteron(TM) Quad-Core Processor Family",
    "AMD Phenom(TM) Triple-Core Processor Family", "AMD Turion(TM) Ultra Dual-Core Mobile Processor Family",
    "AMD Turion(TM) Dual-Core Mobile Processor Family", "AMD Athlon(TM) Dual-Core Processor Family",
    "AMD Sempron(TM) SI Processor Family", "AMD Phenom(TM) II Processor Family", "AMD Athlon(TM) II Processor Family",
    "Six-Core AMD Opteron(TM) Processor Family", "AMD Sempron(TM) M Processor Family",
    // F0h
    kFree, kFree, kFree, kFree, kFree, kFree, kFree, kFree, kFree, kFree, "i860", "i960", kFree, kFree,
    "Indicator to obtain the processor family from the Processor Family 2 field", "Reserved"};
const Run_t kMoreFamilies[] = {
    {256, {"ARMv7", "ARMv8"}        },
    {260, {"SH-3", "SH-4"}          },
    {280, {"ARM", "StrongARM"}      },
    {300, {"6x86", "MediaGX", "MII"}},
    {320, {"WinChip"}               },
    {350, {"DSP"}                   },
    {500, {"Video Processor"}       },
};

const ClStructureBuilder kProcessor = ClStructureBuilder(4, 0x30)
                                          .Bytes(0x04, {1, 3, 0xFE, 2})
                                          .Dword(0x08, 0x0000002A)
                                          .Dword(0x0C, 0x0000000F)
                                          .Bytes(0x10, {0, 0x8C})
                                          .Word(0x12, 100)
                                          .Word(0x14, 4000)
                                          .Bytes(0x18, {0x41, 1})
                                          .Word(0x1A, 5)
                                          .Word(0x1C, 0x2A)
                                          .Word(0x1E, 0xFFFF)
                                          .Bytes(0x20, {0, 9, 1})
                                          .Bytes(0x23, {0xFF, 8, 16})
                                          .Word(0x26, 0x000C)
                                          .Word(0x28, 0x101)
                                          .Word(0x2A, 300)
                                          .Word(0x2C, 299)
                                          .Word(0x2E, 600)
                                          .Strings({"CPU 1", "Maker"});

TEST(Type4, ShowsEveryField) {
    EXPECT_EQ(Decode(kProcessor).Lines(),
              "Processor Information {Type 4}#GROUPNAME=\nType=4\nLength=48\nHandle=16\n"
              "Socket Designation=CPU 1\nProcessor Type=Central Processor\n"
              "Processor Family=Indicator to obtain the processor family from the Processor Family 2 field\n"
              "Processor Manufacturer=Maker\nProcessor ID=0000000Fh 2Ah\nProcessor Version=None\nVoltage=1.2V\n"
              "External Clock=100 MHz\nMax Speed=4000 MHz\nCurrent Speed=0 MHz\n"
              "Status=CPU Socket Populated, CPU Enabled\nProcessor Upgrade=Other\n"
              "L1 Cache Handle=05 \nL2 Cache Handle=42 \n"
              "L3 Cache Handle=65535 (No L3 handle or No cache information structure)\n"
              "Serial Number=None\nAssert Tag=(no such string)\nPart Number=CPU 1\n"
              "Core Count=255\nCore Enabled=8\nThread Count=16\n"
              "Processor Characteristics=64 -bit capable |Multi-Core |\nProcessor Family 2=ARMv8\n"
              "Core Count 2=300\nCore Enabled 2=299\nThread Count 2=600\n");
}

TEST(Type4, NamesEveryFamily) {
    std::vector<Run_t> runs = {
        Run_t{1, kFamilies}
    };
    runs.insert(runs.end(), std::begin(kMoreFamilies), std::end(kMoreFamilies));
    const std::vector<std::string> expected = TextsOfRuns(runs, 0x10000, "Unknown");
    const ClSMBIOSType4 decoder(0);
    size_t named = 0;
    for (uint32_t family = 0; family < expected.size(); family++) {
        const std::string_view text = decoder.GetProcessorFamilyString(static_cast<uint16_t>(family));
        ASSERT_EQ(text, expected[family]) << family;
        if (text != "Unknown") named++;
    }
    EXPECT_EQ(named, 266u);  // and value 2, which the standard calls so
}

TEST(Type4, RenamesTwoFamiliesOnOneProcessor) {
    const struct {
        uint32_t signature;
        uint8_t family;
        const char* text;
    } kCases[] = {
        {0x000406E0, 0x0B, "Lumetra(R) Ostrel(R) CPU"},
        {0x000406E0, 0x0F, "Lumetra(R) Vantor(R) CPU"},
        {0x000406E0, 0x0C, "Pentium(R) Pro processor"},
        {0x000506E0, 0x0B, "Ostrel Family"           },
        {0x000406E2, 0x0F, "Lumetra(R) Vantor(R) CPU"},
    };
    for (const auto& c : kCases) {
        const ClItems items = Decode(ClStructureBuilder(kProcessor).Byte(0x06, c.family).Word(0x28, c.family),
                                     {.signature = c.signature});
        EXPECT_EQ(items.Text("Processor Family"), c.text);
        EXPECT_EQ(items.Text("Processor Family 2"), c.text);
    }
}

TEST(Type4, Enumerations) {
    ExpectRuns(
        kProcessor, 0x05, "Processor Type", "Unknown",
        {
            {1, {"Other", "Unknown", "Central Processor", "Math Processor", "DSP Processor", "Video Processor"}}
    });
    ExpectRuns(kProcessor, 0x18, "Status", "Unknown",
               {
                   {0x00,
                    {"CPU Socket Unpopulated, Status Unknown", "CPU Socket Unpopulated, CPU Enabled",
                     "CPU Socket Unpopulated, CPU Disabled by User", "CPU Socket Unpopulated, CPU Disabled by BIOS",
                     "CPU Socket Unpopulated, CPU Idle"}          },
                   Run_t{0x07, {"CPU Socket Unpopulated, Status Other"}},
                   Run_t{0x40,
                    {"CPU Socket Populated, Status Unknown", "CPU Socket Populated, CPU Enabled",
                          "CPU Socket Populated, CPU Disabled by User", "CPU Socket Populated, CPU Disabled by BIOS",
                          "CPU Socket Populated, CPU Idle"}       },
                   Run_t{0x47, {"CPU Socket Populated, Status Other"}  }
    });
    ExpectRuns(kProcessor, 0x19, "Processor Upgrade", "Unknown",
               {
                   {1,
                    {"Other",
                     "Unknown",
                     "Daughter Board",
                     "ZIF Socket",
                     "Replaceable Piggy Back",
                     "None",
                     "LIF Socket",
                     "Slot 1",
                     "Slot 2",
                     "370-pin socket",
                     "Slot A",
                     "Slot M",
                     "Socket 423",
                     "Socket A (Socket 462)",
                     "Socket 478",
                     "Socket 754",
                     "Socket 940",
                     "Socket 939",
                     "Socket mPGA604",
                     "Socket LGA771",
                     "Socket LGA775",
                     "Socket S1",
                     "Socket AM2",
                     "Socket F (1207)",
                     "Socket LGA1366",
                     "Socket G34",
                     "Socket AM3",
                     "Socket C32",
                     "Socket LGA1156",
                     "Socket LGA1567",
                     "Socket PGA988A",
                     "Socket BGA1288",
                     "Socket rPGA988B",
                     "Socket BGA1023",
                     "Socket BGA1224",
                     "Socket LGA1155",
                     "Socket LGA1356",
                     "Socket LGA2011",
                     "Socket FS1",
                     "Socket FS2",
                     "Socket FM1",
                     "Socket FM2",
                     "Socket LGA2011-3",
                     "Socket LGA1356-3",
                     "SocketLGA1150",
                     "SocketBGA1168",
                     "Socket BGA1234",
                     "Socket BGA1364",
                     "Socket AM4",
                     "Socket LGA1151",
                     "Socket BGA1356",
                     "Socket BGA1440",
                     "Socket BGA1515",
                     "Socket LGA3647-1",
                     "Socket SP3",
                     "Socket SP3r2",
                     "Socket LGA2066",
                     "Socket BGA1392",
                     "Socket BGA1510",
                     "Socket BGA1528"}}
    });
}

TEST(Type4, RendersVoltageHandlesAndCharacteristics) {
    const struct {
        size_t offset;
        uint16_t value;
        const char *key, *text;
    } kCases[] = {
        {0x11, 0x00,   "Voltage",                   "None"                                                  },
        {0x11, 0x08,   "Voltage",                   "None"                                                  },
        {0x11, 0x80,   "Voltage",                   "None"                                                  },
        {0x11, 0x03,   "Voltage",                   "5.0V"                                                  },
        {0x11, 0x06,   "Voltage",                   "3.3V"                                                  },
        {0x11, 0x04,   "Voltage",                   "2.9V"                                                  },
        {0x11, 0xFF,   "Voltage",                   "12.7V"                                                 },
        {0x11, 0x85,   "Voltage",                   "0.5V"                                                  },
        {0x1A, 0,      "L1 Cache Handle",           "00 "                                                   },
        {0x1A, 0xFFFF, "L1 Cache Handle",           "65535 (No L1 handle or No cache information structure)"},
        {0x1C, 0xFFFF, "L2 Cache Handle",           "65535 (No L2 handle or No cache information structure)"},
        {0x1E, 100,    "L3 Cache Handle",           "100 "                                                  },
        {0x26, 0x0000, "Processor Characteristics", "None"                                                  },
        {0x26, 0x0002, "Processor Characteristics", ""                                                      },
        {0x26, 0xFF00, "Processor Characteristics", ""                                                      },
        {0x26, 0xFFF3, "Processor Characteristics",
         "Hardware Thread |Execute Protection |Enhanced Virtualization |Power/Performance Control |"        },
    };
    for (const auto& c : kCases) {
        ClStructureBuilder processor(kProcessor);
        if (c.offset == 0x11)
            processor.Byte(c.offset, static_cast<uint8_t>(c.value));
        else
            processor.Word(c.offset, c.value);
        EXPECT_EQ(Decode(processor).Text(c.key), c.text) << c.key << " " << c.value;
    }
}

TEST(Type4, ReadsZeroBehindItsLength) {
    // The string's bytes must not show as numbers.
    const ClItems items = Decode(ClStructureBuilder(4, 0x1A).Byte(0x04, 1).Strings({"AAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"}));
    EXPECT_EQ(items.Count(), 30u);
    EXPECT_EQ(items.Text("L1 Cache Handle"), "00 ");
    EXPECT_EQ(items.Text("Serial Number"), "None");
    EXPECT_EQ(items.Text("Processor Family 2"), "Unknown");
    EXPECT_EQ(items.Text("Thread Count 2"), "0");
    // The identification is two fields: a structure may end between them.
    EXPECT_EQ(Decode(ClStructureBuilder(4, 0x0C).Dword(0x08, 0x1234)).Text("Processor ID"), "00000000h 1234h");
    EXPECT_EQ(Decode(ClStructureBuilder(4, 0x1A).Byte(0x04, 1)).Text("Socket Designation"), "(null string)");
}

}  // namespace
