// Built-in Pointing Device.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kPointingDeviceType[] = {
    {0x01, "Other", "<=2.3.1"},      {0x02, "Unknown", "<=2.3.1"},     {0x03, "Mouse", "<=2.3.1"},
    {0x04, "Track Ball", "<=2.3.1"}, {0x05, "Track Point", "<=2.3.1"}, {0x06, "Glide Point", "<=2.3.1"},
    {0x07, "Touch Pad", "<=2.3.1"},  {0x08, "Touch Screen", "2.3.2"},  {0x09, "Optical Sensor", "2.3.2"},
};

constexpr CodeRow_t kPointingDeviceInterface[] = {
    {0x01, "Other", "2.1"},
    {0x02, "Unknown", "2.1"},
    {0x03, "Serial", "2.1"},
    {0x04, "PS/2", "2.1"},
    {0x05, "Infrared", "2.1"},
    {0x06, "HP-HIL", "2.1"},
    {0x07, "Bus mouse", "2.1"},
    {0x08, "ADB (Apple Desktop Bus)", "2.1"},
    {0xA0, "Bus mouse DB-9", "2.1"},
    {0xA1, "Bus mouse micro-DIN", "2.1"},
    {0xA2, "USB", "2.1"},
    {0xA3, "I2C", "3.5"},
    {0xA4, "SPI", "3.5"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Type", Code(kPointingDeviceType), "2.1"},
    {Byte(0x05), "Interface", Code(kPointingDeviceInterface), "2.1"},
    {Byte(0x06), "Number of Buttons", Number(kPlain), "2.1"},
};

}  // namespace

STANDARD_TYPE(21, "Built-in Pointing Device", "2.1", kFields)
