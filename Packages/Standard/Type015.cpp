// System Event Log.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kEventLogAccessMethod[] = {
    {0x00, "Indexed I/O: 1 8-bit index port, 1 8-bit data port", "2.0"},
    {0x01, "Indexed I/O: 2 8-bit index ports, 1 8-bit data port", "2.0"},
    {0x02, "Indexed I/O: 1 16-bit index port, 1 8-bit data port", "2.0"},
    {0x03, "Memory-mapped physical 32-bit address", "2.0"},
    {0x04, "General-Purpose NonVolatile Data functions", "2.0"},
    {0x80, 0xFF, "BIOS Vendor/OEM-specific", "2.1"},
};

constexpr BitRow_t kEventLogStatus[] = {
    {0, "Log area valid", "2.0"},
    {1, "Log area full", "2.0"},
};

constexpr CodeRow_t kEventLogHeaderFormat[] = {
    {0x00, "No header", "2.1"},
    {0x01, "Type 1 log header", "2.1"},
    {0x80, 0xFF, "BIOS vendor or OEM-specific format", "2.1"},
};

constexpr CodeRow_t kEventLogType[] = {
    {0x00, "Reserved", "<=2.3.1"},
    {0x01, "Single-bit ECC memory error", "<=2.3.1"},
    {0x02, "Multi-bit ECC memory error", "<=2.3.1"},
    {0x03, "Parity memory error", "<=2.3.1"},
    {0x04, "Bus time-out", "<=2.3.1"},
    {0x05, "I/O Channel Check", "<=2.3.1"},
    {0x06, "Software NMI", "<=2.3.1"},
    {0x07, "POST Memory Resize", "<=2.3.1"},
    {0x08, "POST Error", "<=2.3.1"},
    {0x09, "PCI Parity Error", "<=2.3.1"},
    {0x0A, "PCI System Error", "<=2.3.1"},
    {0x0B, "CPU Failure", "<=2.3.1"},
    {0x0C, "EISA FailSafe Timer time-out", "<=2.3.1"},
    {0x0D, "Correctable memory log disabled", "<=2.3.1"},
    {0x0E, "Logging disabled for a specific Event Type", "<=2.3.1"},
    {0x0F, "Reserved", "<=2.3.1"},
    {0x10, "System Limit Exceeded", "<=2.3.1"},
    {0x11, "Asynchronous hardware timer expired and issued a system reset", "<=2.3.1"},
    {0x12, "System configuration information", "<=2.3.1"},
    {0x13, "Hard-disk information", "<=2.3.1"},
    {0x14, "System reconfigured", "<=2.3.1"},
    {0x15, "Uncorrectable CPU-complex error", "<=2.3.1"},
    {0x16, "Log Area Reset/Cleared", "<=2.3.1"},
    {0x17, "System boot", "<=2.3.1"},
    {0x80, 0xFE, "Available for system- and OEM-specific assignments", "2.0"},
    {0xFF, "End of log", "2.2"},
};

constexpr CodeRow_t kEventLogDataFormat[] = {
    {0x00, "None", "2.1"},
    {0x01, "Handle", "2.1"},
    {0x02, "Multiple-Event", "2.1"},
    {0x03, "Multiple-Event Handle", "2.1"},
    {0x04, "POST Results Bitmap", "2.1"},
    {0x05, "System Management Type", "2.1"},
    {0x06, "Multiple-Event System Management Type", "2.1"},
    {0x80, 0xFF, "OEM assigned", "2.1"},
};

constexpr FieldRow_t kListOfSupportedEventLogTypeDescriptors[] = {
    {Byte(0x00), "Log Type", Code(kEventLogType), "2.1"},
    {Byte(0x01), "Variable Data Format Type", Code(kEventLogDataFormat), "2.1"},
};

constexpr FieldRow_t kFields[] = {
    {Word(0x04), "Log Area Length", Number(kByte), "2.0"},
    {Word(0x06), "Log Header Start Offset", Number(kByte), "2.0"},
    {Word(0x08), "Log Data Start Offset", Number(kByte), "2.0"},
    {Byte(0x0A), "Access Method", Code(kEventLogAccessMethod), "2.0"},
    {Byte(0x0B), "Log Status", Flags(kEventLogStatus), "2.0"},
    {Dword(0x0C), "Log Change Token", Hex(), "2.0"},
    {Dword(0x10), "Access Method Address", Hex(), "2.0"},
    {Byte(0x14), "Log Header Format", Code(kEventLogHeaderFormat), "2.1"},
    {Byte(0x15), "Number of Supported Log Type Descriptors (x)", Count, "2.1"},
    {Byte(0x16), "Length of each Log Type Descriptor (y)", Step, "2.1"},
    {List(0x17), "List of Supported Event Log Type Descriptors",
     Records(kListOfSupportedEventLogTypeDescriptors, kStepByField), "2.1"},
};

}  // namespace

STANDARD_TYPE(15, "System Event Log", "2.0", kFields)
