// Firmware Language Information.
#include "Packages/Standard/Rows.h"

namespace {

constexpr BitRow_t kLanguageFlags[] = {
    {0, "Current Language strings use the abbreviated format", "2.1"},
};

constexpr FieldRow_t kString[] = {
    {Byte(0), "Language", Text, ""},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Installable Languages", Count, "2.0"},
    {Byte(0x05), "Flags", Flags(kLanguageFlags), "2.1"},
    {Bytes(0x06, 15), "Reserved", ReservedBytes, "2.0"},
    {Byte(0x15), "Current Language", Text, "2.0"},
    {List(0x05), "Languages", Strings(kString, Counted_t::kByField), ""},
};

}  // namespace

STANDARD_TYPE(13, "Firmware Language Information", "2.0", kFields)
