// The text forms of a record: round trips, what other tools write, and damage.
#include <gtest/gtest.h>

#include <functional>

#include "Packages/Format/AcpiDat.h"
#include "Packages/Format/CpuidDump.h"
#include "Packages/Format/MsrDump.h"
#include "Packages/Format/PciDump.h"

namespace {

std::vector<uint8_t> Bytes(size_t size) {
    std::vector<uint8_t> bytes(size);
    for (size_t place = 0; place < size; place++) bytes[place] = static_cast<uint8_t>(place * 7 + size);
    return bytes;
}

template <class Items, class Parse>
Items Parsed(const std::string& text, const Parse& parse) {
    Items items;
    EXPECT_EQ(parse(text, &items), "") << text;
    return items;
}

TEST(RecordForms, ComeBackAsTheyWere) {
    const std::vector<AcpiTable_t> tables = {
        {"FACP", Bytes(1)      },
        {"SSDT", Bytes(16)     },
        {"SSDT", Bytes(0x10011)},
        {"a!~#", Bytes(37)     }
    };
    EXPECT_EQ(Parsed<std::vector<AcpiTable_t>>(WriteAcpiDat(tables), ParseAcpiDat), tables);
    const std::vector<PciFunction_t> functions = {
        {0x00000000, Bytes(64)  },
        {0x0000E000, Bytes(128) },
        {0x00001FFF, Bytes(256) },
        {0xFFFF0001, Bytes(4096)}
    };
    EXPECT_EQ(Parsed<std::vector<PciFunction_t>>(WritePciDump(functions), ParsePciDump), functions);
    const std::vector<CpuidLeaves_t> processors = {
        {{0, 0, 1, 2, 3, 4},               {7, 0, 5, 6, 7, 8}, {7, 0x1FF, UINT32_MAX, 0, 0, 0}},
        {                               },
        {{0x80000000, 0, 9, 9, 9, 9}     }
    };
    EXPECT_EQ(Parsed<std::vector<CpuidLeaves_t>>(WriteCpuidDump(processors), ParseCpuidDump), processors);
    const std::vector<RecordedMsr_t> registers = {
        {0x1B,       0, 0xFEE00900  },
        {0x1B,       1, std::nullopt},
        {0xC0000080, 0, UINT64_MAX  }
    };
    EXPECT_EQ(Parsed<std::vector<RecordedMsr_t>>(WriteMsrDump(registers), ParseMsrDump), registers);
}

std::string Acpi(const std::string& text) {
    std::vector<AcpiTable_t> tables;
    return ParseAcpiDat(text, &tables);
}
std::string Pci(const std::string& text) {
    std::vector<PciFunction_t> functions;
    return ParsePciDump(text, &functions);
}
std::string Cpuid(const std::string& text) {
    std::vector<CpuidLeaves_t> processors;
    return ParseCpuidDump(text, &processors);
}
std::string Msr(const std::string& text) {
    std::vector<RecordedMsr_t> registers;
    return ParseMsrDump(text, &registers);
}

TEST(RecordForms, DamageIsNamedWithItsLine) {
    const std::string row = "    0000: 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F  ................\n",
                      name = "FACP @ 0x0\n";
    std::string space = "00:1f.0 ISA bridge: Any\n";
    const std::string bytes = ": 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n";
    for (const char* offset : {"00", "10", "20", "30"}) space += offset + bytes;
    const std::string zero = "   0x00000000 0x00: eax=0x00000001 ebx=0x00000002 ecx=0x00000003 edx=0x00000004\n";
    const std::string apic = "0x0000001b 0 00000000fee00900\n";
    const struct {
        const char* what;
        std::string (*parse)(const std::string& text);
        std::string text, problem;
    } kCases[] = {
        {"bytes without text",                 Acpi,           name + "    0000: 41 42\n",            ""},
        {"lower case, no end",                 Acpi,           name + "    0000: aa",                 ""},
        {"bytes without a table",              Acpi,           row,                                   "line 1"},
        {"a table without bytes",              Acpi,           name,                                  "line 1"},
        {"two, the first empty",               Acpi,           name + "\n" + name + row,              "line 2"},
        {"a name of five letters",             Acpi,           "FACPS @ 0x0\n" + row,                 "line 1"},
        {"a row twice",                        Acpi,           name + row + row,                      "line 3"},
        {"a row after a short",                Acpi,           name + "    0000: 41\n    0001: 41\n", "line 3"},
        {"one digit",                          Acpi,           name + "    0000: 4\n",                "line 2"},
        {"no digits",                          Acpi,           name + "    0000: 4G\n",               "line 2"},
        {"no bytes in a row",                  Acpi,           name + "    0000:  ABC\n",             "line 2"},
        {"a long row",                         Acpi,           name + row.substr(0,                   57) + " 00\n","line 2"},
        {"without a segment",                                    Pci,                                space,                               ""},
        {"with one",                                    Pci,                                         "ffff:" + space,                                        ""},
        {"twice",                                    Pci,                                            space + "\n" + space,                                           "line 7"},
        {"falling",                                    Pci,                                          "0001:" + space + "\n" + space,                                         "line 7"},
        {"device 32",                                    Pci,                                        "00:20.0\n" + space.substr(24),                                       "line 1"},
        {"function 8",                                    Pci,                                       "00:1f.8\n" + space.substr(24),                                      "line 1"},
        {"48 bytes",                                    Pci,                                         space.substr(0,                                        24 + 3 * 52),"line 4"},
        {"80 bytes",                            Pci,                                          space + "40" + bytes + "\n",                                                                      "line 7"                                  },
        {"a row left out",                            Pci,                                          space.substr(0,24) + "10" + bytes,"line 2"},
        {"17 bytes",                  Pci,                        "00:00.0\n00: 11" + bytes.substr(1),                                                                   "line 2"                                                                                                                               },
        {"a processor", Cpuid,"CPU 0:\n" + zero,""},
        {"no processor",                   Cpuid,                                                zero,                                                                                                                                   "line 1"                                                                                                                                                                                                                                                                                                              },
        {"the second first",                                Cpuid,"CPU 1:\n" + zero,"line 1"},
        {"a leaf twice",                   Cpuid,                                   "CPU 0:\n" + zero + zero,                                                                                                                                                                               "line 3"                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                       },
        {"a register left out",            Cpuid,"CPU 0:\n" + zero.substr(0,66) + "\n","line 2"},
        {"an empty line",          Cpuid,                               "CPU 0:\n\n" + zero,                                                                                                                                                                                                                      "line 2"                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                          },
        {"a register",                      Msr,apic,""},
        {"a refused one",            Msr,                                    "0x0000001b 0 refused\n",                                                                                                                                                                                                                                                                             ""                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                            },
        {"a short value",                      Msr,"0x0000001b 0 fee00900\n","line 1"},
        {"twice",            Msr,                         apic + apic,                                                                                                                                                                                                                                                                                                                       "line 2"                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                                   },
        {"another word",                      Msr, apic + "0x0000001c 0 refused!\n","line 2"},
    };
    for (const auto& c : kCases) {
        const std::string problem = c.parse(c.text);
        EXPECT_EQ(problem.substr(0, problem.find(':')), c.problem) << c.what << ": " << problem;
    }
}

// Each capability is visited once, and a list that bites its tail ends.
TEST(RecordForms, ExtendedCapabilitiesEnd) {
    std::vector<uint8_t> bytes(4096);
    const auto put = [&bytes](size_t place, uint16_t number, uint16_t next) {
        const uint32_t head = uint32_t{next} << 20 | 1u << 16 | number;
        for (size_t i = 0; i < 4; i++) bytes[place + i] = static_cast<uint8_t>(head >> 8 * i);
    };
    const auto list = [&bytes] {
        std::string text;
        ForEachExtendedCapability(bytes, [&](size_t offset, uint32_t number) {
            text.append(std::to_string(number)).append("@").append(std::to_string(offset)).append(" ");
        });
        return text;
    };
    EXPECT_EQ(list(), "");
    put(0x100, 1, 0x140);
    put(0x140, 3, 0xFFC);
    put(0xFFC, 9, 0);
    EXPECT_EQ(list(), "1@256 3@320 9@4092 ");
    put(0xFFC, 9, 0x40);
    EXPECT_EQ(list(), "1@256 3@320 9@4092 ");
    put(0xFFC, 9, 0x100);
    EXPECT_LT(list().size(), 8192u);
    bytes.resize(256);
    EXPECT_EQ(list(), "");
}

}  // namespace
