// Memory Module Information.
#include "Packages/Standard/Rows.h"
#include "Packages/Standard/SharedRows.h"

namespace {

constexpr CodeRow_t kBankConnection[] = {
    {0, "Single-bank", ""},
    {1, "Double-bank", ""},
};

constexpr BitRow_t kMemoryModuleErrorStatus[] = {
    {0, "Uncorrectable errors received", "2.0"},
    {1, "Correctable errors received", "2.0"},
    {2, "status is to be taken from the event log", "2.0"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Socket Designation", Text, "2.0"},
    {Byte(0x05), "Bank Connections", Hex(), "2.0"},
    {Bits(3, 0), "Second Bank Number", Number(kPlain, None(0xF, "no connection")), "2.0"},
    {Bits(7, 4), "First Bank Number", Number(kPlain, None(0xF, "no connection")), "2.0"},
    {Byte(0x06), "Current Speed", Number(kNanosecond, Unknown(0)), "2.0"},
    {Word(0x07), "Current Memory Type", Flags(kMemoryModuleTypes), "2.0"},
    {Byte(0x09), "Installed Size", Hex(), "2.0"},
    {Bits(6, 0), "Installed Module Size",
     Size(Form_t::kPowerOfTwoMB, None(0x7D, "not determinable"), None(0x7E, "installed but none enabled"),
          None(0x7F, "not installed")),
     "2.0"},
    {Bit(7), "Installed Module Connection", Code(kBankConnection), "2.0"},
    {Byte(0x0A), "Enabled Size", Hex(), "2.0"},
    {Bits(6, 0), "Enabled Module Size",
     Size(Form_t::kPowerOfTwoMB, None(0x7E, "installed but none enabled"), None(0x7F, "not installed")), "2.0"},
    {Bit(7), "Enabled Module Connection", Code(kBankConnection), "2.0"},
    {Byte(0x0B), "Error Status", Flags(kMemoryModuleErrorStatus), "2.0"},
};

}  // namespace

STANDARD_TYPE(6, "Memory Module Information", "2.0", kFields)
