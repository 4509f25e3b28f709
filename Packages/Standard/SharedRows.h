// Enumerations and bit lists that more than one structure type uses.
#pragma once

#include "Packages/Standard/Rows.h"

constexpr CodeRow_t kBoardType[] = {
    {0x01, "Unknown", "2.3.2"},
    {0x02, "Other", "2.3.2"},
    {0x03, "Server Blade", "2.3.2"},
    {0x04, "Connectivity Switch", "2.3.2"},
    {0x05, "System Management Module", "2.3.2"},
    {0x06, "Processor Module", "2.3.2"},
    {0x07, "I/O Module", "2.3.2"},
    {0x08, "Memory Module", "2.3.2"},
    {0x09, "Daughter board", "2.3.2"},
    {0x0A, "Motherboard (includes processor, memory, and I/O)", "2.3.2"},
    {0x0B, "Processor/Memory Module", "2.3.2"},
    {0x0C, "Processor/IO Module", "2.3.2"},
    {0x0D, "Interconnect board", "2.3.2"},
};

constexpr BitRow_t kMemoryModuleTypes[] = {
    {0, "Other", "2.0"}, {1, "Unknown", "2.0"},   {2, "Standard", "2.0"}, {3, "Fast Page Mode", "2.0"},
    {4, "EDO", "2.0"},   {5, "Parity", "2.0"},    {6, "ECC", "2.0"},      {7, "SIMM", "2.0"},
    {8, "DIMM", "2.0"},  {9, "Burst EDO", "2.0"}, {10, "SDRAM", "2.0"},
};

constexpr CodeRow_t kOnboardDeviceType[] = {
    {0x01, "Other", "<=2.3.1"},
    {0x02, "Unknown", "<=2.3.1"},
    {0x03, "Video", "<=2.3.1"},
    {0x04, "SCSI Controller", "<=2.3.1"},
    {0x05, "Ethernet", "<=2.3.1"},
    {0x06, "Token Ring", "<=2.3.1"},
    {0x07, "Sound", "<=2.3.1"},
    {0x08, "PATA Controller", "2.5"},
    {0x09, "SATA Controller", "2.5"},
    {0x0A, "SAS Controller", "2.5"},
    {0x0B, "Wireless LAN", "3.5"},
    {0x0C, "Bluetooth", "3.5"},
    {0x0D, "WWAN", "3.5"},
    {0x0E, "eMMC (embedded Multi-Media Controller)", "3.5"},
    {0x0F, "NVMe Controller", "3.5"},
    {0x10, "UFS Controller", "3.5"},
};

constexpr CodeRow_t kDeviceStatus[] = {
    {0, "Disabled", ""},
    {1, "Enabled", ""},
};

constexpr CodeRow_t kMemoryErrorType[] = {
    {0x01, "Other", "<=2.3.1"},
    {0x02, "Unknown", "<=2.3.1"},
    {0x03, "OK", "<=2.3.1"},
    {0x04, "Bad read", "<=2.3.1"},
    {0x05, "Parity error", "<=2.3.1"},
    {0x06, "Single-bit error", "<=2.3.1"},
    {0x07, "Double-bit error", "<=2.3.1"},
    {0x08, "Multi-bit error", "<=2.3.1"},
    {0x09, "Nibble error", "<=2.3.1"},
    {0x0A, "Checksum error", "<=2.3.1"},
    {0x0B, "CRC error", "<=2.3.1"},
    {0x0C, "Corrected single-bit error", "<=2.3.1"},
    {0x0D, "Corrected error", "<=2.3.1"},
    {0x0E, "Uncorrectable error", "<=2.3.1"},
};

constexpr CodeRow_t kMemoryErrorGranularity[] = {
    {0x01, "Other", "2.1"},
    {0x02, "Unknown", "2.1"},
    {0x03, "Device level", "2.1"},
    {0x04, "Memory partition level", "2.1"},
};

constexpr CodeRow_t kMemoryErrorOperation[] = {
    {0x01, "Other", "2.1"}, {0x02, "Unknown", "2.1"},       {0x03, "Read", "2.1"},
    {0x04, "Write", "2.1"}, {0x05, "Partial write", "2.1"},
};

constexpr CodeRow_t kProbeStatus[] = {
    {0x01, "Other", "2.2"},        {0x02, "Unknown", "2.2"},  {0x03, "OK", "2.2"},
    {0x04, "Non-critical", "2.2"}, {0x05, "Critical", "2.2"}, {0x06, "Non-recoverable", "2.2"},
};
