// The machine on one screen, and the values of keywords and keys.
#include <gtest/gtest.h>

#include <algorithm>

#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

// Two equal processors with their caches, an empty socket with one, and fillers. Seven kinds of modules and slots.
std::vector<ClStructureBuilder> Server() {
    std::vector<ClStructureBuilder> table = {
        ClStructureBuilder(0, 0x1A)
            .Bytes(4, {1, 2})
            .Byte(0x13, 0x18)
            .Bytes(0x14, {5, 27, 255, 255})
            .Strings({"Maker", "Maker 5.27"}),
        ClStructureBuilder(1, 0x1B)
            .Bytes(4, {1, 2, 3, 4})
            .Bytes(8, {0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0, 7, 0, 8, 0, 9})
            .Strings({"Maker", "  Model   1 ", "Default string", "12345678"}),
        ClStructureBuilder(2, 0x0F).Bytes(4, {0, 1}).Byte(0x0D, 0x0B).Strings({"Riser"}),
        ClStructureBuilder(2, 0x0F).Bytes(4, {0, 1}).Byte(0x0D, 0x0A).Strings({"Main board"}),
    };
    for (uint16_t socket = 0; socket < 3; socket++) {
        const auto cache = static_cast<uint16_t>(0x700 + socket);
        table.push_back(ClStructureBuilder(4, 0x30, socket)
                            .Byte(5, 3)
                            .Byte(6, 0xB3)
                            .Byte(0x10, 1)
                            .Word(0x16, 2500)
                            .Byte(0x18, socket == 2 ? 0 : 0x41)
                            .Word(0x1A, cache)
                            .Word(0x1C, 0xFFFF)
                            .Bytes(0x23, {0xFF, 0xFF, 8})
                            .Word(0x2A, 300)
                            .Word(0x2C, 280)
                            .Strings({"CPU  X"}));
        table.push_back(ClStructureBuilder(7, 0x13, cache).Word(5, 0x0180).Word(9, 0x8010).Byte(0x11, 4));
    }
    table.push_back(
        ClStructureBuilder(16, 0x17, 0x1000).Bytes(4, {3, 3, 6}).Dword(7, 0x80000000).Qword(15, 1ull << 40));
    table.push_back(ClStructureBuilder(16, 0x17, 0x1001).Bytes(4, {3, 5, 3}).Dword(7, 8192));
    const auto device = [&](uint16_t array, uint16_t size, uint8_t type, uint16_t speed, const std::string& part) {
        table.push_back(ClStructureBuilder(17, 0x28)
                            .Word(4, array)
                            .Word(12, size)
                            .Byte(14, 9)
                            .Byte(0x12, type)
                            .Word(0x15, speed)
                            .Word(0x20, 4800)
                            .Byte(0x1A, 1)
                            .Strings({part}));
    };
    for (const uint16_t size : std::initializer_list<uint16_t>{16384, 16384, 8192, 4096, 2048, 1024, 512, 256, 0})
        device(0x1000, size, 0x22, size == 512 ? 4800 : 5600, size == 256 ? "NO DIMM" : "Part");
    device(0x1001, 8, 9, 0, "Flash");
    for (const uint8_t type : std::initializer_list<uint8_t>{0xB6, 0xB6, 0xB1})
        table.push_back(ClStructureBuilder(9, 0x11).Bytes(5, {type, 0x0B, static_cast<uint8_t>(type == 0xB1 ? 4 : 3)}));
    return table;
}

constexpr char kServerText[] =
    "System      Maker Model 1, virtual machine\n"
    "Board       Main board\n"
    "Firmware    Maker 5.27, UEFI, 64 KiB ROM\n"
    "Processors  2 of 3 sockets used, 600 cores\n"
    "            2 x CPU X, 300 cores, 280 enabled, 2500 MHz\n"
    "Caches      L1 Data 2 x 1 MiB\n"
    "Memory      48896 MiB installed, 1 TiB maximum, 8 of 9 slots used, Multi-bit ECC\n"
    "            2 x 16 GiB DDR5-5600 at 4800 MT/s Part\n"
    "            8 GiB DDR5-5600 at 4800 MT/s Part\n"
    "            4 GiB DDR5-5600 at 4800 MT/s Part\n"
    "            2 GiB DDR5-5600 at 4800 MT/s Part\n"
    "            1 GiB DDR5-5600 at 4800 MT/s Part\n"
    "            512 MiB DDR5-4800 Part\n"
    "            and 1 more\n"
    "Slots       3 in all, 1 in use, 2 free\n"
    "            2 x PCI Express Gen 3 x16 (x8): 2 free\n"
    "            PCI Express Gen 3 x8: 1 in use\n";

