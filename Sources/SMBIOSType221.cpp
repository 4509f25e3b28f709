// Firmware Version Information: a vendor-defined structure (type 221) that lists firmware components.
#include <new>

#include "Sources/Decoders.h"
#include "Sources/PackageTrace.h"

#define TRACE(function, level, ...) \
    PACKAGE_TRACE("Sources\\SMBIOSType221", "ClSMBIOSType221::" function, level, __VA_ARGS__)

namespace {

// Unaligned records behind the byte that counts them.
constexpr size_t kCount = 0x04, kRecords = 0x05, kRecordSize = 7;
// Offsets in a record. The byte between name and version is the number of a text that no item shows.
constexpr size_t kName = 0, kVersion1 = 2, kVersion2 = 3, kVersion3 = 4, kVersion4 = 5;

void AppendPadded(std::string& text, uint16_t part, size_t width) {
    const std::string digits = PlainHex(part);
    if (digits.size() < width) text.append(width - digits.size(), ' ');
    text += digits;
}

// Hexadecimal, each part filled up with blanks.
std::string VersionText(const ClStructure& structure, size_t record) {
    std::string text = " ";
    for (const size_t part : {kVersion1, kVersion2, kVersion3}) {
        AppendPadded(text, structure.Byte(record + part), 2);
        text += '.';
    }
    AppendPadded(text, structure.Word(record + kVersion4), 4);
    return text;
}

}  // namespace

void ClSMBIOSType221::PrintStructure(const uint8_t* pData) {
    if (!PrintTitle("Firmware Version Information {Type 221}", pData, "\nData is NULL")) return;
    GetBiosVersionInfo(pData);
}

// The walk ends at the end of the formatted area, whatever the count says.
void ClSMBIOSType221::GetBiosVersionInfo(const uint8_t* pData) {
    const ClStructure structure = ClStructure::FormattedArea(pData);
    const uint8_t count = structure.Byte(kCount);
    try {
        for (size_t place = 0; place < count; place++) {
            const size_t record = kRecords + place * kRecordSize;
            if (!structure.Holds(record, kRecordSize)) break;
            const std::string_view name = StringOf(pData, structure.Byte(record + kName));
            if (name.empty() || name == "Disabled") continue;
            Fill_String_Data(name, VersionText(structure, record), 0);
        }
    } catch (const std::bad_alloc&) {
        TRACE("GetBiosVersionInfo", kError, "Memory allocation with new failed\n");
    }
}
