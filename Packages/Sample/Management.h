// Types 30 to 38 of the sample: remote access, boot, 64-bit errors, management devices, memory channels and IPMI.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

// clang-format off
consteval void AddManagement(ClSampleBuilder& table) {
    // Out-of-Band Remote Access
    table.Add(30, "s b", {
        //handle manufacturer         connections
        {0x1E00, "Halvorsen Systems", 0x03},
        {0x1E01, 0,                   0xF4},
    });

    // Boot Integrity Services Entry Point: the checksum brings the sum of the formatted area to 0.
    table.Add(31, "b 000 dd 000000000000", {
        //handle checksum 16-bit entry 32-bit entry
        {0x1F00, 0xB1,    0xF0000BF0,  0x000F0BF0},
        {0x1F01, 0x8E,    0xF0000C00,  0x000F0C00},
    });

    // System Boot Information
    table.Add(32, "w 0000 b: b", {
        //handle reserved status and its data
        {0x2000, 0x0000,  0},
        {0x2001, 0x0000,  8},
        {0x2002, 0x4856,  0x80, 0x17, 0x02},
    });

    // 64-Bit Memory Error Information
    table.Add(33, "bbb d qq d", {
        //handle type, granularity, operation  syndrome  array address       device address      resolution
        {0x2100, 14, 4, 4,                   0x00C0FFEE, 0x0000002A12345000, 0x0000000212345000, 0x00000040},
        {0x2101, 3,  2, 2,                   0x00000000, 0x8000000000000000, 0x8000000000000000, 0x80000000},
        {0x2102, 0,  0, 0,                   0x00000000, 0x0000000000000000, 0x0000000000000000, 0x00000000},
    });

    // Management Device
    table.Add(34, "s b d b", {
        //handle description       type address     address type
        {0x2200, "Board monitor",  4,   0x00000295, 3},
        {0x2201, "Inlet sensor",   10,  0x0000004C, 5},
        {0x2202, "Fan controller", 14,  0xFED60000, 4},
        {0x2203, 0,                1,   0x00000000, 0},
    });

    // Management Device Component
    table.Add(35, "s www", {
        //handle description          device  component threshold
        {0x2300, "CPU0 core voltage", 0x2200, 0x1A00,   0x2400},
        {0x2301, "CPU0 temperature",  0x2200, 0x1C00,   0x2401},
        {0x2302, "Inlet air",         0x2201, 0x1C02,   0xFFFF},
        {0x2303, 0,                   0x2203, 0x1D02,   0xFFFF},
    });

    // Management Device Threshold Data: lower and upper ones
    table.Add(36, "ww ww ww", {
        //handle non-critical critical     non-recoverable
        {0x2400, 900, 1300,   850,    1350, 800,    1400},
        {0x2401, 0,   850,    0xFFCE, 950,  0x8000, 1000},
    });

    // Memory Channel
    table.Add(37, "bbb: bw", {
        //handle type load devices; load and handle of each
        {0x2500, 1,   2,   2,       1,  0x1100, 1, 0x1101},
        {0x2501, 3,   32,  1,       16, 0x1106},
        {0x2502, 0,   0,   0},
    });

    // IPMI Device Information: the last one is of the first IPMI version, which has no modifier and interrupt.
    table.Add(38, "bbbb q | bb", {
        //handle interface revision slave storage base address        modifier interrupt
        {0x2600, 1,        0x20,    0x20, 0xFF,   0x0000000000000CA3, 0x4B,    11},
        {0x2601, 4,        0x15,    0x42, 0x01,   0x0000000000000084, 0x00,    0},
        {0x2602, 3,        0x20,    0x20, 0xFF,   0x00000000FED30000, 0x90,    0},
        {0x2603, 16,       0x1A,    0x20, 0xFF,   0x0000000000000CA8},
    });
}
// clang-format on
