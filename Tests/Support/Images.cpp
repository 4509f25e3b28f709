#include "Tests/Support/Images.h"

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <span>
#include <utility>

#include "Packages/Format/Structures.h"
#include "Packages/Format/TableFile.h"
#include "Packages/Sample/Sample.h"
#include "Packages/Sample/SampleBuilder.h"

namespace {

using Bytes_t = std::vector<uint8_t>;

// The length of a type's formatted area from a version of the SMBIOS standard on. Other types have the sample's length.
struct Layout_t {
    uint8_t type, major, minor, length;
};
// clang-format off
constexpr Layout_t kLayouts[] = {
    {0, 2, 3, 0x14}, {0, 2, 4, 0x18}, {0, 3, 1, 0x1A},
    {1, 2, 1, 0x19}, {1, 2, 4, 0x1B},
    {3, 2, 3, 0x11}, {3, 2, 7, 0x16},
    {4, 2, 3, 0x23}, {4, 2, 5, 0x28}, {4, 2, 6, 0x2A}, {4, 3, 0, 0x30}, {4, 3, 6, 0x32},
    {7, 2, 1, 0x13}, {7, 3, 1, 0x1B},
    {9, 2, 1, 0x0D}, {9, 2, 6, 0x11}, {9, 3, 2, 0x13},
    {16, 2, 1, 0x0F}, {16, 2, 7, 0x17},
    {17, 2, 3, 0x1B}, {17, 2, 6, 0x1C}, {17, 2, 7, 0x22}, {17, 2, 8, 0x28},
    {17, 3, 2, 0x54}, {17, 3, 3, 0x5C}, {17, 3, 7, 0x64},
    {19, 2, 1, 0x0F}, {19, 2, 7, 0x1F},
    {20, 2, 1, 0x13}, {20, 2, 7, 0x23},
    {22, 2, 1, 0x10}, {22, 2, 2, 0x1A},
    {27, 2, 2, 0x0E}, {27, 2, 7, 0x0F},
};
// clang-format on

enum class Fault_t : uint8_t {
    kNone,
    kNoEnd,            // the table ends with its last structure
    kBytesAfterEnd,    // a structure and part of one after the End-of-Table structure
    kNoFinalNul,       // the last string area isn't closed
    kCutInside,        // the table ends in the middle of a formatted area
    kLengthPastEnd,    // the last Length is beyond the table's end
    kLengthTooShort,   // a Length of 3 halfway
    kZerosAfterPage,   // zeros from 800h on, as if a page was missing
    kStrayString,      // a string after the double NUL of a structure halfway
    kRepeatedHandles,  // all handles are the same
    kOddStrings,       // control characters and bytes beyond ASCII in every string
};

struct Machine_t {
    const char* name;
    uint8_t major, minor;
    char entryPoint;  // '2': _SM_, '3': _SM3_
    int structures;   // of each type that can occur many times
    Fault_t fault;
};
constexpr Machine_t kMachines[] = {
    {"old-laptop",       2, 3,  '2', 1,  Fault_t::kNone           },
    {"no-end",           2, 3,  '2', 2,  Fault_t::kNoEnd          },
    {"odd-version",      2, 31, '2', 1,  Fault_t::kBytesAfterEnd  },
    {"old-board",        2, 4,  '2', 3,  Fault_t::kNone           },
    {"no-final-nul",     2, 5,  '2', 1,  Fault_t::kNoFinalNul     },
    {"workstation",      2, 6,  '2', 4,  Fault_t::kNone           },
    {"odd-strings",      2, 7,  '2', 1,  Fault_t::kOddStrings     },
    {"many-sockets",     2, 8,  '2', 32, Fault_t::kNone           },
    {"length-past-end",  2, 8,  '2', 1,  Fault_t::kLengthPastEnd  },
    {"server",           3, 0,  '3', 16, Fault_t::kNone           },
    {"missing-page",     3, 0,  '3', 3,  Fault_t::kZerosAfterPage },
    {"cut-inside",       3, 1,  '3', 1,  Fault_t::kCutInside      },
    {"stray-string",     3, 2,  '3', 1,  Fault_t::kStrayString    },
    {"repeated-handles", 3, 3,  '3', 2,  Fault_t::kRepeatedHandles},
    {"new-laptop",       3, 4,  '2', 1,  Fault_t::kNone           },
    {"length-too-short", 3, 5,  '3', 1,  Fault_t::kLengthTooShort },
    {"desktop",          3, 6,  '3', 4,  Fault_t::kNone           },
    {"newest",           3, 7,  '3', 2,  Fault_t::kNone           },
};

// Types that the sample lacks: newer ones, and some without a decoder.
// clang-format off
void AddMore(ClSampleBuilder& table) {
    table.Add(43, "dbbbbdds qd", {{0x2B00, 0x00584648, 2, 0, 0x07, 0x37, 0x00020000, 0, "TPM 2.0", 0x38, 0}});
    table.Add(44, "w bb w", {{0x2C00, 0x0400, 2, 2, 0x0110}});
    table.Add(45, "sssss q s w b", {{0x2D00, "Boot", "1.2", 0, "03/08/2024", "Halvorsen", 65536, 0, 1, 2}});
    table.Add(46, "w s w", {{0x2E00, 1, "Some property", 0x0100}});
    table.Add(136, "bb", {{0x8800, 0xFF, 0xFF}});
    table.Add(219, "bbbb dd s", {{0xDB00, 1, 2, 3, 4, 0x01020304, 0x05060708, "Vendor"}});
}
// clang-format on

constexpr uint8_t kManyOf[] = {4, 8, 9, 17, 20, 126, 219};

using StructuresByType_t = std::map<uint8_t, std::vector<Bytes_t>>;

void Collect(std::span<const uint8_t> table, StructuresByType_t* all) {
    const auto size = static_cast<uint32_t>(table.size());
    for (uint32_t offset = 0; offset < size;) {
        const TableStructure_t one = StructureAt(table.data(), size, offset);
        (*all)[one.Type()].emplace_back(one.data, one.data + one.size);
        offset += one.size;
    }
}

// Cuts or extends a structure to the Length of the machine's version. Added bytes are random.
Bytes_t InVersion(const Machine_t& machine, Bytes_t structure, std::minstd_rand* random) {
    size_t length = structure[1];
    for (const Layout_t& layout : kLayouts) {
        const bool isReached = std::pair(layout.major, layout.minor) <= std::pair(machine.major, machine.minor);
        if (layout.type == structure[0] && isReached) length = layout.length;
    }
    const auto strings = structure.begin() + structure[1];
    if (length < structure[1]) {
        structure.erase(structure.begin() + static_cast<ptrdiff_t>(length), strings);
    } else {
        Bytes_t added(length - structure[1]);
        for (uint8_t& byte : added) byte = static_cast<uint8_t>((*random)() >> 8);
        structure.insert(strings, added.begin(), added.end());
    }
    structure[1] = static_cast<uint8_t>(length);
    return structure;
}

Bytes_t TableOfMachine(const Machine_t& machine, const StructuresByType_t& all) {
    std::minstd_rand random(static_cast<uint32_t>(&machine - kMachines) + 1);
    std::vector<Bytes_t> structures;
    for (const auto& [type, variants] : all) {
        if (type == kEndOfTable) continue;
        const bool isMany = std::ranges::find(kManyOf, type) != std::end(kManyOf);
        for (int i = 0; i < (isMany ? machine.structures : 1); ++i) {
            Bytes_t one = InVersion(machine, variants[random() % variants.size()], &random);
            if (machine.fault == Fault_t::kRepeatedHandles)
                one[2] = one[3] = 0;
            else
                one[2] = static_cast<uint8_t>(i);
            if (machine.fault == Fault_t::kOddStrings)
                for (size_t at = one[1]; at < one.size(); ++at)
                    if (one[at] != 0 && random() % 2 == 0) one[at] = static_cast<uint8_t>(random() % 255 + 1);
            structures.push_back(std::move(one));
        }
    }
    Bytes_t& middle = structures[structures.size() / 2];
    if (machine.fault == Fault_t::kStrayString) middle.insert(middle.end(), {'s', 't', 'r', 'a', 'y', 0, 0});
    if (machine.fault == Fault_t::kLengthTooShort) middle[1] = 3;
    if (machine.fault == Fault_t::kLengthPastEnd) structures.back()[1] = 0xFF;
    if (machine.fault == Fault_t::kCutInside) structures.back().resize(structures.back()[1] - 1u);
    if (machine.fault == Fault_t::kNoFinalNul) structures.back().pop_back();
    Bytes_t table;
    for (const Bytes_t& one : structures) table.insert(table.end(), one.begin(), one.end());
    constexpr Fault_t kWithoutEnd[] = {Fault_t::kNoEnd, Fault_t::kNoFinalNul, Fault_t::kCutInside,
                                       Fault_t::kLengthPastEnd};
    if (std::ranges::find(kWithoutEnd, machine.fault) == std::end(kWithoutEnd))
        table.insert(table.end(), {kEndOfTable, 4, 0xFF, 0xFE, 0, 0});
    if (machine.fault == Fault_t::kBytesAfterEnd)
        table.insert(table.end(), {1, 8, 0, 9, 1, 0, 0, 0, 'x', 0, 0, 4, 200});
    if (machine.fault == Fault_t::kZerosAfterPage)
        std::fill(table.begin() + std::min<ptrdiff_t>(std::ssize(table), 0x800), table.end(), uint8_t{0});
    return table;
}

// Unlike MakeDump, machines don't always choose the entry point by the version.
Bytes_t DumpOfMachine(const Machine_t& machine, const Bytes_t& table) {
    Bytes_t dump = MakeDump(table, machine.entryPoint == '3' ? 3 : 2, machine.minor);
    if (machine.entryPoint == '2') {
        dump[4] = static_cast<uint8_t>(dump[4] + dump[6] - machine.major);  // the checksum
        dump[6] = machine.major;
    }
    return dump;
}

}  // namespace

std::vector<TableImage_t> GeneratedImages() {
    StructuresByType_t all;
    Collect(SampleTable(), &all);
    const auto more = std::make_unique<ClSampleBuilder>();
    AddMore(*more);
    Collect({more->Bytes(), more->Size()}, &all);
    std::vector<TableImage_t> images;
    for (const Machine_t& machine : kMachines)
        images.push_back({machine.name, DumpOfMachine(machine, TableOfMachine(machine, all))});
    return images;
}
