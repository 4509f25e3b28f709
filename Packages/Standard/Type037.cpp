// Memory Channel.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kMemoryChannelType[] = {
    {0x01, "Other", "2.3"},
    {0x02, "Unknown", "2.3"},
    {0x03, "Rambus", "2.3"},
    {0x04, "SyncLink", "2.3"},
};

constexpr FieldRow_t kMemoryDevices[] = {
    {Byte(0x00), "Memory Device Load", Number(kPlain), "2.3"},
    {Word(0x01), "Memory Device Handle", HandleOf(17), "2.3"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Channel Type", Code(kMemoryChannelType), "2.3"},
    {Byte(0x05), "Maximum Channel Load", Number(kPlain), "2.3"},
    {Byte(0x06), "Memory Device Count (n)", Count, "2.3"},
    {List(0x07), "Memory Devices", Records(kMemoryDevices, 3), "2.3"},
};

}  // namespace

STANDARD_TYPE(37, "Memory Channel", "2.3", kFields)
