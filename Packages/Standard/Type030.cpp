// Out-of-Band Remote Access.
#include "Packages/Standard/Rows.h"

namespace {

constexpr BitRow_t kRemoteConnections[] = {
    {0, "Inbound Connection Enabled", "2.2"},
    {1, "Outbound Connection Enabled", "2.2"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Manufacturer Name", Text, "2.2"},
    {Byte(0x05), "Connections", Flags(kRemoteConnections), "2.2"},
};

}  // namespace

STANDARD_TYPE(30, "Out-of-Band Remote Access", "2.2", kFields)
