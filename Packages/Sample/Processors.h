// Types 4 to 7 of the sample: processors, the old memory controllers, and caches.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

// clang-format off
consteval void AddProcessors(ClSampleBuilder& table) {
    // Processor Information: two equal processors, a service processor whose family needs two bytes, a coprocessor in
    // the form of version 2.1, and an empty socket in the form of version 2.0.
    table.Add(4, "s bb s q s b www bb | www | sss | bbb w | w | www | w | s", {
        //handle socket     type, family  manufacturer     ID                  version
        //       voltage, clock, maximum and current speed, status, upgrade
        //       L1, L2, L3 cache        serial            asset tag   part         cores, enabled, threads, traits
        //       family 2, cores, enabled and threads 2, enabled threads, socket
        {0x0400, "CPU0",    3, 0x0B, "Lumetra",           0xBFEBFBFF000406E3, "Lumetra(R) Ostrel(R) 8340 @ 2.40GHz",
                 0x8C, 100, 3700, 2400, 0x41, 54,
                 0x0700, 0x0701, 0x0702, "OS83-41C7-0092", "HV-CPU-0", "OS8340-32", 32, 32, 64, 0x00FC,
                 0x000B, 32, 32, 64},
        {0x0401, "CPU1",    3, 0x0B, "Lumetra",           0xBFEBFBFF000406E3, "Lumetra(R) Ostrel(R) 8340 @ 2.40GHz",
                 0x8C, 100, 3700, 2400, 0x41, 54,
                 0x0703, 0x0704, 0x0705, "OS83-41C7-0115", "HV-CPU-1", "OS8340-32", 32, 28, 56, 0x00FC,
                 0x000B, 32, 28, 56, 56, "LGA-4094"},
        {0x0402, "SVC0",    3, 0xFE, "Halvorsen Systems", 0x0000000F0000002A, "Sidecar 2 service processor",
                 0x04, 25, 800, 0, 0x44, 59,
                 0x0706, 0xFFFF, 0xFFFF, 0,                0,          "HV-SC2",    0xFF, 2, 2, 0x0002,
                 0x0101, 300, 2, 2, 2},
        {0x0403, "COPROC0", 5, 0x0F, 0,                   0x0000000000000000, 0,
                 0x80, 0,   1000, 0,    0x81, 61,
                 0xFFFF, 0xFFFF, 0xFFFF},
        {0x0404, "CPU2",    9, 0x02, 0,                   0x0000000000000000, 0,
                 0x03, 100, 0,    0,    0x00, 45},
    });
}

consteval void AddMemoryControllers(ClSampleBuilder& table) {
    // Memory Controller Information
    table.Add(5, "bb bb b ww b b ww b", {
        //handle detecting, correcting; interleave size speeds types voltage modules, handles    correcting enabled
        {0x0500, 6,         0x18,       3, 3,      9,   0x0010, 0x0400, 4,      2, 0x0600, 0x0601,        0x08},
        {0x0501, 3,         0x04,       2, 2,      8,   0x0001, 0x0002, 1,      2, 0x0602, 0x0603,        0x04},
    });

    // Memory Module Information
    table.Add(6, "s bb w bbb", {
        //handle socket banks speed type    installed enabled errors
        {0x0600, "MM0", 0x0F, 60,   0x0400, 0x09,     0x09,   0x00},
        {0x0601, "MM1", 0x2F, 60,   0x0400, 0x89,     0x89,   0x01},
        {0x0602, "MM2", 0x4F, 0,    0x0002, 0x7D,     0x7E,   0x02},
        {0x0603, 0,     0xFF, 0,    0x0002, 0x7F,     0x7F,   0x04},
    });
}

consteval void AddCaches(ClSampleBuilder& table) {
    // Cache Information. Sizes in kilobytes; in units of 64 KB if the upper bit is set.
    table.Add(7, "s www ww | bbbb | dd", {
        //handle  socket     config  maximum installed supported current speed, correction, type, associativity, sizes 2
        {0x0700, "CPU0 L1",   0x0180, 0x8028, 0x8028,   0x0020, 0x0020,   1,  4, 4, 7,  0x80000028, 0x80000028},
        {0x0701, "CPU0 L2",   0x0181, 0x8200, 0x8200,   0x0020, 0x0020,   4,  5, 5, 8,  0x80000200, 0x80000200},
        {0x0702, "CPU0 L3",   0x0182, 0x8300, 0x8300,   0x0002, 0x0002,   15, 6, 5, 9,  0x80000300, 0x80000300},
        {0x0703, "CPU1 L1",   0x0180, 0x8028, 0x8028,   0x0020, 0x0020,   1,  4, 4, 7,  0x80000028, 0x80000028},
        {0x0704, "CPU1 L2",   0x0181, 0x8200, 0x8200,   0x0020, 0x0020,   4,  5, 5, 8,  0x80000200, 0x80000200},
        {0x0705, "CPU1 L3",   0x0182, 0x8300, 0x8300,   0x0002, 0x0002,   15, 6, 5, 14, 0x80000300, 0x80000300},
        {0x0706, "SVC0 L1",   0x0080, 1024,   64,       0x001C, 0x0010,   0,  3, 3, 3},
        {0x0707, 0,           0x03EF, 0x8001, 1025,     0x0080, 0x0000,   0,  7, 0, 15},
        {0x0708, "Board L2",  0x0229, 2048,   0,        0x0003, 0x0040},
    });
}
// clang-format on
