// System Slots (the SMBIOS standard, type 9).
#include "Sources/SMBIOSType009.h"

namespace {

constexpr CodeText_t kSlotTypes[] = {
    {1,   "Other"                             },
    {2,   "Unknown"                           },
    {3,   "ISA"                               },
    {4,   "MCA"                               },
    {5,   "EISA"                              },
    {6,   "PCI"                               },
    {7,   "PC Card (PCMCIA)"                  },
    {8,   "VL-VESA"                           },
    {9,   "Proprietary"                       },
    {10,  "Processor Card Slot"               },
    {11,  "Proprietary Memory Card Slot"      },
    {12,  "I/O Riser Card Slot"               },
    {13,  "NuBus"                             },
    {14,  "PCI - 66MHz Capable"               },
    {15,  "AGP"                               },
    {16,  "AGP 2X"                            },
    {17,  "AGP 4X"                            },
    {18,  "PCI-X"                             },
    {19,  "AGP-8X"                            },
    {20,  "M.2 Socket 1-DP (Mechanical Key A)"},
    {21,  "M.2 Socket 1-SD (Mechanical Key E)"},
    {22,  "M.2 Socket 2 (Mechanical Key B)"   },
    {23,  "M.2 Socket 3 (Mechanical Key M)"   },
    {24,  "MXM Type I"                        },
    {25,  "MXM Type II"                       },
    {26,  "MXM Type III (standard connector)" },
    {27,  "MXM Type III (HE connector)"       },
    {28,  "MXM Type IV"                       },
    {29,  "MXM 3.0 Type A"                    },
    {30,  "MXM 3.0 Type B"                    },
    {31,  "PCI Express Gen 2 SFF-8639"        },
    {32,  "PCI Express Gen 3 SFF-8639"        },
    {33,  "PCI Express Mini 52-pin"           },
    {34,  "PCI Express Mini 52-pin"           },
    {35,  "PCI Express Mini 76-pin"           },
    {160, "PC-98/C20"                         },
    {161, "PC/98/C24"                         },
    {162, "PC-98/E"                           },
    {163, "PC-98/Local Bus"                   },
    {164, "PC-98/Card"                        },
    {165, "PCI Express"                       },
    {166, "PCI Express x1"                    },
    {167, "PCI Express x2"                    },
    {168, "PCI Express x4"                    },
    {169, "PCI Express x8"                    },
    {170, "PCI Express x16"                   },
    {171, "PCI Express Gen 2"                 },
    {172, "PCI Express Gen 2 x1"              },
    {173, "PCI Express Gen 2 x2"              },
    {174, "PCI Express Gen 2 x4"              },
    {175, "PCI Express Gen 2 x8"              },
    {176, "PCI Express Gen 2 x16"             },
    {177, "PCI Express Gen 3"                 },
    {178, "PCI Express Gen 3 x1"              },
    {179, "PCI Express Gen 3 x2"              },
    {180, "PCI Express Gen 3 x4"              },
    {181, "PCI Express Gen 3 x8"              },
    {182, "PCI Express Gen 3 x16"             },
};
static_assert(IsRising(kSlotTypes));

constexpr CodeText_t kDataBusWidths[] = {
    {1,  "Other"     },
    {2,  "Unknown"   },
    {3,  "8 bit"     },
    {4,  "16 bit"    },
    {5,  "32 bit"    },
    {6,  "64 bit"    },
    {7,  "128 bit"   },
    {8,  "1x or x1"  },
    {9,  "2x or x2"  },
    {10, "4x or x4"  },
    {11, "8x or x8"  },
    {12, "12x or x12"},
    {13, "16x or x16"},
    {14, "32x or x32"},
};
static_assert(IsRising(kDataBusWidths));

constexpr CodeText_t kUsages[] = {
    {1, "Other"      },
    {2, "Unknown"    },
    {3, "Available"  },
    {4, "In use"     },
    {5, "Unavailable"},
};
static_assert(IsRising(kUsages));

constexpr CodeText_t kLengths[] = {
    {1, "Other"                  },
    {2, "Unknown"                },
    {3, "Short Length"           },
    {4, "Long Length"            },
    {5, "2.5\" drive form factor"},
    {6, "3.5\" drive form factor"},
};
static_assert(IsRising(kLengths));

constexpr CodeText_t kCharacteristics[] = {
    {0, "Characteristics unknown"},
    {1, "Provides 5.0 volts"     },
    {2, "Provides 3.3 volts"     },
    {3, "Shared Slot Opening"    },
    {4, "PC Card-16"             },
    {5, "CardBus"                },
    {6, "Zoom Video"             },
    {7, "Modem Ring Resume"      },
};
static_assert(IsRising(kCharacteristics));

constexpr CodeText_t kCharacteristics2[] = {
    {0, "Supports Power Management Event (PME#) signal"},
    {1, "Supports hot-plug devices"                    },
    {2, "Supports SMBus signal"                        },
    {3, "Supports Bifurcation"                         },
    {4, "Reserved, set to 0"                           },
    {5, "Reserved, set to 0"                           },
    {6, "Reserved, set to 0"                           },
    {7, "Reserved, set to 0"                           },
};
static_assert(IsRising(kCharacteristics2));

// PCI, AGP, PCI-X, and PCI Express up to x16. Slots of later kinds show no address, though they have one.
bool HasAddress(uint8_t slotType) {
    return slotType == 0x06 || slotType == 0x0F || slotType == 0x12 || (slotType >= 0xA5 && slotType <= 0xAA);
}

ClText ShowSlotId(const Field_t& field) {
    return field.Word() == 0 ? "None" : ClSMBIOSType::GetHexString(field.Word(), 2);
}
constexpr Rendering_t SlotType = Enum8(kSlotTypes, "Error: Invalid Type"),
                      DataBusWidth = Enum8(kDataBusWidths, "Error: Invalid Width"),
                      Usage = Enum8(kUsages, "Error: Invalid Usage"), Length = Enum8(kLengths, "Error: Invalid Length"),
                      SlotId{ShowSlotId}, Characteristics = BitWords8(kCharacteristics),
                      Characteristics2 = BitWords8(kCharacteristics2), NoAddress = FixedText("0FFh");

constexpr ItemRow_t kItems[] = {
    {"Slot Designation",       0x04, StringOrNone    },
    {"Slot Type",              0x05, SlotType        },
    {"Slot Data Bus Width",    0x06, DataBusWidth    },
    {"Current Usage",          0x07, Usage           },
    {"Slot Length",            0x08, Length          },
    {"Slot ID",                0x09, SlotId          },
    {"Slot Characteristics",   0x0B, Characteristics },
    {"Slot Characteristics 2", 0x0C, Characteristics2},
};

constexpr ItemRow_t kAddress[] = {
    {"Segment Group Number",   0x0D, Dec16         },
    {"Bus Number",             0x0F, Dec8          },
    {"Device Number",          0x10, DeviceNumber  },
    {"Function Number",        0x10, FunctionNumber},
    {"Device/Function Number", 0x10, Dec8          },
};

constexpr ItemRow_t kNoAddress[] = {
    {"Segment Group Number",   0x0D, NoAddress},
    {"Bus Number",             0x0F, NoAddress},
    {"Device/Function Number", 0x10, NoAddress},
};

}  // namespace

