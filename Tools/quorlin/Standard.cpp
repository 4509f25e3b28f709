#include "Tools/quorlin/Standard.h"

#include <algorithm>

namespace {

constexpr uint8_t kHeader = 4;
constexpr EntryList_t kNoList = {}, kBoards{0x0E, 0, 0x0F, 2, 0}, kElements{0x13, 0x14, 0x15, 0, kNoHandle},
                      kModules{0x0E, 0, 0x0F, 2, 0}, kMembers{0, 0, 0x05, 3, 1},
                      kDescriptors{0x15, 0x16, 0x17, 0, kNoHandle}, kLoads{0x06, 0, 0x07, 3, 1},
                      kComponents{0x17, 0, 0x18, 2, 0};

//   type  least  name                                   strings                   handles        list
constexpr TypeFacts_t kFacts[] = {
    {0,   0x12, "BIOS Information",                 "\x04\x05\x08",                 "",             kNoList     },
    {1,   0x08, "System Information",               "\x04\x05\x06\x07\x19\x1A",     "",             kNoList     },
    {2,   0x08, "Baseboard Information",            "\x04\x05\x06\x07\x08\x0A",     "\x0B",         kBoards     },
    {3,   0x09, "System Enclosure or Chassis",      "\x04\x06\x07\x08",             "",             kElements   },
    {4,   0x1A, "Processor Information",            "\x04\x07\x10\x20\x21\x22",     "\x1A\x1C\x1E", kNoList     },
    {5,   0x0F, "Memory Controller Information",    "",                             "",             kModules    },
    {6,   0x0C, "Memory Module Information",        "\x04",                         "",             kNoList     },
    {7,   0x0F, "Cache Information",                "\x04",                         "",             kNoList     },
    {8,   0x09, "Port Connector Information",       "\x04\x06",                     "",             kNoList     },
    {9,   0x0D, "System Slots",                     "\x04",                         "",             kNoList     },
    {10,  0x06, "On Board Devices Information",     "",                             "",             kNoList     },
    {11,  0x05, "OEM Strings",                      "",                             "",             kNoList     },
    {12,  0x05, "System Configuration Options",     "",                             "",             kNoList     },
    {13,  0x16, "BIOS Language Information",        "\x15",                         "",             kNoList     },
    {14,  0x05, "Group Associations",               "\x04",                         "",             kMembers    },
    {15,  0x14, "System Event Log",                 "",                             "",             kDescriptors},
    {16,  0x0F, "Physical Memory Array",            "",                             "\x0B",         kNoList     },
    {17,  0x15, "Memory Device",                    "\x10\x11\x17\x18\x19\x1A\x2B", "\x04\x06",     kNoList     },
    {18,  0x17, "32-Bit Memory Error Information",  "",                             "",             kNoList     },
    {19,  0x0F, "Memory Array Mapped Address",      "",                             "\x0C",         kNoList     },
    {20,  0x13, "Memory Device Mapped Address",     "",                             "\x0C\x0E",     kNoList     },
    {21,  0x07, "Built-in Pointing Device",         "",                             "",             kNoList     },
    {22,  0x10, "Portable Battery",                 "\x04\x05\x06\x07\x08\x14",     "",             kNoList     },
    {23,  0x0D, "System Reset",                     "",                             "",             kNoList     },
    {24,  0x05, "Hardware Security",                "",                             "",             kNoList     },
    {25,  0x09, "System Power Controls",            "",                             "",             kNoList     },
    {26,  0x14, "Voltage Probe",                    "\x04",                         "",             kNoList     },
    {27,  0x0C, "Cooling Device",                   "\x0E",                         "\x04",         kNoList     },
    {28,  0x14, "Temperature Probe",                "\x04",                         "",             kNoList     },
    {29,  0x14, "Electrical Current Probe",         "\x04",                         "",             kNoList     },
    {30,  0x06, "Out-of-Band Remote Access",        "\x04",                         "",             kNoList     },
    {31,  0x1C, "Boot Integrity Services",          "",                             "",             kNoList     },
    {32,  0x0B, "System Boot Information",          "",                             "",             kNoList     },
    {33,  0x1F, "64-Bit Memory Error Information",  "",                             "",             kNoList     },
    {34,  0x0B, "Management Device",                "\x04",                         "",             kNoList     },
    {35,  0x0B, "Management Device Component",      "\x04",                         "\x05\x07\x09", kNoList     },
    {36,  0x10, "Management Device Threshold Data", "",                             "",             kNoList     },
    {37,  0x07, "Memory Channel",                   "",                             "",             kLoads      },
    {38,  0x10, "IPMI Device Information",          "",                             "",             kNoList     },
    {39,  0x10, "System Power Supply",              "\x05\x06\x07\x08\x09\x0A\x0B", "\x10\x12\x14", kNoList     },
    {40,  0x05, "Additional Information",           "",                             "",             kNoList     },
    {41,  0x0B, "Onboard Devices Extended",         "\x04",                         "",             kNoList     },
    {42,  0x06, "Management Controller Host",       "",                             "",             kNoList     },
    {43,  0x1F, "TPM Device",                       "\x12",                         "",             kNoList     },
    {44,  0x06, "Processor Additional Information", "",                             "\x04",         kNoList     },
    {45,  0x18, "Firmware Inventory Information",   "\x04\x05\x07\x09\x0A\x0B",     "",             kComponents },
    {46,  0x09, "String Property",                  "\x06",                         "\x07",         kNoList     },
    {126, 0x04, "Inactive",                         "",                             "",             kNoList     },
    {127, 0x04, "End-of-Table",                     "",                             "",             kNoList     },
};
static_assert(std::ranges::is_sorted(kFacts, {}, &TypeFacts_t::type));

}  // namespace

const TypeFacts_t* FactsOf(uint8_t type) {
    const TypeFacts_t* row = std::ranges::lower_bound(kFacts, type, {}, &TypeFacts_t::type);
    return row == std::end(kFacts) || row->type != type ? nullptr : row;
}

std::string_view NameOfType(uint8_t type) {
    if (const TypeFacts_t* facts = FactsOf(type)) return facts->name;
    return type >= 128 ? "OEM-specific" : "Unknown";
}

uint8_t MinimumLength(uint8_t type) {
    const TypeFacts_t* facts = FactsOf(type);
    return facts == nullptr ? kHeader : facts->minimumLength;
}
