// Types 8 to 10 of the sample: connectors, slots and the old form of on-board devices.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

// clang-format off
consteval void AddSlots(ClSampleBuilder& table) {
    // Port Connector Information
    table.Add(8, "s b s b b", {
        //handle internal     type  external             type  port
        {0x0800, "J_VGA1",    0,    "Front video",       7,    28},
        {0x0801, "J_USB3",    0,    "Rear USB 1",        0xFF, 16},
        {0x0802, "J_USBC",    35,   "Front USB-C",       35,   16},
        {0x0803, "J_COM1",    24,   "Serial A",          8,    9},
        {0x0804, "J_LAN1",    0,    "LAN 1",             11,   31},
        {0x0805, "J_SAS1",    34,   0,                   0,    33},
        {0x0806, "J_AUX",     0xFF, "Service connector", 36,   36},
        {0x0807, 0,           27,   "Tape",              6,    0xFF},
    });

    // System Slots: of version 2.6 and later, of 2.1, and of 2.0.
    table.Add(9, "s bbbb w b | b | w bb | b b: wbbb", {
        //handle designation           type  width, usage, length  ID      characteristics  segment, bus, device; peers
        {0x0900, "Riser 1 slot 1",     0xAA, 13, 4, 4,             1,      0x04, 0x0B,      0, 0x17, 0x00},
        {0x0901, "Riser 1 slot 2",     0xA9, 11, 3, 3,             2,      0x04, 0x01,      0, 0x3A, 0x12},
        {0x0902, "Riser 2 slot 1",     0xB6, 13, 4, 4,             3,      0x0C, 0x0F,      0, 0x5D, 0x00, 13,
                 1, 0, 0x5E, 0x00, 8},
        {0x0903, "Mezzanine",          0xB5, 11, 5, 2,             0x0100, 0x04, 0x06,      1, 0xFF, 0xFF},
        {0x0904, "M.2 boot slot",      0x17, 10, 4, 1,             6,      0x04, 0x30,      0, 0x02, 0x08},
        {0x0905, "Drive bay 0",        0x20, 10, 4, 5,             7,      0x04, 0x02,      0, 0x03, 0x20},
        {0x0906, "Service slot (PCI)", 0x06, 5,  3, 3,             0,      0x07, 0x01},
        {0x0907, "Cartridge slot",     0xA1, 4,  2, 6,             0x00FF, 0xF0},
        {0x0908, 0,                    0xC0, 15, 6, 7,             0,      0x00, 0x00,      0, 0, 0},
    });

    // On Board Devices Information
    table.Add(10, ": b s", {
        //handle type and description of each device
        {0x0A00, 0x83, "Sidecar 2 graphics", 0x85, "10G port 1", 0x05, "10G port 2", 0x89, 0},
        {0x0A01, 0x03, "Spare graphics",     0x8F, "Timer card", 0x0A, "Drive controller"},
    });
}
// clang-format on
