// System Enclosure or Chassis.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kChassisType[] = {
    {0x01, "Other", "<=2.3.1"},
    {0x02, "Unknown", "<=2.3.1"},
    {0x03, "Desktop", "<=2.3.1"},
    {0x04, "Low Profile Desktop", "<=2.3.1"},
    {0x05, "Pizza Box", "<=2.3.1"},
    {0x06, "Mini Tower", "<=2.3.1"},
    {0x07, "Tower", "<=2.3.1"},
    {0x08, "Portable", "<=2.3.1"},
    {0x09, "Laptop", "<=2.3.1"},
    {0x0A, "Notebook", "<=2.3.1"},
    {0x0B, "Hand Held", "<=2.3.1"},
    {0x0C, "Docking Station", "<=2.3.1"},
    {0x0D, "All in One", "<=2.3.1"},
    {0x0E, "Sub Notebook", "<=2.3.1"},
    {0x0F, "Space-saving", "<=2.3.1"},
    {0x10, "Lunch Box", "<=2.3.1"},
    {0x11, "Main Server Chassis", "<=2.3.1"},
    {0x12, "Expansion Chassis", "<=2.3.1"},
    {0x13, "SubChassis", "<=2.3.1"},
    {0x14, "Bus Expansion Chassis", "<=2.3.1"},
    {0x15, "Peripheral Chassis", "<=2.3.1"},
    {0x16, "RAID Chassis", "<=2.3.1"},
    {0x17, "Rack Mount Chassis", "<=2.3.1"},
    {0x18, "Sealed-case PC", "2.2"},
    {0x19, "Multi-system chassis", "2.3.2"},
    {0x1A, "Compact PCI", "2.5"},
    {0x1B, "Advanced TCA", "2.5"},
    {0x1C, "Blade", "2.6"},
    {0x1D, "Blade Enclosure", "2.6"},
    {0x1E, "Tablet", "3.0"},
    {0x1F, "Convertible", "3.0"},
    {0x20, "Detachable", "3.0"},
    {0x21, "IoT Gateway", "3.1"},
    {0x22, "Embedded PC", "3.1"},
    {0x23, "Mini PC", "3.1"},
    {0x24, "Stick PC", "3.1"},
};

constexpr CodeRow_t kChassisLock[] = {
    {0, "Not Present", ""},
    {1, "Present", ""},
};

constexpr CodeRow_t kChassisState[] = {
    {0x01, "Other", "2.1"},   {0x02, "Unknown", "2.1"},  {0x03, "Safe", "2.1"},
    {0x04, "Warning", "2.1"}, {0x05, "Critical", "2.1"}, {0x06, "Non-recoverable", "2.1"},
};

constexpr CodeRow_t kChassisSecurityStatus[] = {
    {0x01, "Other", "2.1"},
    {0x02, "Unknown", "2.1"},
    {0x03, "None", "2.1"},
    {0x04, "External interface locked out", "2.1"},
    {0x05, "External interface enabled", "2.1"},
};

constexpr CodeRow_t kElementTypeSelect[] = {
    {0x00, "SMBIOS Baseboard Type enumeration", "2.3"},
    {0x01, "SMBIOS structure type enumeration", "2.3"},
};

constexpr CodeRow_t kRackType[] = {
    {0x00, "Unspecified", "3.9"},
    {0x01, "OU (OpenU)", "3.9"},
};

constexpr FieldRow_t kContainedElements[] = {
    {Byte(0x00), "Contained Element Type", Hex(), "2.3"},
    {Bits(6, 0), "Type", Number(kPlain), "2.3"},
    {Bit(7), "Type Select", Code(kElementTypeSelect), "2.3"},
    {Byte(0x01), "Contained Element Minimum", Number(kPlain, Reserved(0xFF)), "2.3"},
    {Byte(0x02), "Contained Element Maximum", Number(kPlain, Reserved(0)), "2.3"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Manufacturer", Text, "2.0"},
    {Byte(0x05), "Type", Hex(), "2.0"},
    {Bits(6, 0), "Chassis Type", Code(kChassisType), "2.0"},
    {Bit(7), "Chassis Lock", Code(kChassisLock), "2.0"},
    {Byte(0x06), "Version", Text, "2.0"},
    {Byte(0x07), "Serial Number", Text, "2.0"},
    {Byte(0x08), "Asset Tag Number", Text, "2.0"},
    {Byte(0x09), "Boot-up State", Code(kChassisState), "2.1"},
    {Byte(0x0A), "Power Supply State", Code(kChassisState), "2.1"},
    {Byte(0x0B), "Thermal State", Code(kChassisState), "2.1"},
    {Byte(0x0C), "Security Status", Code(kChassisSecurityStatus), "2.1"},
    {Dword(0x0D), "OEM-defined", Hex(), "2.3"},
    {Byte(0x11), "Height", Number(kRackUnit, Unknown(0, "unspecified"), See(0xFF, "Rack Height")), "2.3"},
    {Byte(0x12), "Number of Power Cords", Number(kPlain, Unknown(0, "unspecified")), "2.3"},
    {Byte(0x13), "Contained Element Count (n)", Count, "2.3"},
    {Byte(0x14), "Contained Element Record Length (m)", Step, "2.3"},
    {List(0x15), "Contained Elements", Records(kContainedElements, kStepByField), "2.3"},
    {Byte(kAfterList + 0), "SKU Number", Text, "2.7"},
    {Byte(kAfterList + 1), "Rack Type", Code(kRackType), "3.9"},
    {Byte(kAfterList + 2), "Rack Height", Number(kPlain, Unknown(0, "unspecified")), "3.9"},
    {From("Height", "Rack Height"), "Chassis Height", AsNumber(kFirstUsable, kRackUnit), ""},
};

}  // namespace

STANDARD_TYPE(3, "System Enclosure or Chassis", "2.0", kFields)
