// System Slots.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kSlotType[] = {
    {0x01, "Other", "<=2.3.1"},
    {0x02, "Unknown", "<=2.3.1"},
    {0x03, "ISA", "<=2.3.1"},
    {0x04, "MCA", "<=2.3.1"},
    {0x05, "EISA", "<=2.3.1"},
    {0x06, "PCI", "<=2.3.1"},
    {0x07, "PC Card (PCMCIA)", "<=2.3.1"},
    {0x08, "VL-VESA", "<=2.3.1"},
    {0x09, "Proprietary", "<=2.3.1"},
    {0x0A, "Processor Card Slot", "<=2.3.1"},
    {0x0B, "Proprietary Memory Card Slot", "<=2.3.1"},
    {0x0C, "I/O Riser Card Slot", "<=2.3.1"},
    {0x0D, "NuBus", "<=2.3.1"},
    {0x0E, "PCI - 66MHz Capable", "<=2.3.1"},
    {0x0F, "AGP", "2.1"},
    {0x10, "AGP 2X", "2.1"},
    {0x11, "AGP 4X", "2.1"},
    {0x12, "PCI-X", "2.3.1"},
    {0x13, "AGP 8X", "2.4"},
    {0x14, "M.2 Socket 1-DP (Mechanical Key A)", "3.0"},
    {0x15, "M.2 Socket 1-SD (Mechanical Key E)", "3.0"},
    {0x16, "M.2 Socket 2 (Mechanical Key B)", "3.0"},
    {0x17, "M.2 Socket 3 (Mechanical Key M)", "3.0"},
    {0x18, "MXM Type I", "3.0"},
    {0x19, "MXM Type II", "3.0"},
    {0x1A, "MXM Type III (standard connector)", "3.0"},
    {0x1B, "MXM Type III (HE connector)", "3.0"},
    {0x1C, "MXM Type IV", "3.0"},
    {0x1D, "MXM 3.0 Type A", "3.0"},
    {0x1E, "MXM 3.0 Type B", "3.0"},
    {0x1F, "PCI Express Gen 2 SFF-8639 (U.2)", "3.0"},
    {0x20, "PCI Express Gen 3 SFF-8639 (U.2)", "3.0"},
    {0x21, "PCI Express Mini 52-pin (CEM spec. 2.0) with bottom-side keep-outs", "3.1"},
    {0x22, "PCI Express Mini 52-pin (CEM spec. 2.0) without bottom-side keep-outs", "3.1"},
    {0x23, "PCI Express Mini 76-pin (CEM spec. 2.0)", "3.1"},
    {0x24, "PCI Express Gen 4 SFF-8639 (U.2)", "3.4"},
    {0x25, "PCI Express Gen 5 SFF-8639 (U.2)", "3.4"},
    {0x26, "OCP NIC 3.0 Small Form Factor (SFF)", "3.4"},
    {0x27, "OCP NIC 3.0 Large Form Factor (LFF)", "3.4"},
    {0x28, "OCP NIC Prior to 3.0", "3.4"},
    {0x30, "CXL Flexbus 1.0 (deprecated)", "3.3"},
    {0xA0, "PC-98/C20", "<=2.3.1"},
    {0xA1, "PC-98/C24", "<=2.3.1"},
    {0xA2, "PC-98/E", "<=2.3.1"},
    {0xA3, "PC-98/Local Bus", "<=2.3.1"},
    {0xA4, "PC-98/Card", "<=2.3.1"},
    {0xA5, "PCI Express", "2.4"},
    {0xA6, "PCI Express x1", "2.6"},
    {0xA7, "PCI Express x2", "2.6"},
    {0xA8, "PCI Express x4", "2.6"},
    {0xA9, "PCI Express x8", "2.6"},
    {0xAA, "PCI Express x16", "2.6"},
    {0xAB, "PCI Express Gen 2", "2.6.1"},
    {0xAC, "PCI Express Gen 2 x1", "2.6.1"},
    {0xAD, "PCI Express Gen 2 x2", "2.6.1"},
    {0xAE, "PCI Express Gen 2 x4", "2.6.1"},
    {0xAF, "PCI Express Gen 2 x8", "2.6.1"},
    {0xB0, "PCI Express Gen 2 x16", "2.6.1"},
    {0xB1, "PCI Express Gen 3", "2.7.1"},
    {0xB2, "PCI Express Gen 3 x1", "2.7.1"},
    {0xB3, "PCI Express Gen 3 x2", "2.7.1"},
    {0xB4, "PCI Express Gen 3 x4", "2.7.1"},
    {0xB5, "PCI Express Gen 3 x8", "2.7.1"},
    {0xB6, "PCI Express Gen 3 x16", "2.7.1"},
    {0xB8, "PCI Express Gen 4", "3.3"},
    {0xB9, "PCI Express Gen 4 x1", "3.3"},
    {0xBA, "PCI Express Gen 4 x2", "3.3"},
    {0xBB, "PCI Express Gen 4 x4", "3.3"},
    {0xBC, "PCI Express Gen 4 x8", "3.3"},
    {0xBD, "PCI Express Gen 4 x16", "3.3"},
    {0xBE, "PCI Express Gen 5", "3.4"},
    {0xBF, "PCI Express Gen 5 x1", "3.4"},
    {0xC0, "PCI Express Gen 5 x2", "3.4"},
    {0xC1, "PCI Express Gen 5 x4", "3.4"},
    {0xC2, "PCI Express Gen 5 x8", "3.4"},
    {0xC3, "PCI Express Gen 5 x16", "3.4"},
    {0xC4, "PCI Express Gen 6 and Beyond", "3.4"},
    {0xC5, "Enterprise and Datacenter 1U E1 Form Factor Slot", "3.4"},
    {0xC6, "Enterprise and Datacenter 3\" E3 Form Factor Slot", "3.4"},
};