std::string_view ClSMBIOSType9::GetSlotTypeString(uint8_t type) { return WordOf(SlotType, type); }

std::string_view ClSMBIOSType9::GetSlotDataBusWidthString(uint8_t width) { return WordOf(DataBusWidth, width); }

std::string ClSMBIOSType9::GetSlotCharacteristicsString(uint8_t characteristics) {
    return BitsOrNone(kCharacteristics, characteristics, 8);
}

std::string ClSMBIOSType9::GetSlotCharacteristics2String(uint8_t characteristics) {
    return BitsOrNone(kCharacteristics2, characteristics, 8);
}

void ClSMBIOSType9::PrintStructure(const uint8_t* pData) {
    if (!PrintHead(pData)) return;
    const ClStructure structure = View(pData);
    PrintItems(RowsOf<kItems>(), structure);
    if (HasAddress(structure.Byte(0x05)))
        PrintItems(RowsOf<kAddress>(), structure);
    else
        PrintItems(RowsOf<kNoAddress>(), structure);
}

ClSMBIOSType* NewType9(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType9; }

void DescribeType9(ClDescription& description) {
    description.Explain(ShowSlotId, "hexadecimal, 2 digits or more; `None` for 0");
    description.Rows(RowsOf<kItems>());
    description.Rows(RowsOf<kAddress>(), "Slot types 06h, 0Fh, 12h and A5h to AAh");
    description.Rows(RowsOf<kNoAddress>(), "All other slot types");
}
