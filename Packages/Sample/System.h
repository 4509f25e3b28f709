// Types 0 to 3 of the sample: firmware, system, boards and enclosures.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

// clang-format off
consteval void AddSystem(ClSampleBuilder& table) {
    // BIOS Information: of version 3.1, and of 2.0 without extension bytes. The second one has no version string, so a
    // decoder shows little of it.
    table.Add(0, "ss w s b q | bb | bbbb | w", {
        //handle vendor               version               segment date          size  characteristics, extension
        //       release, controller, extended size
        {0x0000, "Halvorsen Systems", "HVB2.14.0308",       0xF000, "03/08/2024", 0xFF, 0x000000007C099A80, 0x33, 0x07,
                 2, 14,   0x1A, 9, 32},
        {0x0001, "Halvorsen Systems", 0,                    0xE000, "11/30/2019", 0x0F, 0x0000000000004998},
    });

    // System Information. The second one has the UUID of a partition, no serial number and an unlisted wake-up type.
    table.Add(1, "ssss | bbbbbbbbbbbbbbbb b | ss", {
        //handle manufacturer         product                  version  serial
        //       UUID
        //       wake-up type, SKU, family
        {0x0100, "Halvorsen Systems", "Fjelltind 2440",        "Rev C", "HV24-0811-00417",
                 0x4C, 0x00, 0x10, 0x07, 0x5A, 0xE1, 0x41, 0x0F, 0x9B, 0x02, 0x00, 0x1D, 0xC3, 0x88, 0x4E, 0xF1,
                 6, "FT-2440-2S", "Fjelltind"},
        {0x0101, "Halvorsen Systems", "Fjelltind partition 2", 0,       0,
                 0xB7, 0x33, 0xA0, 0xC4, 0x00, 0x09, 0x40, 0x12, 0x8E, 0x61, 0x0A, 0x5C, 0x00, 0x00, 0x00, 0x02,
                 9, 0,            "Fjelltind"},
    });

    // Baseboard Information
    table.Add(2, "ssss | s b s w b b: w", {
        //handle manufacturer         product         version serial         asset tag    features
        //       location             chassis, type, contained objects
        {0x0200, "Halvorsen Systems", "FT-2440-MB",   "C02", "MB24-0007731", "HV-A-1147", 0x09,
                 "Main tray",         0x0300, 10, 2, 0x0400, 0x0401},
        {0x0201, "Halvorsen Systems", "FT-RISER-2",   "B01", 0,              "HV-A-1148", 0x1E,
                 "Rear, riser bay 2", 0x0300, 7,  0},
        {0x0202, "Halvorsen Systems", "FT-MGMT",      "A05", "MG24-0001190", 0,           0x21,
                 0,                   0x0301, 5,  0},
        {0x0203, 0,                   "FT-BACKPLANE", 0,     0,              0,           0x00,
                 0,                   0x0300, 14, 0},
    });

    // System Enclosure or Chassis: the server, and a blade slot with few facts.
    table.Add(3, "s b sss | bbbb | d bbbb | s", {
        //handle manufacturer         type  version  serial          asset tag    states, security
        //       OEM value   height, cords, elements and their length, SKU
        {0x0300, "Halvorsen Systems", 0x97, "Rev C", "CH24-0050092", "HV-A-1147", 3, 4, 3, 4,
                 0x48560001, 2,  2, 0, 0, "FT-CH-2U"},
        {0x0301, "Halvorsen Systems", 0x80, 0,       0,              0,           2, 7, 5, 9,
                 0x00000000, 0,  0, 0, 0},
    });
    table.Add(3, "s b sss bbbb d bb bb bbb bbb s bb", {  // with two contained elements of three bytes each
        {0x0302, "Halvorsen Systems", 29,   "Rev A", "CH24-0050177", "HV-A-1203", 1, 3, 6, 3,
                 0xFFFFFFFF, 10, 4, 2, 3, 0x83, 1, 8, 0x91, 0, 2, "FT-CH-10U", 0, 10},
    });
}
// clang-format on
