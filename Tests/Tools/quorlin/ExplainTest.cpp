// Each byte of a structure next to the fact that it holds.
#include <gtest/gtest.h>

#include <sstream>

#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

ProgramRun_t Explain(const std::string& what, const std::vector<uint8_t>& table) {
    return RunQuorlin("explain " + what + " --as table --image " + WriteFile("explain.bin", table));
}

// The bytes of all lines, in their order.
std::vector<uint8_t> ShownBytes(const std::string& output) {
    std::vector<uint8_t> bytes;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("  ") || line.size() < 8 || line[2] == ' ') continue;
        const size_t begin = line.find("  ", 2) + 2;
        for (size_t place = begin; place + 1 < line.size() && line[place] != ' '; place += 3)
            bytes.push_back(static_cast<uint8_t>(std::stoul(line.substr(place, 2), nullptr, 16)));
    }
    return bytes;
}

TEST(Explain, ShowsEveryByteOnce) {
    const std::vector<uint8_t> all = TableOfAllTypes(5);
    EXPECT_EQ(ShownBytes(Explain("0-255", all).output), all);
    // Cut off in the strings, in the formatted area and in the header; and with lengths below a header's.
    const std::vector<uint8_t> whole = TableOf({ClStructureBuilder(1, 27).String(4, "Maker").String(5, "Product")});
    for (const size_t size : {whole.size() - 7, whole.size() - 8, size_t{30}, size_t{20}, size_t{6}, size_t{5}}) {
        const std::vector<uint8_t> cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        EXPECT_EQ(ShownBytes(Explain("0-255", cut).output), cut) << size;
    }
    for (uint8_t length = 0; length < 4; length++) {
        const std::vector<uint8_t> tooShort = {11, length, 'a', 'b', 'c', 0, 'd', 0, 0, 127, 4, 0, 0, 0, 0};
        EXPECT_EQ(ShownBytes(Explain("0-255", tooShort).output), tooShort) << unsigned{length};
    }
}

TEST(Explain, TellsWhatBytesSay) {
    const std::vector<uint8_t> table =
        TableOf({ClStructureBuilder(17, 0x1E, 0x1100)
                     .Word(4, 0x1000)
                     .Word(6, 0xFFFE)
                     .Word(8, 0xFFFF)
                     .Word(0x0C, 0x7FFF)
                     .Byte(0x12, 0x99)
                     .Byte(0x1B, 2)
                     .Bytes(0x10, {1, 1})
                     .Byte(0x17, 2)
                     .Byte(0x18, 3)
                     .Strings({"DIMM A1", "Default string"}),
                 ClStructureBuilder(14, 9, 0x0E00).Byte(4, 1).Bytes(5, {17, 0x00, 0x11, 0xAA}).Strings({"Group"})});
    EXPECT_EQ(Explain("0x1100", table).output,
              "Memory Device, handle 1100h, at offset 0h\n"
              "  0000  11                       Type: 17\n"
              "  0001  1E                       Length: 30\n"
              "  0002  00 11                    Handle: 1100h\n"
              "  0004  00 10                    Physical Memory Array Handle: 1000h (broken)\n"
              "  0006  FE FF                    Memory Error Information Handle: not provided\n"
              "  0008  FF FF                    Total Width: unknown\n"
              "  000A  00 00                    Data Width: 0 bit\n"
              "  000C  FF 7F                    Size: see Extended Size\n"
              "  000E  00                       Form Factor: reserved (0x0)\n"
              "  000F  00                       Device Set: not part of a set\n"
              "  0010  01                       Device Locator: string 1, DIMM A1\n"
              "  0011  01                       Bank Locator: string 1, DIMM A1\n"
              "  0012  99                       Memory Type: reserved (0x99)\n"
              "  0013  00 00                    Type Detail: none set\n"
              "  0015  00 00                    Speed: unknown\n"
              "  0017  02                       Manufacturer: string 2, Default string (filler)\n"
              "  0018  03                       Serial Number: string 3, broken\n"
              "  0019  00                       Asset Tag: none\n"
              "  001A  00                       Part Number: none\n"
              "  001B  02                       Attributes: 0x2\n"
              "                                   Rank: 2\n"
              "  001C  00 00                    (part of Extended Size, which the structure is too short for)\n"
              "  001E  44 49 4D 4D 20 41 31 00  String 1, Device Locator and Bank Locator: DIMM A1\n"
              "  0026  44 65 66 61 75 6C 74 20  String 2, Manufacturer: Default string\n"
              "  002E  73 74 72 69 6E 67 00\n"
              "  0035  00                       End of the structure\n"
              "                                 Memory Size: 32767 MiB, from size and extended_size\n"
              "                                 Memory Speed: unknown, from speed and extended_speed\n");
    EXPECT_EQ(Explain("14", table).output,
              "Group Associations, handle 0E00h, at offset 36h\n"
              "  0000  0E                       Type: 14\n"
              "  0001  09                       Length: 9\n"
              "  0002  00 0E                    Handle: 0E00h\n"
              "  0004  01                       Group Name: string 1, Group\n"
              "                                   Items: 1\n"
              "  0005  11                       1. Item Type: 17\n"
              "  0006  00 11                    1. Item Handle: 1100h\n"
              "  0008  AA                       (no field of the standard)\n"
              "  0009  47 72 6F 75 70 00        String 1, Group Name: Group\n"
              "  000F  00                       End of the structure\n");
}

TEST(Explain, TakesAHandleOrTypes) {
    const auto begins = [](const std::string& what, const char* begin) {
        const ProgramRun_t run = RunQuorlin("explain --sample " + what);
        EXPECT_TRUE(run.output.starts_with(begin)) << what << "\n" << run.output.substr(0, 80) << run.errors;
    };
    begins("4", "Processor Information, handle 0400h");
    begins("0x400", "Processor Information, handle 0400h");
    begins("0X400", "Processor Information, handle 0400h");
    begins("400h", "Processor Information, handle 0400h");
    begins("1024", "Processor Information, handle 0400h");
    begins("cache", "Cache Information");
    begins("17,4", "Processor Information");
    for (const char* missing : {"200", "0xFFF0", "60000"})
        EXPECT_EQ(RunQuorlin(std::string("explain --sample ") + missing).exitCode, 1) << missing;
    for (const char* wrong : {"", "70000", "0x10000", "4-", "nothing", "ab", "010h 4"})
        EXPECT_EQ(RunQuorlin(std::string("explain --sample ") + wrong).exitCode, 2) << wrong;
}

}  // namespace
