// The host program from outside: its exit codes, its error lines, the files that it takes, its formats.
#include <gtest/gtest.h>

#include <algorithm>

#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

using Bytes_t = std::vector<uint8_t>;

const Bytes_t kTable =
    TableOf({ClStructureBuilder(3, 0x15, 7).Bytes(4, {1, 3}).Strings({"Maker"}), ClStructureBuilder(13, 0x16)});

Bytes_t Cut(Bytes_t bytes, size_t size) {
    bytes.resize(size);
    return bytes;
}

TEST(Program, TakesEveryFormOfImage) {
    const Bytes_t dump = DumpOf(kTable, 2, 7, 32);
    Bytes_t longer = dump;
    longer.resize(longer.size() + 99, 0x20);
    const struct {
        const char* what;
        Bytes_t bytes;
    } kCases[] = {
  // clang-format off
        {"_SM_ with the table at 32",             dump                           },
        {"the address is an offset in the file",  DumpOf(kTable, 3, 2, 64, 64)   },
        {"the address is a physical one",         DumpOf(kTable, 2, 7, 0xF1230)  },
        {"the address lies in the entry point",   DumpOf(kTable, 2, 7, 5)        },
        {"bytes behind the table's length",       longer                         },
        {"cut behind the first structure",        Cut(dump, 32 + 0x15 + 7 + 9)   },
  // clang-format on
    };
    for (const auto& c : kCases) {
        const ProgramRun_t run = RunQuorlin("get 3 Manufacturer --image " + WriteFile("image.bin", c.bytes));
        EXPECT_EQ(run.exitCode, 0) << c.what;
        EXPECT_EQ(run.output, "Maker\n") << c.what;
        EXPECT_EQ(run.errors.find("truncated") != run.errors.npos, std::string_view(c.what).starts_with("cut"))
            << c.what;
    }
}

TEST(Program, ExitsWithOneLineThatSaysWhy) {
    const std::string missing = testing::TempDir() + "no-such-file";
    const std::string empty = WriteFile("empty", {}), text = WriteFile("text", Bytes_t(1000, 'a')),
                      cut = WriteFile("cut", Cut(kTable, 20)),
                      entryAlone = WriteFile("entry", Cut(DumpOf(kTable, 2, 7, 32), 32));
    const struct {
        std::string arguments;
        int exitCode;
        const char* says;  // in its one line on standard error
    } kCases[] = {
        {"--image " + missing,                                     1, "No such file"         },
        {"--image " + testing::TempDir(),                          1, ""                     },
        {"--image " + empty,                                       1, "empty"                },
        {"--image " + text,                                        1, "not a table"          },
        {"--image " + cut,                                         1, "not a table"          },
        {"--image " + entryAlone,                                  1, "truncated"            },
        {"--sampl",                                                2, "--sampl"              },
        {"--sample extra",                                         2, "extra"                },
        {"--sample --image " + missing,                            2, "exclude"              },
        {"--sample --type 255",                                    2, "255"                  },
        {"--sample --type x",                                      2, "x"                    },
        {"--sample --format xml",                                  2, "xml"                  },
        {"--sample --smbios-version 3",                            2, "3.0"                  },
        {"--sample --signature 12G",                               2, "hexadecimal"          },
        {"get 3 Makers --sample",                                  1, "--type 3"             },
        {"shwo",                                                   2, "try quorlin --help"   },
 // What would write, or is not understood, ends before the hardware library is opened.
        {"hw msr write 16",                                        2, "needs --write VALUE"  },
        {"hw msr write 16 --write 1",                              2, "takes both"           },
        {"hw msr write 16 --yes-write-hardware",                   2, "takes both"           },
        {"hw port write 0x80 1 --write 1",                         2, "takes both"           },
        {"hw mem 0xFED00000 4 --write 1",                          2, "takes both"           },
        {"hw cpuid 0 --write 1 --yes-write-hardware",              2, "writes nothing"       },
        {"hw pci 0000:00:03.0 2 5 --write 1 --yes-write-hardware", 2, "writes nothing"       },
        {"hw cpuid",                                               2, "takes other arguments"},
        {"hw cpuids 0",                                            2, "is no operation"      },
        {"hw pci 0000:00:20.0 2 5",                                2, "is no PCI function"   },
        {"hw pci 00:03.0 2 5",                                     2, "is no PCI function"   },
        {"hw cpuid 0 --cpu 256",                                   2, "no processor number"  },
    };
    for (const auto& c : kCases) {
        const ProgramRun_t run = RunQuorlin(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.arguments;
        EXPECT_EQ(run.output, "") << c.arguments;
        EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1) << c.arguments << ": " << run.errors;
        EXPECT_EQ(run.errors.substr(0, 9), "quorlin: ") << c.arguments;
        EXPECT_NE(run.errors.find(c.says), std::string::npos) << c.arguments << ": " << run.errors;
    }
}

TEST(Program, ShowsTypesInTheOrderAskedFor) {
    const std::string image = WriteFile("image.bin", kTable);
    const ProgramRun_t run = RunQuorlin("--format lines --type 13 --type 3 --image " + image);
    EXPECT_LT(run.output.find("{Type 13}"), run.output.find("{Type 3}"));
}

TEST(Program, FormatsTextForPeople) {
    const ProgramRun_t run = RunQuorlin("--type 0 --sample");
    EXPECT_EQ(run.output.substr(0, run.output.find("  BIOS Vendor")),
              "BIOS Information {Type 0}\n  Type                      0\n  Length                    26\n"
              "  Handle                    0\n");
    EXPECT_NE(run.output.find("\n  BIOS Characteristics\n    BIOS Characteristics Not Supported  "), std::string::npos);
    EXPECT_NE(run.output.find("\n\nBIOS Information {Type 0}_2\n"), std::string::npos);
    EXPECT_EQ(run.output.find('\x1b'), std::string::npos);  // colour is for terminals
}

}  // namespace
