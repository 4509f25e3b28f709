// The embedded sample: an SMBIOS table image of an invented two-socket server, for a machine that has no table, for a
// first look, and for tests.
#pragma once

#include <cstdint>
#include <span>

// The table of the sample, of SMBIOS version 3.0: structures from the first byte on, without an entry point, and with
// an End-of-Table structure as the last one. It is well-formed by the SMBIOS standard (DSP0134): Lengths hold their
// fields, each string area is closed, handles are unique. It holds structures of every standard type and of the vendor
// types 130, 131, 148, 221 and 222, among them short ones of older versions and some with values that no table lists.
// Ownership  constant data of the program, built while compiling; nothing to release
// Threads    any number at once
std::span<const uint8_t> SampleTable();
