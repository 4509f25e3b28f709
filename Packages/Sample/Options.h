// Types 11 to 15 of the sample: OEM strings, options, languages, groups and event logs.
#pragma once

#include "Packages/Sample/SampleBuilder.h"

// clang-format off
consteval void AddOptions(ClSampleBuilder& table) {
    // OEM Strings
    table.Add(11, "b: S", {
        //handle count strings
        {0x0B00, 3,    "Halvorsen Systems service line: see the label", "HVCFG:2440-2S-10G", "HVLOC:Bergen"},
        {0x0B01, 0},
    });

    // System Configuration Options
    table.Add(12, "b: S", {
        //handle count strings
        {0x0C00, 2,    "J12 1-2: clear settings", "J14 2-3: write-protect the firmware"},
        {0x0C01, 1,    "SW1 on: force recovery"},
    });

    // BIOS Language Information: in the long form, in the abbreviated one, and without a string.
    table.Add(13, "bb 000000000000000 b: S", {
        //handle count flags current languages
        {0x0D00, 6,    0x00, 1,      "en|US|iso8859-1", "no|NO|iso8859-1", "de|DE|iso8859-1", "fr|CA|iso8859-1",
                                     "ja|JP|unicode", "EN|GB|iso8859-1"},
        {0x0D01, 4,    0x01, 2,      "enUS", "frCA", "dkDK", "esLA"},
        {0x0D02, 2,    0x01, 3},
    });

    // Group Associations: the firmware versions, and a group whose first member isn't in the table.
    table.Add(14, "s: bw", {
        //handle name                   type and handle of each member
        {0x0E00, "Firmware components", 221, 0xDD00, 221, 0xDD01},
        {0x0E01, "Boot devices",        200, 0xC800, 221, 0xDD00, 0, 0x0000},
    });

    // System Event Log: the last one is of version 2.0, without header format and descriptors.
    table.Add(15, "www bb dd | bbb: bb", {
        //handle length header data method status token    address     format, descriptors, their length; descriptors
        {0x0F00, 1024,  0,     16,  3,    0x01, 0x00000017, 0xFED20000, 0x01, 3, 2, 0x01, 0x02, 0x02, 0x02, 0x17, 0x00},
        {0x0F01, 4096,  0,     0,   4,    0x03, 0x80000000, 0x00000042, 0x80, 1, 2, 0xE0, 0x80},
        {0x0F02, 512,   0,     32,  0,    0x02, 0x00000000, 0x00710070, 0x7F, 0, 2},
        {0x0F03, 0,     0,     0,   2,    0x00, 0x00000000, 0x00730072},
    });
}
// clang-format on
