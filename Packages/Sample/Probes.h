// Types 26 to 29 of the sample: voltage, cooling, temperature and current.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

// Description, location and status; maximum, minimum, resolution, tolerance, accuracy (8000h: unknown); OEM value;
// nominal value. Millivolts, tenths of a degree and milliamperes.
inline constexpr const char* kProbe = "s b wwwww d | w";

consteval void AddProbes(ClSampleBuilder& table) {
    // clang-format off
    table.Add(26, kProbe, {
        {0x1A00, "CPU0 core voltage", 0x63, 1900,   600,    100,    50,     250,    0x48560100, 1200},
        {0x1A01, "PSU 1 busbar",      0x6A, 12600,  11400,  100,    120,    100,    0,          12000},
        {0x1A02, "Standby rail",      0x67, 0x8000, 0x8000, 0x8000, 0x8000, 0x8000, 0},
    });

    // Cooling Device: temperature probe, type and status, unit group, OEM value; nominal speed; description. Each older
    // version ends earlier.
    table.Add(27, "w bb d | w | s", {
        {0x1B00, 0x1C00, 0x63, 1, 0x48560200, 12000,  "Fan 1"},
        {0x1B01, 0x1C01, 0x90, 0, 0x00000000, 5,      "PSU 1 blower"},
        {0x1B02, 0xFFFF, 0x67, 2, 0x00000000, 0x8000},
        {0x1B03, 0xFFFF, 0x42, 0, 0x00000000},
    });

    table.Add(28, kProbe, {
        {0x1C00, "CPU0 temperature", 0x63, 1000,   0,      10,     20,     100, 0, 450},
        {0x1C01, "PSU temperature",  0x6A, 700,    0xFFCE, 10,     20,     100, 0, 350},
        {0x1C02, "Inlet air",        0x86, 450,    0xFF9C, 10,     5,      50,  0x48560300, 220},
        {0x1C03, 0,                  0x40, 0x8000, 0x8000, 0x8000, 0x8000, 0x8000, 0},
    });

    table.Add(29, kProbe, {
        {0x1D00, "PSU 1 input current", 0x6A, 10000,  0,      100,    100,    200,    0, 4000},
        {0x1D01, "PSU 2 input current", 0x8A, 10000,  0,      100,    100,    200,    0, 4000},
        {0x1D02, "Board current",       0x47, 0x8000, 0x8000, 0x8000, 0x8000, 0x8000, 0xFFFFFFFF, 0x8000},
    });
    // clang-format on
}
