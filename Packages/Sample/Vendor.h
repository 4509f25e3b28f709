// The vendor's types of the sample: 130, 131, 148, 221 and 222.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

// clang-format off
consteval void AddVendor(ClSampleBuilder& table) {
    // Management feature
    table.Add(130, "d bbbbb 0 bbb 0 b: S", {
        //handle string, capable, enabled, storage, serial, network  boot options, terminal, security, KVM  signature
        {0x8200, 1,      1,       1,       1,       1,      1,       0x38,         3,        0xC0,     1,   "$QXM"},
        {0x8201, 0,      0,       2,       0,       1,      0,       0x06,         5,        0x00,     0},
    });

    // Management engine
    table.Add(131, "b 000 wwww d 0000 d wwww 0000 d 00 d 00 b", {
        //handle features firmware  PCI device  capabilities engine version wired NIC   wireless NIC setup
        {0x8300, 0x13, 2, 14, 3, 8, 0x48C100B2, 0x0000C019,  9, 2, 40, 3017, 0x7A1100FE, 0x7A240318, 0x26},
        {0x8301, 0x04, 0, 0,  0, 0, 0x12AB05FA, 0x00000000,  0, 0, 0,  0,    0x00000000, 0x00000000, 0x00},
    });

    // Firmware versions of the platform, mostly strings, in three layouts. The first: a server board, marked by the
    // number 2, with the version of each component.
    table.Add(148, "b sssssss ssssssss ssssssss ssssssss", {
        {0x9400, 2,
         "OMFI 2.14", "1.93.1147", "9.2.40.3017", "1.17", "0.98", "1.04", "1a000042",
         "1b000017", 0, "HCM 1.8", "HCM 1.9", "MTC 4.02", "3.3", "PSU A3\t(both)", 0,
         0, 0, 0, 0, "2.6.0.1210", "2.6.0.1211", "2.7.0.1002", 0,
         "4.3.0", "1.5.88", "1.5.90", 0, "8.3.10", "7.6.14", "0.95", "1.10"},
    });

    // The second: a client platform, with versions, the board, and settings as decimal numbers.
    table.Add(148, "ssssssss ssss ss ssssssss", {
        //       graphics    microcode memory    kernel power LPC      PMC      VPCU    SoC
        {0x9401, "7.2.1011", "0901",   "1.0.37", "901", "4.2.1", "12.30", "0.33", "C0 stepping",
        //board  revision flavor    firmware   PMIC     touch
         "241",  "3",     "Tablet", "HVB1.88", "1F.B3", "T2.7",
        //secure boot, boot mode, Cadrel, processor turbo, C-state, graphics turbo, S0ix, RC6
         "1",          "20",      "0",    "2",             0,       "1",            0,    "1"},
    });

    // The third: 25 pairs of a key and a value. From the eleventh on, the place of a pair says what its value means.
    table.Add(148, "s 0: ss", {
        {0x9402, "Tarvelle",
         "BIOS",         "HVT1.07",   "uCode",         "0000002e", "MTC",        "1.12",  "GOP",      "3.4.5",
         "Engine",       "3.1.50.22", "PMC",           "1.28",     "Sensor hub", "4.1",   "Touch",    "T3.0",
         0,              0,           "SoC",           "B1",       "BoardType",  "1",     "BoardRev", "2",
         "CPU flavor",   "1",         "PMIC",          "1F.02",    "SecureBoot", "1",     "BootMode", "20",
         "Cadrel",       "0",         "CPUTurbo",      "2",        "DebugPort",  "1",     "Trace",    0,
         "MaxPkgCState", "2",         "MaxCoreCState", "7",        "GfxTurbo",   "1",     "S0ix",     "3",
         "RC6",          "x"},
    });

    // Firmware components. A group of type 14 takes the strings as names, in order. So a text comes after all names,
    // and the disabled component is the last one.
    table.Add(221, "b: ss bbb w", {
        //handle count name           text  version
        {0xDD00, 4, "Start-up code",    0, 2,   14, 0, 0x0017,
                    "Microcode",        0, 1,   10, 0, 0x1234,
                    "Engine firmware",  0, 255, 0,  3, 0x0ABC,
                    "Disabled",         0, 0,   0,  0, 0x0000},
        {0xDD01, 2, "Board controller", 0, 1,   93, 4, 0x047B,
                    "Power supply",     "both bays", 0, 3, 0, 0x0000},
    });

    // Boot checkpoint
    table.Add(222, "b w bb: S", {
        //handle revision port    count checkpoint description
        {0xDE00, 1,       0x0080, 4,    0xB2,      "Legacy option ROMs initialized"},
        {0xDE01, 2,       0x0000, 0,    0},
    });
}
// clang-format on
