// Types 21 to 25 of the sample: pointing devices, batteries, reset, security and scheduled power.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

// clang-format off
consteval void AddPower(ClSampleBuilder& table) {
    // Built-in Pointing Device
    table.Add(21, "bbb", {
        //handle type interface buttons
        {0x1500, 7,   162,      2},
        {0x1501, 8,   4,        0},
        {0x1502, 10,  9,        3},
    });

    // Portable Battery: the second one has the fields of a smart battery (SBDS).
    table.Add(22, "sssss b ww s b | ww s b d", {
        //handle location          maker      date          serial       name          chemistry, capacity, voltage
        //       SBDS version, error          SBDS serial, date, chemistry             multiplier, OEM
        {0x1600, "Cache module 1", "Aldmark", "07/03/2023", "AM-110293", "CM-BAT-12",  6, 1250, 3700,
                 "1.1", 5},
        {0x1601, "Cache module 2", "Aldmark", 0,            0,           "CM-BAT-12S", 2, 250,  3700,
                 "1.1", 0xFF,                 0x1A2B, 0x3267, "LION",                  10, 0x48560022},
        {0x1602, 0,                0,         0,            0,           0,            0, 0,    0,
                 0,     0x00,                 0x0000, 0x0000, 0,                       1,  0x00000000},
    });

    // System Reset
    table.Add(23, "b wwww", {
        //handle capabilities count   limit   timer   timeout
        {0x1700, 0x2D,        3,      5,      15,     10},
        {0x1701, 0x00,        0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF},
    });

    // Hardware Security: two bits each for the power-on, keyboard, administrator and front panel locks
    table.Add(24, "b", {
        {0x1800, 0x51},
        {0x1801, 0xA7},
    });

    // System Power Controls: in BCD; an unscheduled hour has no digits.
    table.Add(25, "bbbbb", {
        //handle month day   hour  minute second
        {0x1900, 0x12, 0x24, 0x06, 0x30, 0x00},
        {0x1901, 0xFF, 0xFF, 0xFF, 0x00, 0x00},
    });
}
// clang-format on
