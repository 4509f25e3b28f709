// Types 21 to 25 of the sample: pointing devices, batteries, reset, security and scheduled power.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

consteval void AddPower(ClSampleBuilder& table) {
    // Built-in Pointing Device: type, interface, buttons
    table.Add(21, "bbb", {{0x1500, 7, 162, 2}, {0x1501, 8, 4, 0}, {0x1502, 10, 9, 3}});

    // Portable Battery: location, maker, date, serial, name; chemistry, capacity, voltage, SBDS version, error; SBDS
    // serial number, date, chemistry, capacity multiplier, OEM value
    table.Add(22, "sssss b ww s b | ww s b d",
              {{0x1600, "Cache module 1", "Aldmark", "07/03/2023", "AM-110293", "CM-BAT-12", 6, 1250, 3700, "1.1", 5},
               {0x1601, "Cache module 2", "Aldmark", 0, 0, "CM-BAT-12S", 2, 250, 3700, "1.1", 0xFF, 0x1A2B, 0x3267,
                "LION", 10, 0x48560022}});

    // System Reset: capabilities; count, limit, timer interval, timeout
    table.Add(23, "b wwww", {{0x1700, 0x2D, 3, 5, 15, 10}, {0x1701, 0x00, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF}});

    // Hardware Security: two bits each for the power-on, keyboard, administrator and front panel locks
    table.Add(24, "b", {{0x1800, 0x51}, {0x1801, 0xA7}});

    // System Power Controls: month, day, hour, minute, second in BCD; FFh: none
    table.Add(25, "bbbbb", {{0x1900, 0x12, 0x24, 0x06, 0x30, 0x00}, {0x1901, 0xFF, 0xFF, 0x00, 0x00, 0x00}});
}
