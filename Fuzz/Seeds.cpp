// Writes the inputs that the fuzzers start from, into a folder for each fuzzer: fuzz_seeds FOLDER STRUCTURES, where
// STRUCTURES is a folder of files with one structure each.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Fuzz/Fuzz.h"
#include "Packages/Format/TableFile.h"
#include "Packages/Sample/Sample.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

const std::string kSignatureAndVersion = "\xC0\x06\x05\0\3\0"s;

struct Input_t {
    const char* subject;  // names the fuzzer: SUBJECTFuzz
    const char* name;
    std::string_view bytes;
};

constexpr std::string_view kOneSegment =
    "\0\0\0\0\0MCFG\x3C\0\0\0\1\0QUORLNSAMPLE  "
    "\1\0\0\0QRLN\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\xE0\0\0\0\0\0\0\0\x7F\0\0\0\0"sv;
constexpr std::string_view kOddNames =
    "\x25\0\0secret\r\n\x1B[31m\xE2\x80\xAE\xFF\xC2\x9B\n\"a,b\"\n\xF0\x9F\x98\x80\nfolder\x7F\4\0\0\0\0"sv;

constexpr std::string_view kRow = " 86 80 57 0d 00 00 00 00 00 00 00 06 00 00 00 00\n";
const std::string kOneFunction = std::string(
                                     "\1"
                                     "00:1f.0 ISA bridge\n00:")
                                     .append(kRow)
                                     .append("10:")
                                     .append(kRow)
                                     .append("20:")
                                     .append(kRow)
                                     .append("30:")
                                     .append(kRow);
constexpr std::string_view kOneLeaf =
    "\2"
    "CPU 0:\n   0x00000000 0x00: eax=0x00000020 ebx=0x68747541 ecx=0x444d4163 edx=0x69746e65\n"sv;

constexpr std::string_view kDescription =
    "\4{\"form\":\"quorlin "
    "record\",\"version\":1,\"host\":\"\\u00e9\\n\",\"pci_segments\":[0],\"tpm\":2,\"threads\":1,\"memory_map\":[{"
    "\"begin\":0,\"end\":65535}],\"files\":[{\"name\":\"dmi.bin\","
    "\"sha256\":\"0000000000000000000000000000000000000000000000000000000000000000\"}]}"
    "\0\x2B\x0A\0\0INTC\2\0\0\0"
    "\x13\x0F\1\0\0\0\0\0\xFF\xFF\1\0\0\0\1\0\0"
    "\x7F\4\2\0\0"sv;

// Two interfaces of processors, and a package of two cores with a cache each.
constexpr std::string_view kTwoCores =
    "\5\x20\x0B\x10\0\0\0\0\0\0\0\0\0\0\1\0\0\0\x0B\x10\0\0\1\0\0\0\1\0\0\0\1\0\0\0"
    "\1\x18\0\0\x7F\0\0\0\0\0\0\0\0\0\1\0\0\1\0\0\4\0\x40\0"
    "\0\x14\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
    "\0\x18\0\0\x0A\0\0\0\x3C\0\0\0\0\0\0\0\1\0\0\0\x24\0\0\0"
    "\0\x18\0\0\x0A\0\0\0\x3C\0\0\0\1\0\0\0\1\0\0\0\x24\0\0\0"sv;

// An input that revealed a fault gets a row here, named after the fault, so that it doesn't come back.
const Input_t kSeeds[] = {
    {"Table",      "empty",             ""sv                                                                     },
    {"Acpi",       "one-segment",       kOneSegment                                                              },
    {"Acpi",       "length-above-size", "\0\0\0\0\0MCFG\xFF\xFF\xFF\xFF"sv                                       },
    {"Acpi",       "grows",             "\2\0\0\0\0MCFG\x2C\0\0\0"sv                                             },
    {"Acpi",       "goes-away",         "\1\0\0\0\0MCFG\x2C\0\0\0"sv                                             },
    {"Arguments",  "show",              "--image\ndump\n--type\n17\n--format\njson"sv                            },
    {"Arguments",  "lines",             "--sample\n--format\nlines\n--trace\nGlobal:TraceType<ErWaIn>"sv         },
    {"Arguments",  "list",              "show\n--image-list\nnames\n--format\ncsv\n--verbose\n--recover"sv       },
    {"Arguments",  "version",           "--image\ntable\n--smbios-version\n2.8\n--signature\n506C0h\n--as\nany"sv},
    {"Arguments",  "types",             "types\n--sample"sv                                                      },
    {"Arguments",  "facts",             "facts\n--sample\n--type\n17\n--key\nmemory_size"sv                      },
    {"Arguments",  "find",              "find\n--sample\nDIMM"sv                                                 },
    {"Arguments",  "get",               "get\n--sample\nserial"sv                                                },
    {"Arguments",  "dump",              "dump\n--sample\nout.bin"sv                                              },
    {"Arguments",  "raw",               "raw\n--sample\n--handle\n1103"sv                                        },
    {"Arguments",  "check",             "check\n--image\ntable"sv                                                },
    {"Arguments",  "diff",              "diff\ndump\ntable"sv                                                    },
    {"Arguments",  "redact",            "redact\ndump\nout.bin\n--key\ntable"sv                                  },
    {"Arguments",  "doctor",            "doctor\n--format\nndjson\n--try-driver"sv                               },
    {"Arguments",  "record",            "record\nout\n--redact"sv                                                },
    {"Arguments",  "replay",            "hw\nacpi\n--replay\nfolder"sv                                           },
    {"Arguments",  "hw",                "hw\nacpi\nMCFG\n--out\nout.bin"sv                                       },
    {"CInterface", "wrong-size",        "\0\0\0\0\3\0\0\1\x7F\4\0\0\0\0"sv                                       },
    {"Files",      "names",             kOddNames                                                                },
    {"Files",      "windows",           "\0\0\3\0\3\2\0\6\0\0\0\x7F\4\0\0\0\0"sv                                 },
    {"Record",     "acpi",              "\0FACP @ 0x0\n    0000: 46 41 43 50  FACP\n"sv                          },
    {"Record",     "pci",               kOneFunction                                                             },
    {"Record",     "cpuid",             kOneLeaf                                                                 },
    {"Record",     "machine",           kDescription                                                             },
    {"Record",     "two-cores",         kTwoCores                                                                },
    {"Record",     "msr",
     "\3"
     "0x0000001b 0 00000000fee00900\n0x0000001b 1 refused\n"sv                                                   },
    {"Container",  "list",              "\0\0\1\0\2\4\5\2\0\3\1\7\2\6\4\1\2\5\0"sv                               },
    {"Container",  "sorted-list",       "\1\0\5\0\1\4\x30\0\4\6\4\7\1\5\0"sv                                     },
    {"Container",  "red-black-tree",    "\2\0\5\0\1\0\x30\0\4\0\5\0\6\6\4\7\1\1\5\1\1\1\x30"sv                   },
    {"Container",  "avl-tree",          "\3\0\5\0\1\0\x30\0\4\0\5\0\6\6\4\7\1\1\5\1\1\1\x30"sv                   },
};

