// Memory Controller Information.
#include "Packages/Standard/Rows.h"
#include "Packages/Standard/SharedRows.h"

namespace {

constexpr CodeRow_t kErrorDetectingMethod[] = {
    {0x01, "Other", "2.0"},        {0x02, "Unknown", "2.0"},    {0x03, "None", "2.0"},
    {0x04, "8-bit Parity", "2.0"}, {0x05, "32-bit ECC", "2.0"}, {0x06, "64-bit ECC", "2.0"},
    {0x07, "128-bit ECC", "2.0"},  {0x08, "CRC", "2.0"},
};

constexpr BitRow_t kErrorCorrectingCapability[] = {
    {0, "Other", "2.0"},
    {1, "Unknown", "2.0"},
    {2, "None", "2.0"},
    {3, "Single-Bit Error Correcting", "2.0"},
    {4, "Double-Bit Error Correcting", "2.0"},
    {5, "Error Scrubbing", "2.0"},
};

constexpr CodeRow_t kInterleaveSupport[] = {
    {0x01, "Other", "2.0"},
    {0x02, "Unknown", "2.0"},
    {0x03, "One-Way Interleave", "2.0"},
    {0x04, "Two-Way Interleave", "2.0"},
    {0x05, "Four-Way Interleave", "2.0"},
    {0x06, "Eight-Way Interleave", "2.0"},
    {0x07, "Sixteen-Way Interleave", "2.0"},
};

constexpr BitRow_t kMemorySpeeds[] = {
    {0, "Other", "2.0"}, {1, "Unknown", "2.0"}, {2, "70ns", "2.0"}, {3, "60ns", "2.0"}, {4, "50ns", "2.0"},
};

constexpr BitRow_t kMemoryModuleVoltage[] = {
    {0, "5V", "2.0"},
    {1, "3.3V", "2.0"},
    {2, "2.9V", "2.0"},
};

constexpr FieldRow_t kMemoryModuleConfigurationHandles[] = {
    {Word(0x00), "Memory Module Configuration Handle", HandleOf(6), "2.0"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Error Detecting Method", Code(kErrorDetectingMethod), "2.0"},
    {Byte(0x05), "Error Correcting Capability", Flags(kErrorCorrectingCapability), "2.0"},
    {Byte(0x06), "Supported Interleave", Code(kInterleaveSupport), "2.0"},
    {Byte(0x07), "Current Interleave", Code(kInterleaveSupport), "2.0"},
    {Byte(0x08), "Maximum Memory Module Size", Size(Form_t::kPowerOfTwoMB), "2.0"},
    {Word(0x09), "Supported Speeds", Flags(kMemorySpeeds), "2.0"},
    {Word(0x0B), "Supported Memory Types", Flags(kMemoryModuleTypes), "2.0"},
    {Byte(0x0D), "Memory Module Voltage", Flags(kMemoryModuleVoltage), "2.0"},
    {Byte(0x0E), "Number of Associated Memory Slots (x)", Count, "2.0"},
    {List(0x0F), "Memory Module Configuration Handles", Records(kMemoryModuleConfigurationHandles, 2), "2.0"},
    {Byte(kAfterList + 0), "Enabled Error Correcting Capabilities", Flags(kErrorCorrectingCapability), "2.1"},
};

}  // namespace

STANDARD_TYPE(5, "Memory Controller Information", "2.0", kFields)
