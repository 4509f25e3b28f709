// Management Controller Host Interface.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kHostInterfaceType[] = {
    {0x00, 0x01, "MCTP Host Interfaces (single values by DSP0239)", "3.1.1"},
    {0x02, "KCS: Keyboard Controller Style", ""},
    {0x03, "8250 UART Register Compatible", ""},
    {0x04, "16450 UART Register Compatible", ""},
    {0x05, "16550/16550A UART Register Compatible", ""},
    {0x06, "16650/16650A UART Register Compatible", ""},
    {0x07, "16750/16750A UART Register Compatible", ""},
    {0x08, "16850/16850A UART Register Compatible", ""},
    {0x09, "I2C / SMBUS", ""},
    {0x0A, "I3C", ""},
    {0x0B, "PCIe VDM", ""},
    {0x0C, "MMBI", ""},
    {0x0D, "PCC", ""},
    {0x0E, "UCIe", ""},
    {0x0F, "USB", ""},
    {0x10, 0x3F, "MCTP Host Interfaces (single values by DSP0239)", "3.1.1"},
    {0x40, "Network Host Interface", "3.1.1"},
    {0xF0, "OEM-defined", "2.7"},
};

constexpr CodeRow_t kHostProtocolType[] = {
    {0x02, "IPMI", "3.1.1"},
    {0x03, "MCTP", "3.1.1"},
    {0x04, "Redfish over IP", "3.1.1"},
    {0xF0, "OEM-defined", "3.1.1"},
};

constexpr FieldRow_t kProtocolRecords[] = {
    {Byte(0x00), "Protocol Type", Code(kHostProtocolType), "3.2"},
    {Byte(0x01), "Protocol Type Specific Data Length (q)", Count, "3.2"},
    {Counted(0x02), "Protocol Type Specific Data", Raw, "3.2"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Interface Type", Code(kHostInterfaceType), "2.7"},
    {Byte(0x05), "Interface Type Specific Data Length (n)", Count, "3.2"},
    {Counted(0x06), "Interface Type Specific Data", Raw, "3.2"},
    {Byte(kAfterList + 0), "Number of Protocol Records (x)", Count, "3.2"},
    {List(kAfterList + 1), "Protocol Records", RecordsWithLength(kProtocolRecords, 1, 2), "3.2"},
};

// Before 3.2, the data have no length.
constexpr FieldRow_t kOldFields[] = {
    {Byte(0x04), "Interface Type", Code(kHostInterfaceType), "2.7"},
    {Rest(0x05), "Interface Type Specific Data", Raw, "2.7"},
};
constexpr StandardRow_t kOldType = {
    42, "Management Controller Host Interface", "2.7", {kOldFields, std::size(kOldFields)}};

}  // namespace

StandardType_t OldHostInterface() { return ViewOf<kOldType>(); }

STANDARD_TYPE(42, "Management Controller Host Interface", "2.7", kFields)