// Unlike the text, it has what isn't known as null.
constexpr char kServerJson[] =
    R"("smbios":"3.4","system":{"manufacturer":"Maker","product_name":"Model 1","version":null,"serial_number":null,)"
    R"("uuid":null,"sku_number":null,"family":null},"chassis":{"type":null,"manufacturer":null,)"
    R"("serial_number":null,"asset_tag":null,"height":null},"board":{"manufacturer":null,"product":"Main board",)"
    R"("version":null,"serial_number":null,"asset_tag":null},"firmware":{"vendor":"Maker","version":"Maker 5.27",)"
    R"("release_date":null,"release":"5.27","rom_size":65536,"is_uefi":true,"is_virtual_machine":true},)"
    R"("processors":{"sockets":3,"used":2,"cores":600,"threads":null,"models":[{"count":2,"version":"CPU X",)"
    R"("manufacturer":null,"family":"Intel® Xeon® processor","cores":300,"cores_enabled":280,"threads":null,)"
    R"("current_speed":2500,"max_speed":null}]},"caches":[{"count":2,"level":1,"type":"Data","size":1048576}],)"
    R"("memory":{"installed":51271172096,"maximum":1099511627776,"slots":9,"used":8,"free":1,)"
    R"("error_correction":"Multi-bit ECC","modules":[{"count":2,"size":17179869184,"type":"DDR5",)"
    R"("form_factor":"DIMM","speed":5600,"configured_speed":4800,"manufacturer":null,"part_number":"Part"},)";

TEST(Summary, OfAServer) {
    const std::string image = WriteFile("server.bin", DumpOf(TableOf(Server()), 3, 4, 32));
    EXPECT_EQ(RunQuorlin("summary " + image).output, kServerText);
    const std::string json = RunQuorlin("summary --format ndjson " + image).output;
    EXPECT_NE(json.find(kServerJson), json.npos) << json;
}

TEST(Summary, OfTheSample) {
    const std::string text = RunQuorlin("summary --sample").output;
    EXPECT_EQ(text.substr(0, text.find("Caches")),
              "System      Halvorsen Systems Fjelltind 2440, version Rev C\n"
              "            serial number HV24-0811-00417, SKU FT-2440-2S, UUID 0710004c-e15a-0f41-9b02-001dc3884ef1\n"
              "Chassis     Rack Mount Chassis, 2 U, serial number CH24-0050092, asset tag HV-A-1147\n"
              "Board       Halvorsen Systems FT-2440-MB, version C02, serial number MB24-0007731\n"
              "Firmware    Halvorsen Systems HVB2.14.0308, 2024-03-08, 32 MiB ROM\n"
              "Processors  3 of 4 sockets used, 364 cores\n"
              "            Lumetra(R) Ostrel(R) 8340 @ 2.40GHz, 32 cores, 64 threads, 2400 MHz\n"
              "            Lumetra(R) Ostrel(R) 8340 @ 2.40GHz, 32 cores, 28 enabled, 56 threads, 2400 MHz\n"
              "            Sidecar 2 service processor, 300 cores, 2 enabled, 800 MHz\n");
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 30);
}

// Tables from before memory devices, and tables with next to nothing.
TEST(Summary, OfOldAndEmptyTables) {
    const std::string old =
        WriteFile("old.bin",
                  DumpOf(TableOf({ClStructureBuilder(6, 12, 1).Byte(9, 7), ClStructureBuilder(6, 12, 2).Byte(9, 0x7F)}),
                         2, 0, 32));
    EXPECT_EQ(RunQuorlin("summary " + old).output, "Memory  128 MiB installed, 1 of 2 slots used\n        128 MiB\n");
    const std::string none = WriteFile("none.bin", DumpOf(TableOf({ClStructureBuilder(4, 6)}), 2, 0, 32));
    EXPECT_EQ(RunQuorlin("summary " + none).output, "");
}