std::string Text(std::span<const uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

class ClFolders {
  public:
    explicit ClFolders(const char* root) : m_root(root) {}

    void Write(const std::string& subject, const std::string& name, std::string_view bytes) {
        std::filesystem::create_directories(m_root / subject);
        std::ofstream file(m_root / subject / name, std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        file.close();
        m_isWhole = m_isWhole && file.good();
    }
    bool IsWhole() const { return m_isWhole; }

  private:
    std::filesystem::path m_root;
    bool m_isWhole = true;
};

// Writes each structure in the form that each fuzzer of tables expects.
void WriteStructures(ClFolders& folders, const char* corpus) {
    for (const auto& entry : std::filesystem::directory_iterator(corpus)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}}, name = entry.path().filename().string();
        const std::string table = bytes + "\x7F\4\0\0\0\0"s;
        const auto length = static_cast<char>(table.size());
        for (const char* subject : {"Table", "Redact"}) folders.Write(subject, name, kSignatureAndVersion + bytes);
        folders.Write("Dump", name, "\0\1"s + table);
        folders.Write("Output", name, "\x3C"s + bytes);
        folders.Write("CInterface", name, kSignatureAndVersion + "\1\0"s + table);
        folders.Write("Files", name, "\x18\0\0_SM3_\0\x18\3\0\0\1\0"s + length + "\0\0\0\0\0\0\0\0\0\0\0"s + table);
        // An entry point with the table right after it.
        folders.Write("Scan", name,
                      "\0\0\0_SM_\0\x1F\3\0\0\0\0\0\0\0\0\0_DMI_\0"s + length + "\0\x20\0\x0F\0\1\0\x30\0"s + table);
    }
}

// Writes the first structures of the sample in each form of an image file, whole and cut.
void WriteDumps(ClFolders& folders) {
    const std::span<const uint8_t> table = SampleTable().first(512);
    const auto write = [&](const char* name, char as, std::string_view bytes) {
        folders.Write("Dump", name, std::string{as, '\1'}.append(bytes));
    };
    const std::string modern = Text(MakeDump(table, 3, 2)), old = Text(MakeDump(table, 2, 8));
    // At the start of the BIOS area.
    const auto place = [&](const char* name, std::string dump, size_t addressByte, size_t checksum) {
        dump[addressByte] = '\x0F';
        dump[checksum] = static_cast<char>(dump[checksum] - '\x0F');
        folders.Write("Scan", name, "\0\0\4"s + dump);
    };
    place("address-64", modern, 0x12, 5);
    place("address-32", old, 0x1A, 0x15);
    write("64-bit-entry-point", 0, modern);
    write("32-bit-entry-point", 0, old);
    write("cut-entry-point", 1, old.substr(0, 0x1E));
    write("cut-table", 1, modern.substr(0, 100));
    write("bare-table", 0, Text(table));
    write("answer", 3, "\0\3\2\0\0\2\0\0"sv.substr(0, 8));
    write("whole-answer", 0, std::string("\0\3\2\0\0\2\0\0"sv) + Text(table));
    // A bare table of one OEM string, as one stored block.
    write("gzip", 0,
          "\x1F\x8B\x08\0\0\0\0\0\0\x03\x01\x08\0\xF7\xFF"
          "\x0B\x05\x01\0\x01\x61\0\0\x4F\xF9\x85\x50\x08\0\0\0"sv);
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return 1;
    ClFolders folders(arguments[1]);
    for (const Input_t& input : kSeeds) folders.Write(input.subject, input.name, input.bytes);
    for (const char* subject : {"Table", "Redact"})
        folders.Write(subject, "sample", kSignatureAndVersion + Text(SampleTable()));
    WriteDumps(folders);
    WriteStructures(folders, arguments[2]);
    return folders.IsWhole() ? 0 : 1;
}
