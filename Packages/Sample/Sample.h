// The embedded sample: an SMBIOS table of an invented two-socket server, for machines without a table, for a first
// look, and for tests.
#pragma once

#include <cstdint>
#include <span>

// Returns the sample's table, of SMBIOS version 3.0, without an entry point. The last structure is an End-of-Table. The
// table is well-formed by the SMBIOS standard (DSP0134): structures have all bytes of their Length, string areas end in
// a double NUL, and handles are unique. It has structures of every standard type and of the vendor types 130, 131, 148,
// 221 and 222, some of them short ones of older versions, and some with unlisted values. Ownership  constant data, made
// at compile time
std::span<const uint8_t> SampleTable();
