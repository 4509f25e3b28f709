// Firmware Version Information: a vendor-defined structure (type 221) that lists firmware components.
#include <new>

#include "Sources/Decoders.h"
#include "Sources/PackageTrace.h"
#include "Sources/VersionRecords.h"

#define TRACE(function, level, ...) \
    PACKAGE_TRACE("Sources\\SMBIOSType221", "ClSMBIOSType221::" function, level, __VA_ARGS__)

namespace {

void AppendPadded(std::string& text, uint16_t part, size_t width) {
    const std::string digits = PlainHex(part);
    if (digits.size() < width) text.append(width - digits.size(), ' ');
    text += digits;
}

std::string VersionText(const VersionRecord_t& record) {
    std::string text = " ";
    for (const uint8_t part : record.parts) {
        AppendPadded(text, part, 2);
        text += '.';
    }
    AppendPadded(text, record.lastPart, 4);
    return text;
}

class ClSMBIOSType221 final : public ClSMBIOSType {
  public:
    ClSMBIOSType221() : ClSMBIOSType(221) {}
    void PrintStructure(const uint8_t* pData) override {
        if (PrintHead(pData, "\nData is NULL")) GetBiosVersionInfo(pData);
    }

  private:
    void GetBiosVersionInfo(const uint8_t* pData);
};

void ClSMBIOSType221::GetBiosVersionInfo(const uint8_t* pData) try {
    const ClStructure structure = ClStructure::WholeRecord(pData);
    const uint8_t count = CountVersionRecords(structure);
    for (uint8_t index = 0; index < count && HoldsVersionRecord(structure, index); index++) {
        const VersionRecord_t record = VersionRecordAt(structure, index);
        const std::string_view name = GetString(record.name, pData);
        if (name.empty() || name == "Disabled") continue;
        Fill_String_Data(name, VersionText(record), 0);
    }
} catch (const std::bad_alloc&) {
    TRACE("GetBiosVersionInfo", kError, "Memory allocation with new failed\n");
}

}  // namespace

ClSMBIOSType* NewType221(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType221; }

void DescribeType221(ClDescription& description) {
    description.Item("(strings of the structure)", "07h, and on in steps of 7",
                     "a blank, then three bytes and a word in lower-case hexadecimal, filled up with blanks to 2 and 4 "
                     "characters, joined by points; no item for an empty string and for `Disabled`");
}
