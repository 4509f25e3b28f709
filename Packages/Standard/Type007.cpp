// Cache Information.
#include "Packages/Standard/Rows.h"

namespace {

constexpr BitRow_t kCacheConfiguration[] = {
    {3, "Cache Socketed", "2.0"},
    {7, "Enabled (at boot time)", "2.0"},
};

constexpr CodeRow_t kCacheLocation[] = {
    {0x00, "Internal", "2.0"},
    {0x01, "External", "2.0"},
    {0x02, "Reserved", "2.0"},
    {0x03, "Unknown", "2.0"},
};

constexpr CodeRow_t kCacheOperationalMode[] = {
    {0x00, "Write Through", "2.0"},
    {0x01, "Write Back", "2.0"},
    {0x02, "Varies with Memory Address", "2.0"},
    {0x03, "Unknown", "2.0"},
};

constexpr BitRow_t kSramType[] = {
    {0, "Other", "2.0"},          {1, "Unknown", "2.0"},     {2, "Non-Burst", "2.0"},    {3, "Burst", "2.0"},
    {4, "Pipeline Burst", "2.0"}, {5, "Synchronous", "2.0"}, {6, "Asynchronous", "2.0"},
};

constexpr CodeRow_t kCacheErrorCorrectionType[] = {
    {0x01, "Other", "2.1"},  {0x02, "Unknown", "2.1"},        {0x03, "None", "2.1"},
    {0x04, "Parity", "2.1"}, {0x05, "Single-bit ECC", "2.1"}, {0x06, "Multi-bit ECC", "2.1"},
};

constexpr CodeRow_t kSystemCacheType[] = {
    {0x01, "Other", "2.1"}, {0x02, "Unknown", "2.1"}, {0x03, "Instruction", "2.1"},
    {0x04, "Data", "2.1"},  {0x05, "Unified", "2.1"},
};

constexpr CodeRow_t kCacheAssociativity[] = {
    {0x01, "Other", "<=2.3.1"},
    {0x02, "Unknown", "<=2.3.1"},
    {0x03, "Direct Mapped", "<=2.3.1"},
    {0x04, "2-way Set-Associative", "<=2.3.1"},
    {0x05, "4-way Set-Associative", "<=2.3.1"},
    {0x06, "Fully Associative", "<=2.3.1"},
    {0x07, "8-way Set-Associative", "2.3.2"},
    {0x08, "16-way Set-Associative", "2.3.2"},
    {0x09, "12-way Set-Associative", "2.6.1"},
    {0x0A, "24-way Set-Associative", "2.6.1"},
    {0x0B, "32-way Set-Associative", "2.6.1"},
    {0x0C, "48-way Set-Associative", "2.6.1"},
    {0x0D, "64-way Set-Associative", "2.6.1"},
    {0x0E, "20-way Set-Associative", "2.7.1"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Socket Designation", Text, "2.0"},
    {Word(0x05), "Cache Configuration", Flags(kCacheConfiguration), "2.0"},
    {Bits(2, 0), "Cache Level", NumberOf(Form_t::kPlusOne, kPlain), "2.0"},
    {Bits(6, 5), "Location", Code(kCacheLocation), "2.0"},
    {Bits(9, 8), "Operational Mode", Code(kCacheOperationalMode), "2.0"},
    {Word(0x07), "Maximum Cache Size", Size(Form_t::kCacheSize, See(0xFFFF, "Maximum Cache Size 2")), "2.0"},
    {Word(0x09), "Installed Size",
     Size(Form_t::kCacheSize, None(0, "no cache installed"), See(0xFFFF, "Installed Cache Size 2")), "2.0"},
    {Word(0x0B), "Supported SRAM Type", Flags(kSramType), "2.0"},
    {Word(0x0D), "Current SRAM Type", Flags(kSramType), "2.0"},
    {Byte(0x0F), "Cache Speed", Number(kNanosecond, Unknown(0)), "2.1"},
    {Byte(0x10), "Error Correction Type", Code(kCacheErrorCorrectionType), "2.1"},
    {Byte(0x11), "System Cache Type", Code(kSystemCacheType), "2.1"},
    {Byte(0x12), "Associativity", Code(kCacheAssociativity), "2.1"},
    {Dword(0x13), "Maximum Cache Size 2", Size(Form_t::kCacheSize), "3.1"},
    {Dword(0x17), "Installed Cache Size 2", Size(Form_t::kCacheSize, None(0, "no cache installed")), "3.1"},
    {From("Maximum Cache Size", "Maximum Cache Size 2"), "Cache Size Maximum", AsNumber(kFirstUsable, kByte), ""},
    {From("Installed Size", "Installed Cache Size 2"), "Cache Size", AsNumber(kFirstUsable, kByte), ""},
};

}  // namespace

STANDARD_TYPE(7, "Cache Information", "2.0", kFields)
