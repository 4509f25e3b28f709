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
    // The place of a problem; empty if there is none.
    const auto place = [](const std::string& problem) { return problem.substr(0, problem.find(':')); };
    for (const std::string& text : {name + "    0000: 41 42\n", name + "    0000: aa", name + row, std::string()})
        EXPECT_EQ(Acpi(text), "") << text;
    EXPECT_EQ(place(Acpi(row)), "line 1") << "bytes without a table";
    EXPECT_EQ(place(Acpi(name)), "line 1") << "a table without bytes";
    EXPECT_EQ(place(Acpi(name + "\n" + name + row)), "line 2") << "two, the first empty";
    EXPECT_EQ(place(Acpi("FACPS @ 0x0\n" + row)), "line 1") << "a name of five letters";
    EXPECT_EQ(place(Acpi(name + row + row)), "line 3") << "a row twice";
    EXPECT_EQ(place(Acpi(name + "    0000: 41\n    0001: 41\n")), "line 3") << "a row after a short one";
    for (const char* digits : {"4", "4G", " ABC", "", "-1"})
        EXPECT_EQ(place(Acpi(name + "    0000: " + digits + "\n")), "line 2") << digits;
    EXPECT_EQ(place(Acpi(name + row.substr(0, 57) + " 00\n")), "line 2") << "17 bytes";

    for (const std::string& text : {space, "ffff:" + space, space + "\n0001:" + space, std::string()})
        EXPECT_EQ(Pci(text), "") << text;
    EXPECT_EQ(place(Pci(space + "\n" + space)), "line 7") << "twice";
    EXPECT_EQ(place(Pci("0001:" + space + "\n" + space)), "line 7") << "falling";
    for (const char* head : {"00:20.0\n", "00:1f.8\n", "0:00.0\n", "00:00\n", "00:00.0ISA\n", ": 00\n"})
        EXPECT_EQ(place(Pci(head + space.substr(24))), "line 1") << head;
    EXPECT_EQ(place(Pci(space.substr(0, 24 + 3 * 52))), "line 4") << "48 bytes";
    EXPECT_EQ(place(Pci(space + "40" + bytes + "\n")), "line 7") << "80 bytes";
    EXPECT_EQ(place(Pci(space.substr(0, 24) + "10" + bytes)), "line 2") << "a row left out";
    EXPECT_EQ(place(Pci("00:00.0\n00: 11" + bytes.substr(1))), "line 2") << "17 bytes";

    const std::string processor = "CPU 0:\n";
    for (const std::string& text : {processor, processor + zero, processor + zero + "CPU 1:\n" + zero})
        EXPECT_EQ(Cpuid(text), "") << text;
    EXPECT_EQ(place(Cpuid(zero)), "line 1") << "no processor";
    EXPECT_EQ(place(Cpuid("CPU 1:\n" + zero)), "line 1") << "the second first";
    EXPECT_EQ(place(Cpuid(processor + zero + zero)), "line 3") << "a leaf twice";
    EXPECT_EQ(place(Cpuid(processor + zero.substr(0, 66) + "\n")), "line 2") << "a register left out";
    EXPECT_EQ(place(Cpuid(processor + "\n" + zero)), "line 2") << "an empty line";

    EXPECT_EQ(Msr(apic + "0x0000001b 1 refused\n"), "");
    EXPECT_EQ(place(Msr("0x0000001b 0 fee00900\n")), "line 1") << "a short value";
    EXPECT_EQ(place(Msr(apic + apic)), "line 2") << "twice";
    EXPECT_EQ(place(Msr(apic + "0x0000001c 0 refused!\n")), "line 2") << "another word";
}

// A file of the size that is taken needs no more memory for its items than for its text.
TEST(RecordForms, ItemsAreLimited) {
    const auto number = [](size_t value) { return std::to_string(value); };
    std::string tables, processors, registers;
    for (size_t i = 0; i <= 4096; i++) {
        tables += "FACP @ 0x0\n    0000: 41\n\n";
        processors += "CPU " + number(i) + ":\n";
    }
    for (size_t i = 0; i <= 1u << 20; i++) registers += "0x00000010 " + number(i) + " refused\n";
    EXPECT_EQ(Acpi(tables), "line 12289: too many tables");
    EXPECT_EQ(Cpuid(processors), "line 4097: too many processors");
    EXPECT_EQ(Msr(registers), "line 1048577: too many registers");
    EXPECT_EQ(Acpi(tables.substr(0, tables.size() - 26)), "");
    EXPECT_EQ(Cpuid(processors.substr(0, processors.find("CPU 4096"))), "");
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
