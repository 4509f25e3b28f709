// The vendor's types of the sample: 130, 131, 148, 221 and 222.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

consteval void AddVendor(ClSampleBuilder& table) {
    // Management feature: the number of the signature's string; capable, feature, storage and serial redirection,
    // network; boot options (14), terminal (15), security (16), KVM (18); the string
    table.Add(130, "d bbbbb 0 bbb 0 b: S",
              {{0x8200, 1, 1, 1, 1, 1, 1, 0x38, 3, 0xC0, 1, "$QXM"},
               {0x8201, 0, 0, 2, 0, 1, 0, 0x06, 5, 0x00, 0}});

    // Management engine: feature bits, firmware version, PCI device, capabilities, engine version, wired and wireless
    // network devices, setup options
    table.Add(131, "b 000 wwww d 0000 d wwww 0000 d 00 d 00 b",
              {{0x8300, 0x13, 2, 14, 3, 8, 0x48C100B2, 0x0000C019, 9, 2, 40, 3017, 0x7A1100FE, 0x7A240318, 0x26},
               {0x8301, 0x04, 0, 0, 0, 0, 0x12AB05FA, 0x00000000, 0, 0, 0, 0, 0, 0, 0x00}});

    // Firmware versions of the platform, all of it strings. First the layout of a server board: 2, then a version for
    // each component.
    table.Add(148, "b sssssss ssssssss ssssssss ssssssss",
              {{0x9400, 2, "OMFI 2.14", "1.93.1147", "9.2.40.3017", "1.17", "0.98", "1.04", "1a000042", "1b000017", 0,
                "HCM 1.8", "HCM 1.9", "MTC 4.02", "3.3", "PSU A3\t(both)", 0, 0, 0, 0, 0, "2.6.0.1210", "2.6.0.1211",
                "2.7.0.1002", 0, "4.3.0", "1.5.88", "1.5.90", 0, "8.3.10", "7.6.14", "0.95", "1.10"}});

    // Next the layout of a client platform: versions, the board, and settings as decimal numbers. Nothing is set for
    // MaxCState and S0ix.
    table.Add(148, "ssssssss ssss ss ssssssss",
              {{0x9401, "7.2.1011", "0901", "1.0.37", "901", "4.2.1", "12.30", "0.33", "C0 stepping", "241", "3",
                "Tablet", "HVB1.88", "1F.B3", "T2.7", "1", "20", "0", "2", 0, "1", 0, "1"}});

    // And the one that brings its own keys: platform, then a key and a value 25 times. Their order gives the values
    // from the eleventh on their meaning.
    table.Add(148, "s 0: ss",
              {{0x9402,          "Tarvelle",  "BIOS",       "HVT1.07",    "uCode",        "0000002e",   "MTC",
                "1.12",          "GOP",       "3.4.5",      "Engine",     "3.1.50.2222",  "PMC",        "1.28",
                "Sensor hub",    "4.1",       "Touch",      "T3.0",       0,              0,            "SoC",
                "B1",            "BoardType", "1",          "BoardRev",   "2",            "CPU flavor", "1",
                "PMIC",          "1F.02",     "SecureBoot", "1",          "BootMode",     "20",         "Cadrel",
                "0",             "CPUTurbo",  "2",          "DebugPort",  "1",            "Trace",      0,
                "MaxPkgCState",  "2",         "MaxCoreCState", "7",       "GfxTurbo",     "1",          "S0ix",
                "3",             "RC6",       "x"}});

    // Firmware components: a count, and for each the name, a text, and four parts of a version. A group of Type 14 takes
    // the strings for names in their order, so the texts stand behind the names, and the disabled component is the last.
    table.Add(221, "b: ss bbb w",
              {{0xDD00, 4, "Start-up code", 0, 2, 14, 0, 0x0017, "Microcode", 0, 1, 10, 0, 0x1234, "Engine firmware", 0, 255,
                0, 3, 0x0ABC, "Disabled", 0, 0, 0, 0, 0},
               {0xDD01, 2, "Board controller", 0, 1, 93, 4, 0x047B, "Power supply", "both bays", 0, 3, 0, 0}});

    // Boot checkpoint: revision, I/O port, count, checkpoint; its description
    table.Add(222, "b w bb: S",
              {{0xDE00, 1, 0x0080, 4, 0xB2, "Legacy option ROMs initialized"}, {0xDE01, 2, 0x0000, 0, 0}});
}
