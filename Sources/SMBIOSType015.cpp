// System Event Log (the SMBIOS standard, type 15). The structure locates the log; the log itself isn't read.
#include "Sources/Decoders.h"

namespace {

// The shortest structure of the later form, whose descriptors of log types follow at this offset. The form of
// version 2.0 ends before the header format.
constexpr uint8_t kLengthWithDescriptors = 0x17;
constexpr size_t kDescriptorCount = 0x15, kDescriptorSize = 2;

// Bits of the log status.
constexpr uint8_t kAreaValid = 0x01, kAreaFull = 0x02;

ClText ShowLogStatus(const Field_t& field) {
    const uint8_t status = field.Byte();
    return ClSMBIOSType::GetHexString(status, 2)
        .append(" (Log Area: ")
        .append((status & kAreaFull) != 0 ? "Full" : "Not Full")
        .append(", ")
        .append((status & kAreaValid) != 0 ? "Valid" : "Not Valid")
        .append(")");
}

std::string_view HeaderFormat(uint8_t format) {
    if (format == 0x00) return "No header";
    if (format == 0x01) return "Type 1 header";
    if (format < 0x80) return "Error: reserved header type";
    return "BIOS or OEM specific header type";
}

ClText ShowHeaderFormat(const Field_t& field) {
    return ClSMBIOSType::GetHexString(field.Byte(), 2).append(" (").append(HeaderFormat(field.Byte())).append(")");
}

ClText ShowDescriptor(const Field_t& field) {
    const uint16_t descriptor = field.Word();
    return std::string("\t\t")
        .append(ClSMBIOSType::GetHexString(descriptor & 0xFF, 2))
        .append(" ")
        .append(ClSMBIOSType::GetHexString(descriptor >> 8, 2));
}

constexpr Rendering_t LogStatus{ShowLogStatus}, LogHeaderFormat{ShowHeaderFormat}, Descriptor{ShowDescriptor};

constexpr ItemRow_t kItems[] = {
    {"Log Area Length",         0x04, Dec16AndHex(2)},
    {"Log Header Start Offset", 0x06, Dec16AndHex(2)},
    {"Log Data Start Offset",   0x08, Dec16AndHex(2)},
    {"Access Method",           0x0A, Dec8          },
    {"Log Status",              0x0B, LogStatus     },
    {"Log Change Token",        0x0C, Hex32         },
    {"Access Method Address",   0x10, Hex32         },
};

constexpr ItemRow_t kLaterItems[] = {
    {"Log Header Format",                        0x14, LogHeaderFormat},
    {"Number of Supported Log Type Descriptors", 0x15, Hex8           },
    {"Length of each Log Type Descriptor",       0x16, Hex8           },
};

// The first one.
constexpr ItemRow_t kDescriptor[] = {
    {"List of Supported Event Log Type Descriptors", 0x17, Descriptor},
};

class ClSMBIOSType15 final : public ClSMBIOSType {
  public:
    ClSMBIOSType15() : ClSMBIOSType(15) {}
    void PrintStructure(const uint8_t* pData) override {
        if (!PrintHead(pData)) return;
        const ClStructure structure = View(pData);
        PrintItems(RowsOf<kItems>(), structure);
        if (structure.Length() < kLengthWithDescriptors) return;
        PrintItems(RowsOf<kLaterItems>(), structure);
        // The structure states the length of a descriptor, but every descriptor is read as two bytes.
        for (uint8_t place = 0; place < structure.Byte(kDescriptorCount); place++)
            PrintItems(RowsOf<kDescriptor>(), structure, place * kDescriptorSize);
    }
};

}  // namespace

ClSMBIOSType* NewType15(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType15; }

void DescribeType15(ClDescription& description) {
    description.Explain(ShowLogStatus,
                        "hexadecimal, 2 digits, then ` (Log Area: `, bit 1: set `Full`, clear `Not "
                        "Full`, `, `, bit 0: set `Valid`, clear `Not Valid`, `)`");
    description.Explain(ShowHeaderFormat,
                        "hexadecimal, 2 digits, then in parentheses 00h `No header`, 01h `Type 1 header`, 02h to "
                        "7Fh `Error: reserved header type`, 80h to FFh `BIOS or OEM specific header type`");
    description.Explain(ShowDescriptor,
                        "two tabs, then the log type and the format of its variable data, each in "
                        "hexadecimal of 2 digits, separated by a blank");
    description.Rows(RowsOf<kItems>());
    description.Rows(RowsOf<kLaterItems>(), "Structures of 17h bytes or more");
    description.Rows(RowsOf<kDescriptor>(), "Each descriptor of two bytes of these structures");
}
