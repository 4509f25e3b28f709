// TPM Device.
#include "Packages/Standard/Rows.h"

namespace {

constexpr BitRow_t kTpmCharacteristics[] = {
    {2, "TPM Device Characteristics are not supported", "3.1"},
    {3, "Family configurable via firmware update", "3.1"},
    {4, "Family configurable via platform software support", "3.1"},
    {5, "Family configurable via OEM proprietary mechanism", "3.1"},
};

constexpr FieldRow_t kFields[] = {
    {Bytes(0x04, 4), "Vendor ID", Ascii, "3.1"},
    {Byte(0x08), "Major Spec Version", Number(kPlain), "3.1"},
    {Byte(0x09), "Minor Spec Version", Number(kPlain), "3.1"},
    {Dword(0x0A), "Firmware Version 1", Hex(), "3.1"},
    {Dword(0x0E), "Firmware Version 2", Hex(), "3.1"},
    {Byte(0x12), "Description", Text, "3.1"},
    {Qword(0x13), "Characteristics", Flags(kTpmCharacteristics), "3.1"},
    {Dword(0x1B), "OEM-defined", Hex(), "3.1"},
    {From("Major Spec Version", "Minor Spec Version"), "Spec Version", AsVersion(kRelease), ""},
    {From("Firmware Version 1", "Firmware Version 2", "Major Spec Version"), "Firmware Version",
     AsVersion(kTpmFirmwareVersion), ""},
};

}  // namespace

STANDARD_TYPE(43, "TPM Device", "3.1", kFields)
