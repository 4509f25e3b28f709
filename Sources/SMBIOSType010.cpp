// On Board Devices Information (the SMBIOS standard, type 10).
#include <array>

#include "Sources/Decoders.h"
#include "Sources/SharedWords.h"

namespace {

ClText ShowDeviceType(const Field_t& field) {
    constexpr uint8_t kEnabled = 0x80;
    const uint8_t device = field.Byte();
    const char* status = (device & kEnabled) != 0 ? "Enabled, " : "Disabled, ";
    return std::string(status).append(ClSMBIOSType::GetOnboardDeviceTypeString(device));
}

constexpr Rendering_t DeviceType{ShowDeviceType, kOnboardDeviceTypes};
constexpr size_t kEntries = 0x04, kEntrySize = 2;

std::array<ItemRow_t, 2> EntryRows(size_t entry) {
    return {
        {{"Device Type", entry, DeviceType}, {"Description String", entry + 1, StringOrNone}}
    };
}

class ClSMBIOSType10 final : public ClSMBIOSType {
  public:
    ClSMBIOSType10() : ClSMBIOSType(10) {}
    void PrintStructure(const uint8_t* pData) override {
        if (!PrintHead(pData)) return;
        const ClStructure structure = View(pData);
        for (size_t entry = kEntries; structure.Holds(entry, kEntrySize); entry += kEntrySize)
            PrintItems(EntryRows(entry), structure);
    }
};

}  // namespace

ClSMBIOSType* NewType10(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType10; }

void DescribeType10(ClDescription& description) {
    description.Explain(
        ShowDeviceType,
        "bit 7: set `Enabled, `, clear `Disabled, `; then bits 0 to 6: a word of the list, else `Error: Invalid Type`");
    description.Rows(EntryRows(kEntries), "Each device of two bytes in the formatted area");
}
