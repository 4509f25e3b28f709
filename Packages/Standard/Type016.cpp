// Physical Memory Array.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kMemoryArrayLocation[] = {
    {0x01, "Other", "2.1"},
    {0x02, "Unknown", "2.1"},
    {0x03, "System board or motherboard", "2.1"},
    {0x04, "ISA add-on card", "2.1"},
    {0x05, "EISA add-on card", "2.1"},
    {0x06, "PCI add-on card", "2.1"},
    {0x07, "MCA add-on card", "2.1"},
    {0x08, "PCMCIA add-on card", "2.1"},
    {0x09, "Proprietary add-on card", "2.1"},
    {0x0A, "NuBus", "2.1"},
    {0xA0, "PC-98/C20 add-on card", "2.1"},
    {0xA1, "PC-98/C24 add-on card", "2.1"},
    {0xA2, "PC-98/E add-on card", "2.1"},
    {0xA3, "PC-98/Local bus add-on card", "2.1"},
    {0xA4, "CXL add-on card", "3.3"},
};

constexpr CodeRow_t kMemoryArrayUse[] = {
    {0x01, "Other", "2.1"},        {0x02, "Unknown", "2.1"},      {0x03, "System memory", "2.1"},
    {0x04, "Video memory", "2.1"}, {0x05, "Flash memory", "2.1"}, {0x06, "Non-volatile RAM", "2.1"},
    {0x07, "Cache memory", "2.1"},
};

constexpr CodeRow_t kMemoryErrorCorrection[] = {
    {0x01, "Other", "2.1"},          {0x02, "Unknown", "2.1"},       {0x03, "None", "2.1"}, {0x04, "Parity", "2.1"},
    {0x05, "Single-bit ECC", "2.1"}, {0x06, "Multi-bit ECC", "2.1"}, {0x07, "CRC", "2.1"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Location", Code(kMemoryArrayLocation), "2.1"},
    {Byte(0x05), "Use", Code(kMemoryArrayUse), "2.1"},
    {Byte(0x06), "Memory Error Correction", Code(kMemoryErrorCorrection), "2.1"},
    {Dword(0x07), "Maximum Capacity", Number(kKB, See(0x80000000, "Extended Maximum Capacity")), "2.1"},
    {Word(0x0B), "Memory Error Information Handle",
     HandleOf(18, 33).With(None(0xFFFE, "not provided"), None(0xFFFF, "no error detected")), "2.1"},
    {Word(0x0D), "Number of Memory Devices", Number(kPlain), "2.1"},
    {Qword(0x0F), "Extended Maximum Capacity", Number(kByte), "2.7"},
    {From("Maximum Capacity", "Extended Maximum Capacity"), "Capacity", AsNumber(kFirstUsable, kByte), ""},
};

}  // namespace

STANDARD_TYPE(16, "Physical Memory Array", "2.1", kFields)
