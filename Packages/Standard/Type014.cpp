// Group Associations.
#include "Packages/Standard/Rows.h"

namespace {

constexpr FieldRow_t kItems[] = {
    {Byte(0x00), "Item Type", Number(kPlain), "2.0"},
    {Word(0x01), "Item Handle", HandleOf(), "2.0"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Group Name", Text, "2.0"},
    {List(0x05), "Items", Records(kItems, 3, Counted_t::kToEnd), "2.0"},
};

}  // namespace

STANDARD_TYPE(14, "Group Associations", "2.0", kFields)
