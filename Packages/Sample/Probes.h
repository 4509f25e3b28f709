// Types 26 to 29 of the sample: voltage, cooling, temperature and current.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

// clang-format off
consteval void AddProbes(ClSampleBuilder& table) {
    // Three kinds of probe have the same layout. 8000h means unknown.
    constexpr const char* kProbe = "s b wwwww d | w";

    // Voltage Probe: millivolts
    table.Add(26, kProbe, {
        //handle description          status maximum minimum resolution tolerance accuracy OEM value nominal
        {0x1A00, "CPU0 core voltage", 0x63, 1900,   600,    100,       50,       250,    0x48560100, 1200},
        {0x1A01, "PSU 1 busbar",      0x6A, 12600,  11400,  100,       120,      100,    0x00000000, 12000},
        {0x1A02, "Standby rail",      0x67, 0x8000, 0x8000, 0x8000,    0x8000,   0x8000, 0x00000000},
    });

    // Cooling Device: of version 2.7, and of 2.2. The last two end earlier, without a speed or without a name.
    table.Add(27, "w bb d | w | s", {
        //handle probe   type, group OEM value  speed   description
        {0x1B00, 0x1C00, 0x63, 1,    0x48560200, 12000,  "Fan 1"},
        {0x1B01, 0x1C01, 0x90, 0,    0x00000000, 5,      "PSU 1 blower"},
        {0x1B02, 0xFFFF, 0x67, 2,    0x00000000, 0x8000},
        {0x1B03, 0xFFFF, 0x42, 0,    0x00000000},
    });

    // Temperature Probe: tenths of a degree, thousandths for the resolution
    table.Add(28, kProbe, {
        //handle description         status maximum minimum resolution tolerance accuracy OEM value nominal
        {0x1C00, "CPU0 temperature", 0x63, 1000,   0,      1000,      20,       100,    0x00000000, 450},
        {0x1C01, "PSU temperature",  0x6A, 700,    0xFFCE, 1000,      20,       100,    0x00000000, 350},
        {0x1C02, "Inlet air",        0x86, 450,    0xFF9C, 250,       5,        50,     0x48560300, 220},
        {0x1C03, 0,                  0x40, 0x8000, 0x8000, 0x8000,    0x8000,   0x8000, 0x00000000},
    });

    // Electrical Current Probe: milliamperes
    table.Add(29, kProbe, {
        //handle description            status maximum minimum resolution tolerance accuracy OEM value nominal
        {0x1D00, "PSU 1 input current", 0x6A, 10000,  0,      100,       100,      200,    0x00000000, 4000},
        {0x1D01, "PSU 2 input current", 0x8A, 10000,  0,      100,       100,      200,    0x00000000, 4000},
        {0x1D02, "Board current",       0x47, 0x8000, 0x8000, 0x8000,    0x8000,   0x8000, 0xFFFFFFFF, 0x8000},
    });
}
// clang-format on