// JSON has so many groups at most, and says how many more there are.
TEST(Summary, OfTooManyKinds) {
    std::vector<ClStructureBuilder> table;
    for (uint16_t size = 1; size <= 1003; size++) table.push_back(ClStructureBuilder(17, 0x15, size).Word(0x0C, size));
    const std::string image = WriteFile("kinds.bin", DumpOf(TableOf(table), 3, 4, 32));
    const std::string json = RunQuorlin("summary --format ndjson " + image).output;
    EXPECT_NE(json.find(R"("used":1003,)"), json.npos);
    EXPECT_NE(json.find(R"("size":1048576000,)"), json.npos);
    EXPECT_EQ(json.find(R"("size":1049624576,)"), json.npos);
    EXPECT_NE(json.find(R"("left_out":{"models":0,"caches":0,"modules":3,"slots":0}})"), json.npos);
}

TEST(Get, KeywordsAndKeys) {
    const std::string image =
        " --image " +
        WriteFile("keywords.bin",
                  DumpOf(TableOf({ClStructureBuilder(0, 0x16)
                                      .Bytes(4, {1, 9, 0, 0, 0})
                                      .Bytes(0x14, {1, 2})
                                      .Strings({"caf\xC3\xA9 \x1b[1m "}),
                                  ClStructureBuilder(1, 0x19).Bytes(8, {0x12, 0x34, 0x56, 0x78, 1, 2, 3, 4}),
                                  ClStructureBuilder(3, 9).Byte(5, 0x97), ClStructureBuilder(3, 9).Byte(5, 0x7F),
                                  ClStructureBuilder(4, 0x1A).Byte(6, 0xB5).Word(0x16, 2400),
                                  ClStructureBuilder(4, 0x1A).Byte(6, 0xBE), ClStructureBuilder(5, 16).Byte(8, 13)}),
                         2, 31, 32));
    const struct {
        const char* words;
        int exitCode;
        const char* output;
    } kCases[] = {
        {"bios-vendor",                  0, "caf.. .[1m \n"                         },
        {"bios-version",                 0, "<BAD INDEX>\n"                         },
        {"bios-release-date",            0, "Not Specified\n"                       },
        {"bios-revision",                0, "1.2\n"                                 },
 // 2.31 is 2.3.1, before the order of its bytes changed.
        {"system-uuid",                  0, "12345678-0102-0304-0000-000000000000\n"},
        {"system-family",                1, ""                                      },
        {"chassis-type",                 0, "Rack Mount Chassis\n<OUT OF SPEC>\n"   },
        {"processor-family",             0, "Xeon MP\n<OUT OF SPEC>\n"              },
        {"processor-frequency",          0, "2400 MHz\nUnknown\n"                   },
        {"nothing",                      2, ""                                      },
        {"bios-vendor key",              2, ""                                      },
        {"bios-vendor --instance 1",     2, ""                                      },
        {"4 current_speed",              0, "2400\n"                                },
        {"4 current_speed --instance 2", 1, ""                                      },
        {"5 maximum_memory_module_size", 0, "8589934592\n"                          },
        {"17 memory_size",               1, ""                                      },
    };
    for (const auto& c : kCases) {
        const ProgramRun_t run = RunQuorlin("get " + (c.words + image));
        EXPECT_EQ(run.exitCode, c.exitCode) << c.words << run.errors;
        EXPECT_EQ(run.output, c.output) << c.words;
    }
    EXPECT_EQ(RunQuorlin("-s processor-frequency" + image).output, "2400 MHz\nUnknown\n");
    for (const char* wrong : {"-s nothing", "-s bios-vendor --type 0", "-s bios-vendor --format json"})
        EXPECT_EQ(RunQuorlin(wrong + image).exitCode, 2) << wrong;
}

}  // namespace