constexpr CodeRow_t kSlotWidth[] = {
    {0x01, "Other", "<=2.3.1"},   {0x02, "Unknown", "<=2.3.1"}, {0x03, "8 bit", "<=2.3.1"},
    {0x04, "16 bit", "<=2.3.1"},  {0x05, "32 bit", "<=2.3.1"},  {0x06, "64 bit", "<=2.3.1"},
    {0x07, "128 bit", "<=2.3.1"}, {0x08, "1x or x1", "2.4"},    {0x09, "2x or x2", "2.4"},
    {0x0A, "4x or x4", "2.4"},    {0x0B, "8x or x8", "2.4"},    {0x0C, "12x or x12", "2.4"},
    {0x0D, "16x or x16", "2.4"},  {0x0E, "32x or x32", "2.4"},
};

constexpr CodeRow_t kSlotUsage[] = {
    {0x01, "Other", "2.0"},  {0x02, "Unknown", "2.0"},     {0x03, "Available", "2.0"},
    {0x04, "In use", "2.0"}, {0x05, "Unavailable", "3.2"},
};

constexpr CodeRow_t kSlotLength[] = {
    {0x01, "Other", "2.0"},
    {0x02, "Unknown", "2.0"},
    {0x03, "Short Length", "2.0"},
    {0x04, "Long Length", "2.0"},
    {0x05, "2.5\" drive form factor", "3.2"},
    {0x06, "3.5\" drive form factor", "3.2"},
};

constexpr BitRow_t kSlotCharacteristics1[] = {
    {0, "Characteristics unknown", "2.0"},
    {1, "Provides 5.0 volts", "2.0"},
    {2, "Provides 3.3 volts", "2.0"},
    {3, "opening is shared with another slot", "2.0"},
    {4, "PC Card slot supports PC Card-16", "2.0"},
    {5, "PC Card slot supports CardBus", "2.0"},
    {6, "PC Card slot supports Zoom Video", "2.0"},
    {7, "PC Card slot supports Modem Ring Resume", "2.0"},
};

