// Types 16 to 20 of the sample: memory arrays, devices, errors and addresses.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

// clang-format off
consteval void AddMemory(ClSampleBuilder& table) {
    // Physical Memory Array: capacity in kilobytes; 80000000h points to the extended one, in bytes.
    table.Add(16, "bbb d ww | q", {
        //handle location use correction capacity    error   devices extended capacity
        {0x1000, 3,       3,  6,         0x80000000, 0xFFFE, 6,      0x0000018000000000},
        {0x1001, 3,       3,  6,         0x80000000, 0x1200, 6,      0x0000018000000000},
        {0x1002, 9,       5,  3,         0x00000200, 0xFFFE, 1,      0x0000000000000000},
        {0x1003, 162,     4,  7,         0x00010000, 0xFFFF, 1},
        {0x1004, 11,      8,  0,         0x00000000, 0xFFFE, 0},
    });

    // Memory Device: the arrays of the two processors, with a persistent module and empty or unknown slots, then
    // a flash part and video memory. Rows end where versions 2.1, 2.3, 2.6, 2.7, 2.8 and 3.2 of the structure end.
    table.Add(17, "ww www bb ss b w | w ssss | b | d w | www | b w s wwww qqqq | dd | wwww", {
        //handle array   error   total, data width, size, form, set  locator  bank   type, detail, speed  maker
        //       serial       asset tag     part number            attributes  extended size  clock    voltages
        //       technology, modes, firmware, module and controller makers and products, sizes, extended speeds,
        //       power controller and register clock driver
        {0x1100, 0x1000, 0xFFFE, 72, 64, 0x7FFF, 9,  0, "DIMM A1", "CPU0 chan 0", 26, 0x2080, 3200, "Norvane",
                "6F21A07C",  "HV-DIMM-A1", "NV64G4R32-2933",      2,          65536,         2933,    1200, 1200, 1200},
        {0x1101, 0x1000, 0xFFFE, 72, 64, 0x7FFF, 9,  0, "DIMM A2", "CPU0 chan 1", 26, 0x2080, 3200, "Norvane",
                "6F21A08E",  "HV-DIMM-A2", "NV64G4R32-2933",      2,          65536,         2933,    1200, 1200, 1200},
        {0x1102, 0x1000, 0xFFFE, 72, 64, 0x4000, 9,  1, "DIMM A3", "CPU0 chan 2", 26, 0x8080, 2933, "Norvane",
                "51B00C12",  0,            "NV16G4\tLR\t2933",    1,          0,             2933,    1200, 1200, 1200},
        {0x1103, 0x1000, 0xFFFE, 72, 64, 0x4000, 9,  1, "DIMM A4", "CPU0 chan 3", 26, 0x8080, 2933, "Norvane",
                "51B00C13",  0,            "NV16-\xC4\xD6 \xFFR2",    1,      0,             2933,    1200, 1200, 1200},
        {0x1104, 0x1000, 0xFFFE, 0,  0,  0,      9,  1, "DIMM A5", "CPU0 chan 4", 2,  0x0004, 0,    0,
                0,           0,            0,                     0,          0,             0,       0,    0,    0},
        {0x1105, 0x1000, 0xFFFE, 0,  0,  0,      9,  1, "DIMM A6", "CPU0 chan 5", 2,  0x0000, 0,    "NO DIMM",
                "NO DIMM",   "NO DIMM",    "NO DIMM",             0},
        {0x1106, 0x1001, 0x1201, 72, 64, 0x7FFF, 9,  0, "DIMM B1", "CPU1 chan 0", 26, 0x2080, 3200, "Norvane",
                "6F21A115",  "HV-DIMM-B1", "NV64G4R32-2933",      2,          65536,         2933,    1200, 1200, 1200},
        {0x1107, 0x1001, 0xFFFE, 72, 64, 0x7FFF, 9,  0, "DIMM B2", "CPU1 chan 1", 26, 0x2080, 3200, "Norvane",
                "6F21A11F",  "HV-DIMM-B2", "NV64G4R32\xC2\xAE \xE2\x82\xAC", 2, 65536,      2933,    1200, 1200, 1200},
        {0x1108, 0x1001, 0xFFFE, 72, 64, 0x4000, 9,  1, "DIMM B3", "CPU1 chan 2", 26, 0x4080, 2666, "Norvane",
                "51B00C40",  0,            "NV16G4U16",           1,          0,             2666,    1200, 1350, 1200},
        {0x1109, 0x1001, 0xFFFE, 72, 64, 0x4000, 9,  1, "DIMM B4", "CPU1 chan 3", 26, 0x3080, 2666, "Norvane",
                "7700D001",  "HV-NV-B4",   "NV16G-N",             1,          0,             2666,    1200, 1200, 1200,
                4, 0x000C, "1.04", 0x48C1, 0x0102, 0x48C1, 0x0001, 0x0000000400000000, 0, 0, 0,
                0, 0, 0x48C1, 0x0012, 0x48C1, 0xFF00},
        {0x110A, 0x1001, 0xFFFE, 0xFFFF, 0xFFFF, 0xFFFF, 2, 0xFF, "DIMM B5", "CPU1 chan 4", 31, 0x0004, 0, 0,
                0,           0,            0,                     0,          0,             0},
        {0x110B, 0x1001, 0xFFFE, 0,  0,  0,      16, 1, "DIMM B6", 0,             22, 0x0003, 0,    0,
                0,           0,            0,                     0},
        {0x110C, 0x1002, 0xFFFF, 8,  8,  0x8200, 5,  0, "Firmware flash", 0,      9,  0x1000, 0,    "Norvane",
                0,           0,            "NVF512K"},
        {0x110D, 0x1003, 0xFFFF, 32, 32, 64,     11, 0, 0,         0,             5,  0x0600},
    });

    // 32-bit Memory Error Information
    table.Add(18, "bbb dddd", {
        //handle type, granularity, operation  syndrome  array address, device address, resolution
        {0x1200, 3,  2, 2,                   0x00000000, 0x80000000, 0x80000000, 0x80000000},
        {0x1201, 12, 3, 3,                   0x0000A5C3, 0x0A123000, 0x00123000, 0x00001000},
        {0x1202, 15, 5, 6,                   0xFFFFFFFF, 0x00000000, 0x00000000, 0x00000000},
    });

    // Memory Array Mapped Address: in kilobytes; FFFFFFFFh points to the extended address, in bytes.
    table.Add(19, "ddwb | qq", {
        //handle start       end         array   width extended addresses
        {0x1300, 0x00000000, 0x09FFFFFF, 0x1000, 4},
        {0x1301, 0xFFFFFFFF, 0xFFFFFFFF, 0x1001, 4,    0x0000002800000000, 0x0000004FFFFFFFFF},
        {0x1302, 0x14000000, 0x1400FFFF, 0x1003, 1,    0, 0},
    });

    // Memory Device Mapped Address
    table.Add(20, "ddww bbb | qq", {
        //handle start       end         device  range   row, interleave position, depth  extended addresses
        {0x1400, 0x00000000, 0x03FFFFFF, 0x1100, 0x1300, 1,    1,    1},
        {0x1401, 0x04000000, 0x07FFFFFF, 0x1101, 0x1300, 1,    2,    1, 0, 0},
        {0x1402, 0x08000000, 0x08FFFFFF, 0x1102, 0x1300, 1,    0,    0, 0, 0},
        {0x1403, 0xFFFFFFFF, 0xFFFFFFFF, 0x1106, 0x1301, 0xFF, 0xFF, 0xFF, 0x0000002800000000, 0x00000037FFFFFFFF},
    });
}
// clang-format on
