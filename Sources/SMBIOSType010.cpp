// On Board Devices Information (the SMBIOS standard, type 10).
#include "Sources/Decoders.h"

namespace {

// Whether bit 7 is set, which enables the device, and its type from the other bits.
ClText ShowDeviceType(const Field_t& field) {
    constexpr uint8_t kEnabled = 0x80;
    const uint8_t device = field.Byte();
    const char* status = (device & kEnabled) != 0 ? "Enabled, " : "Disabled, ";
    const Word_t type = ClSMBIOSType::GetOnboardDeviceTypeString(device);
    return ClText(std::string(status).append(type)).MarkInvalid(type.isInvalid);
}

constexpr Rendering_t DeviceType{ShowDeviceType};
constexpr size_t kEntries = 0x04, kEntrySize = 2;

}  // namespace

void ClSMBIOSType10::PrintStructure(const uint8_t* pData) {
    if (!PrintHead("On Board Devices Information {Type 10}", pData)) return;
    const ClStructure structure = ClStructure::WholeRecord(pData);
    for (size_t entry = kEntries; structure.Holds(entry, kEntrySize); entry += kEntrySize) {
        const ItemRow_t items[] = {
            {"Device Type",        entry,     DeviceType  },
            {"Description String", entry + 1, StringOrNone},
        };
        PrintItems(items, structure);
    }
}
