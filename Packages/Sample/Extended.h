// Types 39 to 46 and 126 of the sample: power supplies, additional information, on-board devices, host interfaces, TPM,
// what processors add, firmware components, string properties, and inactive structures.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

// clang-format off
consteval void AddExtended(ClSampleBuilder& table) {
    // System Power Supply: the last one has no probes and no fan, and refers to a missing string.
    table.Add(39, "b sssssss ww | www", {
        //handle group location    name            maker      serial       asset tag  part          revision
        //       capacity, traits  voltage probe, fan, current probe
        {0x2700, 1, "PSU bay 1",    "HV-PSU-1100",  "Aldmark", "AM-P-0912", "HV-PS-1", "AMP1100-PL", "A3",
                 1100,   0x11AB,   0x1A01, 0x1B01, 0x1D00},
        {0x2701, 1, "PSU bay 2",    "HV-PSU-1100",  "Aldmark", "AM-P-0957", "HV-PS-2", "AMP1100-PL", "A3",
                 1100,   0x12A7,   0xFFFF, 0xFFFF, 0x1D01},
        {0x2702, 0, "Cache module", "Hold-up pack", "Aldmark", 0,           0,         0,            0,
                 0x8000, 0x1480,   0xFFFF, 0xFFFF, 0xFFFF},
        {0x2703, 0, "Shelf",        7,              0,         0,           0,         0,            0,
                 0,      0xC000},
    });

    // Additional Information
    table.Add(40, "b: b w b s b", {
        //handle entries; length, handle and offset of the field, text and value of each
        {0x2800, 2,       6, 0x0400, 0x06, "Ostrel 8340", 0x0B, 6, 0x0900, 0x05, "PCI Express x16, riser", 0xAA},
        {0x2801, 1,       6, 0x1109, 0x12, "Persistent module", 0x1A},
    });

    // Onboard Devices Extended Information
    table.Add(41, "s bb w bb", {
        //handle designation           type  instance segment bus   device and function
        {0x2900, "Sidecar 2 graphics", 0x83, 1,       0,      0x04, 0x00},
        {0x2901, "10G port 1",         0x85, 1,       0,      0x3D, 0x00},
        {0x2902, "10G port 2",         0x05, 2,       0,      0x3D, 0x01},
        {0x2903, "SATA controller",    0x89, 1,       0,      0x00, 0xBA},
        {0x2904, "SAS controller",     0x8A, 1,       1,      0x86, 0x0A},
        {0x2905, 0,                    0x8B, 0xFF,    0xFFFF, 0xFF, 0xFF},
    });

    // Management Controller Host Interface: a keyboard controller style one, without data and protocols; an OEM one,
    // with the vendor's number as its data and in its one protocol.
    table.Add(42, "bb: b", {
        //handle type length, protocols
        {0x2A00, 2,   0,      0},
    });
    table.Add(42, "bb d b bb d", {
        //handle type  length and data, protocols; type, length and data of each
        {0x2A01, 0xF0, 4, 0x00004856,   1,         0xF0, 4, 0x00004856},
    });

    // TPM Device: by the newer and the older specification
    table.Add(43, "bbbb bb dd s q d", {
        //handle vendor               specification, firmware versions       description           traits, OEM value
        {0x2B00, 'H', 'V', 'T', 0,    2, 0,          0x00070055, 0x0004A15E, "TPM 2.0 on the board", 0x28, 0x00000000},
        {0x2B01, 'A', 'L', 'D', 'M',  1, 2,          0x2A050201, 0x00000000, 0,                    0x04,  0xCAFE0001},
    });

    // Processor Additional Information: a block without data, and one of four bytes
    table.Add(44, "w bb: b", {
        //handle processor, length and architecture, data
        {0x2C00, 0x0400,    0, 2},
        {0x2C01, 0x0402,    4, 5, 0x01, 0x00, 0x2A, 0x80},
    });

    // Firmware Inventory Information
    table.Add(45, "ss b s b sss q w b b: w", {
        //handle name                version    format ID          format date                  maker
        //       lowest version  size      traits, state, components and their handles
        {0x2D00, "System firmware",  "2.14.7",  0,     "FT-FW-01", 0,     "2023-11-20T00:00:00Z", "Halvorsen Systems",
                 "2.10.0",      0x02000000, 0x0001, 4,    1, 0x0000},
        {0x2D01, "PSU firmware",     "1.3",     1,     0,          0,     0,                      "Aldmark",
                 0,             0xFFFFFFFFFFFFFFFF, 0x0002, 3, 2, 0x2700, 0x2701},
    });

    // String Property: a UEFI device path, and one of a vendor
    table.Add(46, "w s w", {
        //handle ID      value                                     parent
        {0x2E00, 0x0001, "PciRoot(0x0)/Pci(0x1D,0x0)",             0x0900},
        {0x2E01, 0x8001, "HV-RISER",                               0x0200},
    });

    // Inactive: a former slot and port
    table.Add(126, "s bbbb w bb", {{0x7E00, "Riser 3 slot 1", 0xAA, 13, 3, 4, 9, 0x04, 0x01}});
    table.Add(126, "s b s b b", {{0x7E01, "J_LPT1", 0, "Parallel", 5, 3}});
}
// clang-format on
