// Types 30 to 38 of the sample: remote access, boot, 64-bit errors, management devices, memory channels and IPMI.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

consteval void AddManagement(ClSampleBuilder& table) {
    // Out-of-Band Remote Access: maker, connections
    table.Add(30, "s b", {{0x1E00, "Halvorsen Systems", 0x03}, {0x1E01, 0, 0xF4}});

    // Boot Integrity Services: checksum, entry points of 16 and 32 bits
    table.Add(31, "b 000 dd 000000000000", {{0x1F00, 0xB1, 0xF0000BF0, 0x000F0BF0}, {0x1F01, 0x8E, 0xF0000C00, 0x000F0C00}});

    // System Boot Information: reserved bytes, the status, and what the status brings with it
    table.Add(32, "w 0000 b: b", {{0x2000, 0x0000, 0}, {0x2001, 0x0000, 8}, {0x2002, 0x4856, 0x80, 0x17, 0x02}});

    // 64-Bit Memory Error Information: type, granularity, operation; syndrome, addresses, resolution
    table.Add(33, "bbb d qq d",
              {{0x2100, 14, 4, 4, 0x00C0FFEE, 0x0000002A12345000, 0x0000000212345000, 0x00000040},
               {0x2101, 3, 2, 2, 0, 0x8000000000000000, 0x8000000000000000, 0x80000000},
               {0x2102, 0, 0, 0, 0, 0, 0, 0}});

    // Management Device: description, type, address, address type
    table.Add(34, "s b d b",
              {{0x2200, "Board monitor", 4, 0x00000295, 3},
               {0x2201, "Inlet sensor", 10, 0x0000004C, 5},
               {0x2202, "Fan controller", 14, 0xFED60000, 4},
               {0x2203, 0, 1, 0x00000000, 0}});

    // Management Device Component: description; device, component and threshold
    table.Add(35, "s www",
              {{0x2300, "CPU0 core voltage", 0x2200, 0x1A00, 0x2400},
               {0x2301, "CPU0 temperature", 0x2200, 0x1C00, 0x2401},
               {0x2302, "Inlet air", 0x2201, 0x1C02, 0xFFFF},
               {0x2303, 0, 0x2203, 0x1D02, 0xFFFF}});

    // Management Device Threshold Data: lower and upper, of the non-critical, critical and non-recoverable pair
    table.Add(36, "wwwwww",
              {{0x2400, 900, 1300, 850, 1350, 800, 1400},
               {0x2401, 0, 850, 0xFFCE, 950, 0x8000, 1000}});

    // Memory Channel: type, maximum load, and load and handle of each device
    table.Add(37, "bbb: bw",
              {{0x2500, 1, 2, 2, 1, 0x1100, 1, 0x1101}, {0x2501, 3, 32, 1, 16, 0x1106}, {0x2502, 0, 0, 0}});

    // IPMI Device Information: interface, revision, addresses; modifier and interrupt number, which old structures lack
    table.Add(38, "bbbb q | bb",
              {{0x2600, 1, 0x20, 0x20, 0xFF, 0x0000000000000CA3, 0x4B, 11},
               {0x2601, 4, 0x15, 0x42, 0x01, 0x0000000000000084, 0x00, 0},
               {0x2602, 3, 0x20, 0x20, 0xFF, 0x00000000FED30000, 0x90, 0},
               {0x2603, 16, 0x1A, 0x20, 0xFF, 0x0000000000000CA8}});
}
