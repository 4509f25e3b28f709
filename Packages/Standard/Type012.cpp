// System Configuration Options.
#include "Packages/Standard/Rows.h"

namespace {

constexpr FieldRow_t kString[] = {
    {Byte(0), "String", Text, ""},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Count", Count, "2.0"},
    {List(0x05), "Strings", Strings(kString, Counted_t::kByField), ""},
};

}  // namespace

STANDARD_TYPE(12, "System Configuration Options", "2.0", kFields)
