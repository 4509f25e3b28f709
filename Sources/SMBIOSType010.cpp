// On Board Devices Information (the SMBIOS standard, type 10).
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

// Of the first entry.
constexpr ItemRow_t kItems[] = {
    {"Device Type",        0x04, DeviceType  },
    {"Description String", 0x05, StringOrNone},
};

class ClSMBIOSType10 final : public ClSMBIOSType {
  public:
    ClSMBIOSType10() : ClSMBIOSType(10) {}
    void PrintStructure(const uint8_t* pData) override {
        if (!PrintHead(pData)) return;
        const ClStructure structure = View(pData);
        for (size_t entry = kEntries; structure.Holds(entry, kEntrySize); entry += kEntrySize)
            PrintItems(RowsOf<kItems>(), structure, entry - kEntries);
    }
};

}  // namespace

ClSMBIOSType* NewType10(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType10; }

void DescribeType10(ClDescription& description) {
    description.Explain(
        ShowDeviceType,
        "bit 7: set `Enabled, `, clear `Disabled, `; then bits 0 to 6: a word of the list, else `Error: Invalid Type`");
    description.Rows(RowsOf<kItems>(), "Each device of two bytes in the formatted area");
}
