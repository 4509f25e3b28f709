// Port Connector Information (the SMBIOS standard, type 8).
#include "Sources/SMBIOSType008.h"

namespace {

constexpr CodeText_t kConnectorTypes[] = {
    {0,   "None"                            },
    {1,   "Centronics"                      },
    {2,   "Mini Centronics"                 },
    {3,   "Proprietary"                     },
    {4,   "DB25 pin male"                   },
    {5,   "DB25 pin female"                 },
    {6,   "DB-15  pin male"                 },
    {7,   "DB-15 pin female"                },
    {8,   "DB-9 pin male"                   },
    {9,   "DB9  pin female"                 },
    {10,  "RJ-11"                           },
    {11,  "RJ-45"                           },
    {12,  "50 Pin MiniSCSI"                 },
    {13,  "Mini-DIN"                        },
    {14,  "Micro-DIN"                       },
    {15,  "PS/2"                            },
    {16,  "Infrared"                        },
    {17,  "HP-HIL"                          },
    {18,  "Access Bus"                      },
    {19,  "SSA SCSI"                        },
    {20,  "Circular DIN-8 male"             },
    {21,  "Circular DIN-8 female"           },
    {22,  "On Board IDE"                    },
    {23,  "On Board Floppy"                 },
    {24,  "9 Pin Dual Inline (pin 10 cut)"  },
    {25,  "25 Pin Dual Inline (pin 26 cut)" },
    {26,  "50 Pin Dual Inline"              },
    {27,  "68 Pin  Dual Inline"             },
    {28,  "On Board Sound Input from CD-ROM"},
    {29,  "Mini-Centronics Type-14"         },
    {30,  "Mini-Centronics Type-26"         },
    {31,  "Mini-jack (headphones)"          },
    {32,  "BNC"                             },
    {33,  "1394"                            },
    {34,  "SAS/SATA Plug Receptacle"        },
    {35,  "USB Type-C Receptacle"           },
    {160, "PC-98"                           },
    {161, "PC-98Hireso"                     },
    {162, "PC-H98"                          },
    {163, "PC-98Note"                       },
    {164, "PC-98Full"                       },
    {255, "Other - Ref Des indicates type"  },
};
static_assert(IsRising(kConnectorTypes));

constexpr CodeText_t kPortTypes[] = {
    {0,   "None"                              },
    {1,   "Parallel Port XT/AT Compatible"    },
    {2,   "Parallel Port PS/2"                },
    {3,   "Parallel Port ECP"                 },
    {4,   "Parallel Port EPP"                 },
    {5,   "Parallel Port ECP/EPP"             },
    {6,   "Serial Port XT/AT Compatible"      },
    {7,   "Serial Port 16450 Compatible"      },
    {8,   "Serial Port 16550 Compatible"      },
    {9,   "Serial Port 16550A Compatible"     },
    {10,  "SCSI Port"                         },
    {11,  "MIDI Port"                         },
    {12,  "Joy Stick Port"                    },
    {13,  "Keyboard Port"                     },
    {14,  "Mouse Port"                        },
    {15,  "SSA SCSI"                          },
    {16,  "USB"                               },
    {17,  "FireWire (IEEE P1394)"             },
    {18,  "PCMCIA Type I"                     },
    {19,  "PCMCIA Type II"                    },
    {20,  "PCMCIA Type III"                   },
    {21,  "Cardbus"                           },
    {22,  "Access Bus Port"                   },
    {23,  "SCSI II"                           },
    {24,  "SCSI Wide"                         },
    {25,  "PC-98"                             },
    {26,  "PC-98-Hireso"                      },
    {27,  "PC-H98"                            },
    {28,  "Video Port"                        },
    {29,  "Audio Port"                        },
    {30,  "Modem Port"                        },
    {31,  "Network Port"                      },
    {32,  "SATA"                              },
    {33,  "SAS"                               },
    {34,  "MFDP (Multi-Function Display Port)"},
    {35,  "Sparkline"                         },
    {160, "8251 Compatible"                   },
    {161, "8251 FIFO Compatible"              },
    {255, "Other"                             },
};
static_assert(IsRising(kPortTypes));

constexpr Rendering_t ConnectorType = Enum8(kConnectorTypes, "Error: Invalid Type"),
                      PortType = Enum8(kPortTypes, "Error: Invalid Type");

constexpr ItemRow_t kItems[] = {
    {"Internal Reference Designator", 0x04, StringOrNone },
    {"Internal Connector Type",       0x05, ConnectorType},
    {"External Reference Designator", 0x06, StringOrNone },
    {"External Connector Type",       0x07, ConnectorType},
    {"Port Type",                     0x08, PortType     },
};

}  // namespace

std::string_view ClSMBIOSType8::GetConnectorTypeString(uint8_t type) { return WordOf(ConnectorType, type); }

std::string_view ClSMBIOSType8::GetPortTypeString(uint8_t type) { return WordOf(PortType, type); }

void ClSMBIOSType8::PrintStructure(const uint8_t* pData) { PrintRows(RowsOf<kItems>(), pData); }

ClSMBIOSType* NewType8(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType8; }

void DescribeType8(ClDescription& description) { description.Rows(RowsOf<kItems>()); }
