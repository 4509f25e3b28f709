// How single fields read, in structures of zeros and ones: a field is a row here when its value has a text of its own.
// The page of all items, which a test holds against the decoders' tables, lists every word; here stand the values, bits
// and bounds that a fault would shift.
#include <gtest/gtest.h>

#include <tuple>

#include "Tests/Support/Structures.h"

namespace {

constexpr uint8_t kEnough = 0x40;  // holds every field of a row

TEST(Fields, ReadAsTheirTypesSay) {
    const char* const slot = "Slot Characteristics";
    const char* const slot2 = "Slot Characteristics 2";
    const char* const spacing = "Base Address Modifier bit 7:6 Register spacing";
    const char* const trigger = "Interrupt Info bit 0 Interrupt Trigger Mode";
    const char* const edgeTrigger = "Interrupt Info bit 0  Interrupt Trigger Mode";
    const char* const notCapable = "Lumetra(R) QXM Capability";
    const char* const capable = "Lumetra(R) QXM Capability Status";
    const char* const supplyType = "DMTF Power Supply Type";
    const char* const supplyStatus = "DMTF Power Supply Status";
    const char* const switching = "DMTF Input Voltage Range Switching";
    const struct {
        uint8_t type, size, offset;
        uint64_t value;
        const char *key, *text;
    } kRows[] = {
        {2,   1, 0x09, 0x09,        "Feature Flag",                "Hosting Board, replaceable"                     },
        {2,   1, 0x09, 0x20,        "Feature Flag",                ""                                               },
        {2,   1, 0x09, 0x21,        "Feature Flag",                "Hosting Board, "                                },
        {2,   1, 0x09, 0x0C,        "Feature Flag",                "removable, replaceable"                         },
        {2,   1, 0x0A, 0,           "Location In Chassis ",        "None"                                           },
        {3,   1, 0x04, 0,           "Manufacturer",                "None"                                           },
        {3,   1, 0x04, 1,           "Manufacturer",                "first"                                          },
        {3,   1, 0x04, 3,           "Manufacturer",                "(no such string)"                               },
        {3,   1, 0x05, 0,           "Chassis Type",                "None"                                           },
        {3,   1, 0x05, 0,           "Chassis Lock",                "None"                                           },
        {3,   1, 0x05, 0x80,        "Chassis Type",                "Error: Invalid Type"                            },
        {3,   1, 0x05, 0x80,        "Chassis Lock",                "Present"                                        },
        {3,   1, 0x05, 0x83,        "Chassis Type",                "Desktop"                                        },
        {3,   1, 0x05, 0x43,        "Chassis Type",                "Error: Invalid Type"                            },
        {3,   1, 0x05, 36,          "Chassis Lock",                "Not Present or Unknown"                         },
        {3,   1, 0x0D, 0xAB,        "OEM Defined",                 "000000ABh"                                      },
        {3,   1, 0x11, 0,           "Height",                      "Unspecified"                                    },
        {3,   1, 0x11, 1,           "Height",                      "4 cm"                                           },
        {3,   1, 0x11, 255,         "Height",                      "1133 cm"                                        },
        {3,   1, 0x12, 0,           "Number Of Power Cords",       "Unspecified"                                    },
        {3,   1, 0x12, 2,           "Number Of Power Cords",       "2"                                              },
        {4,   1, 0x05, 6,           "Processor Type",              "Video Processor"                                },
        {4,   1, 0x05, 7,           "Processor Type",              "Unknown"                                        },
        {4,   1, 0x19, 60,          "Processor Upgrade",           "Socket BGA1528"                                 },
        {4,   1, 0x19, 61,          "Processor Upgrade",           "Unknown"                                        },
        {4,   1, 0x11, 0x00,        "Voltage",                     "None"                                           },
        {4,   1, 0x11, 0x80,        "Voltage",                     "None"                                           },
        {4,   1, 0x11, 0x03,        "Voltage",                     "5.0V"                                           },
        {4,   1, 0x11, 0x06,        "Voltage",                     "3.3V"                                           },
        {4,   1, 0x11, 0x04,        "Voltage",                     "2.9V"                                           },
        {4,   1, 0x11, 0xFF,        "Voltage",                     "12.7V"                                          },
        {4,   1, 0x11, 0x85,        "Voltage",                     "0.5V"                                           },
        {4,   1, 0x18, 0x07,        "Status",                      "CPU Socket Unpopulated, Status Other"           },
        {4,   1, 0x18, 0x40,        "Status",                      "CPU Socket Populated, Status Unknown"           },
        {4,   1, 0x18, 0x44,        "Status",                      "CPU Socket Populated, CPU Idle"                 },
        {4,   1, 0x18, 0x45,        "Status",                      "Unknown"                                        },
        {4,   2, 0x1A, 0,           "L1 Cache Handle",             "00 "                                            },
        {4,   2, 0x1E, 100,         "L3 Cache Handle",             "100 "                                           },
        {4,   2, 0x26, 0x0000,      "Processor Characteristics",   "None"                                           },
        {4,   2, 0x26, 0xFF02,      "Processor Characteristics",   ""                                               },
        {4,   2, 0x28, 0,           "Processor Family 2",          "Unknown"                                        },
        {4,   2, 0x28, 0xFF,        "Processor Family 2",          "Reserved"                                       },
        {4,   2, 0x28, 0x100,       "Processor Family 2",          "ARMv7"                                          },
        {4,   2, 0x28, 0x102,       "Processor Family 2",          "Unknown"                                        },
        {4,   2, 0x28, 0x105,       "Processor Family 2",          "SH-4"                                           },
        {4,   2, 0x28, 302,         "Processor Family 2",          "MII"                                            },
        {4,   2, 0x28, 501,         "Processor Family 2",          "Unknown"                                        },
        {4,   2, 0x28, 0xFFFF,      "Processor Family 2",          "Unknown"                                        },
        {7,   2, 0x05, 0x0000,      "Cache Configuration",         "L1; Not Socketed; Internal; Write Through"      },
        {7,   2, 0x05, 0x0180,      "Cache Configuration",         "L1; Not Socketed; Internal; Write Back"         },
        {7,   2, 0x05, 0xFFC2,      "Cache Configuration",         "L3; Not Socketed; Reserved; Unknown"            },
        {7,   2, 0x05, 0x0069,      "Cache Configuration",         "L2; Socketed; Unknown; Write Through"           },
        {7,   2, 0x07, 0,           "Maximum Cache Size",          "0 K"                                            },
        {7,   2, 0x07, 1025,        "Maximum Cache Size",          "1 M"                                            },
        {7,   2, 0x07, 0x8001,      "Maximum Cache Size",          "64 K"                                           },
        {7,   2, 0x07, 0x8010,      "Maximum Cache Size",          "1024 K"                                         },
        {7,   2, 0x09, 0xFFFF,      "Installed Size",              "2047 M"                                         },
        {7,   2, 0x0B, 0x0000,      "Supported SRAM Type",         "None"                                           },
        {7,   1, 0x0F, 0x00,        "Cache Speed",                 "0 Ns (unknown)"                                 },
        {9,   2, 0x09, 0x0000,      "Slot ID",                     "None"                                           },
        {9,   2, 0x09, 0x0100,      "Slot ID",                     "100h"                                           },
        {9,   1, 0x0B, 0x00,        slot,                          "None"                                           },
        {9,   1, 0x0B, 0x81,        slot,                          "Characteristics unknown, Modem Ring Resume"     },
        {9,   1, 0x0B, 0x30,        slot,                          "PC Card-16, CardBus"                            },
        {9,   1, 0x0C, 0x00,        slot2,                         "None"                                           },
        {9,   1, 0x0C, 0x0A,        slot2,                         "Supports hot-plug devices, Supports Bifurcation"},
        {9,   1, 0x0C, 0xC0,        slot2,                         "Reserved, set to 0, Reserved, set to 0"         },
        {10,  1, 0x04, 0x00,        "Device Type",                 "Disabled, Error: Invalid Type"                  },
        {10,  1, 0x04, 0x8A,        "Device Type",                 "Enabled, SAS Controller"                        },
        {10,  1, 0x04, 0x8B,        "Device Type",                 "Enabled, Error: Invalid Type"                   },
        {15,  1, 0x0B, 0x00,        "Log Status",                  "00h (Log Area: Not Full, Not Valid)"            },
        {15,  1, 0x0B, 0x02,        "Log Status",                  "02h (Log Area: Full, Not Valid)"                },
        {15,  1, 0x0B, 0xFF,        "Log Status",                  "FFh (Log Area: Full, Valid)"                    },
        {15,  1, 0x14, 0x00,        "Log Header Format",           "00h (No header)"                                },
        {15,  1, 0x14, 0x01,        "Log Header Format",           "01h (Type 1 header)"                            },
        {15,  1, 0x14, 0x02,        "Log Header Format",           "02h (Error: reserved header type)"              },
        {15,  1, 0x14, 0x80,        "Log Header Format",           "80h (BIOS or OEM specific header type)"         },
        {16,  1, 0x04, 162,         "Location",                    "PC-98/E add-on card\t"                          },
        {16,  4, 0x07, 0x80000000,  "Maximum Capacity",            "2147483648"                                     },
        {16,  8, 0x0F, 0x180000000, "Extended Maximum Capacity",   "0001h 80000000h"                                },
        {17,  1, 0x0E, 0,           "Form Factor",                 "Unknown, Value read = 0x00"                     },
        {17,  1, 0x0E, 15,          "Form Factor",                 "FB-DIMM"                                        },
        {17,  1, 0x0E, 0xAB,        "Form Factor",                 "Unknown, Value read = 0xAB"                     },
        {17,  1, 0x10, 0,           "Device Locator",              "first"                                          },
        {17,  1, 0x12, 30,          "Memory Type",                 "LPDDR4"                                         },
        {17,  1, 0x12, 31,          "Memory Type",                 "Unknown, Value read = 0x1F"                     },
        {17,  2, 0x13, 0x0000,      "Type Detail Description",     "None"                                           },
        {17,  2, 0x13, 0x0001,      "Type Detail Description",     "Reserved, set to 0"                             },
        {17,  2, 0x13, 0xA002,      "Type Detail Description",     "Other, Registered (Buffered), LRDIMM"           },
        {17,  1, 0x1A, 0,           "Part Number",                 "None"                                           },
        {17,  1, 0x1A, 3,           "Part Number",                 "(no such string)"                               },
        {19,  8, 0x0F, 0x180000000, "Extended Starting Address",   "0001 80000000h"                                 },
        {19,  8, 0x17, 0x300000ABC, "Extended Ending Address",     "0003 0ABCh"                                     },
        {22,  2, 0x12, 0x0000,      "SBDS Manufacture Date",       "0/0/1980"                                       },
        {22,  2, 0x12, 0x01E0,      "SBDS Manufacture Date",       "0/15/1980"                                      },
        {22,  2, 0x12, 0x2A21,      "SBDS Manufacture Date",       "1/1/2001"                                       },
        {22,  2, 0x12, 0xFFFF,      "SBDS Manufacture Date",       "31/15/2107"                                     },
        {36,  2, 0x0A, 0x0000,      "Upper Threshold - Critical",  "0h"                                             },
        {36,  2, 0x0A, 0x0ABC,      "Upper Threshold - Critical",  "ABCh"                                           },
        {38,  1, 0x05, 0x15,        "IPMI Specification Revision", "Revision 1.5"                                   },
        {38,  1, 0x05, 0xB1,        "IPMI Specification Revision", "Revision B.1"                                   },
        {38,  1, 0x10, 0x80,        spacing,                       "Interface registers are on 16-byte boundaries"  },
        {38,  1, 0x10, 0xC0,        spacing,                       "Reserved"                                       },
        {38,  1, 0x10, 0x04,        edgeTrigger,                   "edge"                                           },
        {38,  1, 0x10, 0x04,        trigger,                       "(no such item)"                                 },
        {39,  2, 0x0E, 0x03FF,      supplyType,                    "Error: Invalid Power Suppy Type"                },
        {39,  2, 0x0E, 0x23FF,      supplyType,                    "Regulator"                                      },
        {39,  2, 0x0E, 0x2400,      supplyType,                    "Reserved"                                       },
        {39,  2, 0x0E, 0xFC7F,      supplyStatus,                  "Error: Invalid Status"                          },
        {39,  2, 0x0E, 0xFF87,      switching,                     "Error: Invalid Switch"                          },
        {39,  2, 0x0E, 0xFFB7,      switching,                     "Not applicable"                                 },
        {39,  2, 0x0E, 0x0038,      switching,                     "Reserved"                                       },
        {39,  2, 0x10, 0x1A,        "Input Voltage Probe Handle",  "001Ah"                                          },
        {39,  2, 0x12, 0,           "Cooling Device Handle",       "0000h"                                          },
        {39,  2, 0x14, 0xFFFE,      "Input Current Probe Handle",  "FFFEh"                                          },
        {41,  1, 0x05, 0x0B,        "Device Status",               "Device Disabled"                                },
        {41,  1, 0x05, 0x0B,        "Device Type",                 "Error: Invalid Type"                            },
        {41,  1, 0x05, 0x8A,        "Device Type",                 "SAS Controller"                                 },
        {41,  1, 0x0A, 0xF8,        "Device Number",               "31"                                             },
        {41,  1, 0x0A, 0xF8,        "Function Number",             "0"                                              },
        {130, 2, 0x04, 0,           "QXM Signature",               "first"                                          },
        {130, 2, 0x04, 0x102,       "QXM Signature",               "(no such string)"                               },
        {130, 4, 0x04, 0xFFFFFFFF,  "QXM Signature",               "(no such string)"                               },
        {130, 1, 0x08, 1,           capable,                       "This platform is QXM capable"                   },
        {130, 1, 0x08, 2,           notCapable,                    "This platform is not QXM capable"               },
        {130, 1, 0x08, 2,           capable,                       "(no such item)"                                 },
        {130, 1, 0x0E, 0x20,        "BIOS Re-flash",               "Supported"                                      },
        {130, 1, 0x0E, 0x1F,        "BIOS Re-flash",               "Not Supported"                                  },
        {130, 1, 0x0E, 0x04,        "Floppy Boot",                 "BIOS does not support boot from Floppy device"  },
        {130, 1, 0x0E, 0x02,        "Floppy Boot",                 "BIOS supports boot from Floppy device"          },
        {130, 1, 0x12, 2,           "KVM Redirection Status",      "Disabled"                                       },
        {222, 2, 0x05, 0xABCD,      "IO Port",                     "0XABCD"                                         },
    };
    for (const auto& row : kRows) {
        ClStructureBuilder structure = ClStructureBuilder(row.type, kEnough).Strings({"first", "second"});
        for (size_t place = 0; place < row.size; place++)
            structure.Byte(row.offset + place, static_cast<uint8_t>(row.value >> 8 * place));
        const ClItems items = Decode(structure);
        EXPECT_EQ(items.Text(row.key), row.text) << "type " << +row.type << ", " << row.value;
        EXPECT_TRUE(items[0].key.ends_with("{Type " + std::to_string(row.type) + "}#GROUPNAME")) << items[0].key;
    }
}

// A stretch of codes with words, and no word beside it.
TEST(Fields, NameTheCodesOfTheirEnumerations) {
    const struct {
        uint8_t type, offset;
        const char* key;
        uint8_t first, last;
        const char *lastWord, *what;
    } kRows[] = {
        {1,   0x18, "Wake-up Type",              1,   8,   "AC Power Restored",              "Type"          },
        {2,   0x0D, "Board Type",                1,   13,  "InterConnect Board",             "Type"          },
        {3,   0x05, "Chassis Type",              1,   36,  "Stick PC",                       "Type"          },
        {3,   0x09, "Bootup State",              1,   6,   "Non-recoverable",                "State"         },
        {3,   0x0C, "Security Status",           1,   5,   "External Interface Enabled",     "Status"        },
        {7,   0x10, "Error Correction Type",     1,   6,   "Multi-bit ECC",                  "Type"          },
        {7,   0x11, "System Cache Type",         1,   5,   "Unified",                        "Type"          },
        {7,   0x12, "Associativity",             1,   14,  "20-way Set-Associative",         "Type"          },
        {8,   0x05, "Internal Connector Type",   0,   35,  "USB Type-C Receptacle",          "Type"          },
        {8,   0x05, "Internal Connector Type",   160, 164, "PC-98Full",                      "Type"          },
        {8,   0x07, "External Connector Type",   255, 255, "Other - Ref Des indicates type", "Type"          },
        {8,   0x08, "Port Type",                 0,   35,  "Sparkline",                      "Type"          },
        {8,   0x08, "Port Type",                 160, 161, "8251 FIFO Compatible",           "Type"          },
        {8,   0x08, "Port Type",                 255, 255, "Other",                          "Type"          },
        {9,   0x05, "Slot Type",                 1,   35,  "PCI Express Mini 76-pin",        "Type"          },
        {9,   0x05, "Slot Type",                 160, 182, "PCI Express Gen 3 x16",          "Type"          },
        {9,   0x06, "Slot Data Bus Width",       1,   14,  "32x or x32",                     "Width"         },
        {9,   0x07, "Current Usage",             1,   5,   "Unavailable",                    "Usage"         },
        {9,   0x08, "Slot Length",               1,   6,   "3.5\" drive form factor",        "Length"        },
        {16,  0x04, "Location",                  1,   10,  "NuBus",                          "Type"          },
        {16,  0x04, "Location",                  160, 163, "PC-98/Local bus add-on card",    "Type"          },
        {16,  0x05, "Use",                       1,   7,   "Cache memory",                   "Type"          },
        {16,  0x06, "Memory Error Correction",   1,   7,   "CRC",                            "Type"          },
        {18,  0x04, "Error Type",                1,   14,  "Uncorrectable error",            "Type"          },
        {18,  0x05, "Error Granularity",         1,   4,   "Memory partition level",         "Granularity"   },
        {18,  0x06, "Error Operation",           1,   5,   "Partial write",                  "Operation"     },
        {21,  0x04, "Pointing Device Type",      1,   9,   "Optical Sensor",                 "Type"          },
        {21,  0x05, "Pointing Device Interface", 1,   8,   "ADB (Apple Desktop Bus)",        "Type"          },
        {21,  0x05, "Pointing Device Interface", 160, 162, "USB",                            "Type"          },
        {34,  0x05, "Error Type",                1,   13,  "Holtek HT82H791",                "Type"          },
        {34,  0x0A, "Address Type",              1,   5,   "SM Bus",                         "Address Type"  },
        {37,  0x04, "Channel Type",              1,   4,   "SyncLink",                       "Channel Type"  },
        {38,  0x04, "Interface Type",            0,   15,  "Reserved",                       "Interface Type"},
        {41,  0x05, "Device Type",               1,   10,  "SAS Controller",                 "Type"          },
        {130, 0x0F, "Location",                  1,   4,   "PC-ANSI",                        "Type"          },
    };
    for (const auto& row : kRows) {
        const auto textOf = [&row](int code) {
            return Decode(ClStructureBuilder(row.type, kEnough).Byte(row.offset, static_cast<uint8_t>(code)))
                .Text(row.key);
        };
        const std::string noWord = std::string("Error: Invalid ") + row.what;
        EXPECT_EQ(textOf(row.last), row.lastWord) << row.key;
        EXPECT_NE(textOf(row.first), noWord) << row.key;
        // A byte has no code beyond 0 and 255, and 0 of two enumerations says that there is nothing.
        for (const int beside : {row.first - 1, row.last + 1})
            if (beside > 0 && beside < 256) {
                EXPECT_EQ(textOf(beside), noWord) << row.key;
            }
    }
}

// What a structure is too short for, or holds half of, reads 0, its record's own bytes (the string, its NULs, then 0)
// or those of the table, as its type has it. The structures are of ones.
TEST(Fields, BehindTheLengthReadAsTheirTypesSay) {
    const struct {
        uint8_t type, length;
        const char* string;
        size_t count;  // of all items, as in a structure of full length
        const char *key, *text;
    } kRows[] = {
        {0,   18,   "\x01\x02\x03\x04\x05\x06", 56, "System BIOS Major Release",  "3"                          },
        {1,   8,    "M",                        12, "Manufacturer",               "M"                          },
        {3,   0x0D, "AB",                       17, "OEM Defined",                "00004241h"                  },
        {3,   0x0D, "AB",                       17, "Height",                     "Unspecified"                },
        {4,   0x1A, "AAAAAAAAAAAAAAAA",         30, "Thread Count 2",             "0"                          },
        {4,   0x0C, "AAAAAAAAAAAAAAAA",         30, "Processor ID",               "00000000h 1010101h"         },
        {7,   0x0F, "AAAAAA",                   14, "Associativity",              "Error: Invalid Type"        },
        {8,   0x08, "AAAA",                     9,  "Port Type",                  "None"                       },
        {16,  0x0F, "AAAAAAAAAA",               11, "Extended Maximum Capacity",  "0000h 0000h"                },
        {17,  0x15, "AAAAAAAAAAAAAAAA",         27, "Configured Voltage",         "Unknown"                    },
        {19,  0x13, "AAAAAAAA",                 10, "Extended Starting Address",  "0000 0000h"                 },
        {22,  0x10, "AB",                       18, "OEM Specific",               "00000000h"                  },
        {23,  0x09, "AB",                       9,  "Timer Interval",             "4241h"                      },
        {23,  0x09, "AB",                       9,  "Timeout",                    "0000h"                      },
        {24,  0x04, "m",                        5,  "Hardware Security Settings", "6Dh"                        },
        {26,  0x06, "AAAAAAAAAAAAAAAA",         12, "OEM Defined",                "00000000h"                  },
        {30,  0x05, "AA",                       6,  "Connections",                "00h"                        },
        {34,  0x0A, "A",                        8,  "Address Type",               "Error: Invalid Address Type"},
        {38,  0x10, "",                         11, "Interrupt Number",           "0"                          },
        {41,  0x0A, "A",                        12, "Device Number",              "8"                          },
        {130, 9,    "\x01\x01\x01\x01\x01\xFF", 19, "Lumetra QXM Feature Status", "Disabled"                   },
        {131, 18,   "\xFF\xFF\xFF\xFF",         30, "PCI Device Function Number", "0x0"                        },
        {222, 6,    "AAAA",                     6,  "IO Port",                    "0X0"                        },
    };
    for (const auto& row : kRows) {
        ClStructureBuilder structure(row.type, row.length);
        for (size_t offset = 4; offset < row.length; offset++) structure.Byte(offset, 1);
        if (*row.string != '\0') structure.Strings({row.string});
        const ClItems items = Decode(structure);
        EXPECT_EQ(items.Text(row.key), row.text) << "type " << +row.type;
        EXPECT_EQ(items.Count(), row.count) << "type " << +row.type;
        EXPECT_TRUE(items[0].key.ends_with("{Type " + std::to_string(row.type) + "}#GROUPNAME")) << items[0].key;
    }
}

// The number of a string in a structure that has none.
TEST(Fields, OfNoStringsSaySo) {
    for (const auto& [type, offset, key] : {std::tuple(3, 4u, "Manufacturer"), std::tuple(17, 0x10u, "Device Locator"),
                                            std::tuple(130, 4u, "QXM Signature")}) {
        const auto structure = ClStructureBuilder(static_cast<uint8_t>(type), kEnough).Byte(offset, 2);
        EXPECT_EQ(Decode(structure).Text(key), "(null string)") << type;
    }
}

}  // namespace