constexpr BitRow_t kSlotCharacteristics2[] = {
    {0, "PCI slot supports Power Management Event (PME#) signal", "2.1"},
    {1, "Slot supports hot-plug devices", "2.3"},
    {2, "PCI slot supports SMBus signal", "2.3.1"},
    {3, "PCIe slot supports bifurcation", "3.2"},
    {4, "Slot supports async/surprise removal", "3.4"},
    {5, "Flexbus slot, CXL 1.0 capable", "3.4"},
    {6, "Flexbus slot, CXL 2.0 capable", "3.4"},
    {7, "Flexbus slot, CXL 3.0 capable", "3.7"},
};

constexpr CodeRow_t kSlotHeight[] = {
    {0x00, "Not applicable", "3.5"}, {0x01, "Other", "3.5"},       {0x02, "Unknown", "3.5"},
    {0x03, "Full height", "3.5"},    {0x04, "Low-profile", "3.5"},
};

constexpr FieldRow_t kPeerGroups[] = {
    {Word(0x00), "Segment Group Number (Peer)", Number(kPlain), "3.2"},
    {Byte(0x02), "Bus Number (Peer)", Number(kPlain), "3.2"},
    {Byte(0x03), "Device/Function Number (Peer)", Hex(), "3.2"},
    {Bits(2, 0), "Function Number", Number(kPlain), "2.6"},
    {Bits(7, 3), "Device Number", Number(kPlain), "2.6"},
    {Byte(0x04), "Data bus width (Peer)", Code(kSlotWidth, None(0, "not given")), "3.2"},
    {From("Segment Group Number (Peer)", "Bus Number (Peer)", "Device/Function Number (Peer)"), "PCI Address",
     AsText(kPciAddress), ""},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Slot Designation", Text, "2.0"},
    {Byte(0x05), "Slot Type", Code(kSlotType), "2.0"},
    {Byte(0x06), "Slot Data Bus Width", Code(kSlotWidth), "2.0"},
    {Byte(0x07), "Current Usage", Code(kSlotUsage), "2.0"},
    {Byte(0x08), "Slot Length", Code(kSlotLength), "2.0"},
    {Word(0x09), "Slot ID", Number(kPlain), "2.0"},
    {Byte(0x0B), "Slot Characteristics 1", Flags(kSlotCharacteristics1), "2.0"},
    {Byte(0x0C), "Slot Characteristics 2", Flags(kSlotCharacteristics2), "2.1"},
    {Word(0x0D), "Segment Group Number (Base)",
     Number(kPlain, None(0xFF, "slot kind without a PCI address"), None(0xFFFF, "slot kind without a PCI address")),
     "2.6"},
    {Byte(0x0F), "Bus Number (Base)", Number(kPlain, None(0xFF, "slot kind without a PCI address")), "2.6"},
    {Byte(0x10), "Device/Function Number (Base)", Hex(None(0xFF, "slot kind without a PCI address")), "2.6"},
    {Bits(2, 0), "Function Number", Number(kPlain), "2.6"},
    {Bits(7, 3), "Device Number", Number(kPlain), "2.6"},
    {Byte(0x11), "Data Bus Width (Base)", Code(kSlotWidth, None(0, "not given")), "3.2"},
    {Byte(0x12), "Peer (S/B/D/F/Width) grouping count (n)", Count, "3.2"},
    {List(0x13), "Peer (S/B/D/F/Width) groups", Records(kPeerGroups, 5), "3.2"},
    {Byte(kAfterList + 0), "Slot Information", Number(kPlain, None(0, "not given")), "3.4"},
    {Byte(kAfterList + 1), "Slot Physical Width", Code(kSlotWidth), "3.4"},
    {Word(kAfterList + 2), "Slot Pitch", Number(kHundredthOfMillimeter, None(0, "not given or unknown")), "3.4"},
    {Byte(kAfterList + 4), "Slot Height", Code(kSlotHeight), "3.5"},
    {From("Segment Group Number (Base)", "Bus Number (Base)", "Device/Function Number (Base)"), "PCI Address",
     AsText(kPciAddress), ""},
};

}  // namespace

STANDARD_TYPE(9, "System Slots", "2.0", kFields)
