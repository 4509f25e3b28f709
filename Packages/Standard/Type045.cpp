// Firmware Inventory Information.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kFirmwareVersionFormat[] = {
    {0x00, "Free-form string", "3.5"},
    {0x01, "MAJOR.MINOR", "3.5"},
    {0x02, "32-bit hexadecimal string (0xhhhhhhhh)", "3.5"},
    {0x03, "64-bit hexadecimal string (0xhhhhhhhhhhhhhhhh)", "3.5"},
    {0x80, 0xFF, "Firmware Vendor/OEM-specific", "3.5"},
};

constexpr CodeRow_t kFirmwareIdFormat[] = {
    {0x00, "Free-form string", "3.5"},
    {0x01, "UEFI ESRT FwClass GUID or UEFI Firmware Management Protocol ImageTypeId", "3.5"},
    {0x80, 0xFF, "Firmware Vendor/OEM-specific", "3.5"},
};

constexpr BitRow_t kFirmwareInventoryCharacteristics[] = {
    {0, "Updatable", "3.5"},
    {1, "Write-Protect", "3.5"},
};

constexpr CodeRow_t kFirmwareInventoryState[] = {
    {0x01, "Other", "3.5"},        {0x02, "Unknown", "3.5"},
    {0x03, "Disabled", "3.5"},     {0x04, "Enabled", "3.5"},
    {0x05, "Absent", "3.5"},       {0x06, "StandbyOffline", "3.5"},
    {0x07, "StandbySpare", "3.5"}, {0x08, "UnavailableOffline", "3.5"},
};

constexpr FieldRow_t kAssociatedComponentHandles[] = {
    {Word(0x00), "Associated Component Handle", HandleOf(), "3.5"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Firmware Component Name", Text, "3.5"},
    {Byte(0x05), "Firmware Version", Text, "3.5"},
    {Byte(0x06), "Version Format", Code(kFirmwareVersionFormat), "3.5"},
    {Byte(0x07), "Firmware ID", Text, "3.5"},
    {Byte(0x08), "Firmware ID Format", Code(kFirmwareIdFormat), "3.5"},
    {Byte(0x09), "Release Date", Text, "3.5"},
    {Byte(0x0A), "Manufacturer", Text, "3.5"},
    {Byte(0x0B), "Lowest Supported Firmware Version", Text, "3.5"},
    {Qword(0x0C), "Image Size", Number(kByte, Unknown(0xFFFFFFFFFFFFFFFF)), "3.5"},
    {Word(0x14), "Characteristics", Flags(kFirmwareInventoryCharacteristics), "3.5"},
    {Byte(0x16), "State", Code(kFirmwareInventoryState), "3.5"},
    {Byte(0x17), "Number of Associated Components (n)", Count, "3.5"},
    {List(0x18), "Associated Component Handles", Records(kAssociatedComponentHandles, 2), "3.5"},
    {From("Release Date"), "Release Date ISO", AsDate(kIsoDate), ""},
};

}  // namespace

STANDARD_TYPE(45, "Firmware Inventory Information", "3.5", kFields)
