// IPMI Device Information.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kIpmiInterfaceType[] = {
    {0x00, "Unknown", "2.3"},
    {0x01, "KCS: Keyboard Controller Style", "2.3"},
    {0x02, "SMIC: Server Management Interface Chip", "2.3"},
    {0x03, "BT: Block Transfer", "2.3"},
    {0x04, "SSIF: SMBus System Interface", "3.2"},
};

constexpr CodeRow_t kAddressSpace[] = {
    {0, "Memory-mapped", ""},
    {1, "I/O", ""},
};

constexpr CodeRow_t kTriggerMode[] = {
    {0, "Edge", ""},
    {1, "Level", ""},
};

constexpr CodeRow_t kPolarity[] = {
    {0, "Active low", ""},
    {1, "Active high", ""},
};

constexpr CodeRow_t kInterruptInformation[] = {
    {0, "Not specified", ""},
    {1, "Specified", ""},
};

constexpr CodeRow_t kIpmiRegisterSpacing[] = {
    {0x00, "successive byte boundaries", "2.7"},
    {0x01, "32-bit boundaries", "2.7"},
    {0x02, "16-byte boundaries", "2.7"},
    {0x03, "Reserved", "2.7"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Interface Type", Code(kIpmiInterfaceType), "2.3"},
    {Byte(0x05), "IPMI Specification Revision", NibbleVersion, "2.3"},
    {Byte(0x06), "I2C Target Address", Hex(), "2.3"},
    {Byte(0x07), "NV Storage Device Address", Number(kPlain, None(0xFF, "no storage device")), "2.3"},
    {Qword(0x08), "Base Address", Hex(), "2.3"},
    {Bit(0), "Address Space", Code(kAddressSpace), "2.3"},
    {Byte(0x10), "Base Address Modifier / Interrupt Info", Hex(), "2.3"},
    {Bit(0), "Interrupt Trigger Mode", Code(kTriggerMode), "2.7"},
    {Bit(1), "Interrupt Polarity", Code(kPolarity), "2.7"},
    {Bit(3), "Interrupt Information", Code(kInterruptInformation), "2.7"},
    {Bit(4), "LS-bit for Addresses", Number(kPlain), "2.7"},
    {Bits(7, 6), "Register spacing", Code(kIpmiRegisterSpacing), "2.7"},
    {Byte(0x11), "Interrupt Number", Number(kPlain, Unknown(0, "unspecified or unsupported")), "2.3"},
    {From("Base Address", "Base Address Modifier / Interrupt Info", "Interface Type"), "Interface Address",
     AsNumber(kIpmiAddress), ""},
};

}  // namespace

STANDARD_TYPE(38, "IPMI Device Information", "2.3", kFields)
